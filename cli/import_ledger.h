#pragma once

#include <iosfwd>
#include <string>

#include "session.h"

namespace lotwise::cli {

// Stores a ledger of transactions for the taxpayer `taxpayer_code` from CSV
// text: a header row naming the columns Portfolio, Symbol, Date, Action,
// Shares, Amount, Fee, Ratio, Block, Method, Notes (case-insensitive, any
// order; Name and CUSIP optional, used for securities not yet held), then one
// transaction per line. Each line goes through its dialog with the same
// checks, questions and messages; portfolios and securities not yet there
// are created through theirs. Questions take the session's answers (Yes
// only with --yes).
//
// The whole ledger is one unit of work: it is kept only when every line was
// stored. What the program says about a line is printed on the session's
// error stream after "<source_name>:<line>: ", and a line that was not
// stored ends with "<source_name>:<line>: refused"; a refused ledger ends
// with "<source_name>: nothing imported: K of N lines refused". A line is
// refused when its dialog did not close accepted, when its rows did not
// reach the Taxpayer File, or when a message of the error kind was shown on
// the way. The session must be started; the taxpayer is opened here unless
// it is the open one.
//
// Returns true iff every line was stored and the unit was committed;
// `stored` (when given) receives the number of transactions stored.
bool ImportLedger(Session& session, const std::string& taxpayer_code, std::istream& csv,
                  const std::string& source_name, int* stored = nullptr);

}  // namespace lotwise::cli
