#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ground/date.h"

namespace lotwise {

class Application;

// The blank-line rule: trailing blanks removed, then one blank appended, so
// that a stored "2nd Line" is never empty.
std::string StoredSecondLine(std::string_view text);

// Returns a new, unused Taxpayer File name built from the sort name and the
// clock ("SMIT73.mdb").
std::string CalcClientFileName(Application& app, std::string_view seed);
// Copies the Taxpayer File template into the data folder as `file_name` and
// writes its Client row.
void CreateClientFile(Application& app, const std::string& name, const std::string& sort_name,
                      const std::string& code, const std::string& second_line, Date year_end,
                      const std::string& file_name);
// Registers a taxpayer, creates its Taxpayer File and opens it.
bool NewClient(Application& app, const std::string& name, const std::string& sort_name,
               const std::string& code, const std::string& second_line, Date year_end);
// Tells the user that `code` is not in the central index.
void ShowClientNotIndexed(Application& app, const std::string& code);
// Closes any open Taxpayer File, then opens this one from the data folder.
// Throws LwError on failure (callers trap it).
void OpenClientFile(Application& app, const std::string& file_name);
// Closes the open Taxpayer File and enters CLIENTCLOSED.
void CloseClientFile(Application& app);
// Changes the current taxpayer in both files.
bool ModClientInfo(Application& app, const std::string& name, const std::string& sort_name,
                   const std::string& code, const std::string& second_line, Date year_end);
// Deletes the taxpayer's file and index row after the user confirms.
void DelTaxpayer(Application& app, const std::string& code);

bool NewPort(Application& app, const std::string& name, const std::string& second_line);
bool ModPort(Application& app, const std::string& name, const std::string& second_line);
// Deletes the portfolio with its securities, blocks and transactions.
bool DelPort(Application& app, const std::string& name);
bool OpenPort(Application& app, const std::string& name);
void ClosePort(Application& app);
// Refuses an empty portfolio name with "Information Missing!".
bool VerifyNewModPort(Application& app, const std::string& name);

// Adds a security to portfolio `port_name`, first to the Security Symbols
// File when the symbol is new there.
bool AddSec(Application& app, const std::string& symbol, const std::string& name,
            std::string& cusip, const std::string& second_line, const std::string& port_name);
// Deletes the security with its blocks and transactions from the portfolio.
bool DelSec(Application& app, const std::string& port_name, const std::string& symbol);
// Stores the security's second line by the blank-line rule, and shows it in
// the security panel when the security is the open one.
void UpdateSec2ndLine(Application& app, const std::string& symbol, const std::string& second_line);
void UpdateSecName(Application& app, const std::string& symbol, const std::string& name);
void UpdateSecCusip(Application& app, const std::string& symbol, const std::string& cusip);

}  // namespace lotwise
