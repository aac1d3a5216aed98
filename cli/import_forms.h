#pragma once

#include <optional>
#include <string>

#include "console_ui.h"
#include "session.h"

namespace lotwise::cli {

// Plays the user's part in the program's dialogs for as long as it lives:
// `play` fills a dialog it knows and presses its buttons, returning true;
// any other dialog is left to the console. The handler that was in place
// before comes back at the end.
class DialogPlay {
 public:
  DialogPlay(ConsoleUi& ui, ConsoleUi::ModalHandler play);
  ~DialogPlay();
  DialogPlay(const DialogPlay&) = delete;
  DialogPlay& operator=(const DialogPlay&) = delete;

 private:
  ConsoleUi& ui_;
  ConsoleUi::ModalHandler previous_;
};

// Returns the name of the open taxpayer's portfolio called `name` as the
// Taxpayer File spells it (names compare without regard to case), nullopt
// when there is none. Throws LwError.
std::optional<std::string> FindPortfolio(Application& app, const std::string& name);
// Returns the symbol of the portfolio's security `symbol` as the Taxpayer
// File spells it, nullopt when the portfolio holds none. Throws LwError.
std::optional<std::string> FindSecurity(Application& app, const std::string& port_name,
                                        const std::string& symbol);

// Creates a portfolio of the open taxpayer through the New Portfolio dialog,
// with its checks and messages. Returns true iff it was created; it is then
// the open portfolio.
bool NewPortfolio(Session& session, const std::string& name, const std::string& second_line);

// What the user types into the "Add a Security" dialog. An empty name or
// CUSIP keeps what the Security Symbols File has for the symbol.
struct SecurityFields {
  std::string symbol;
  std::string name;
  std::string cusip;
  std::string second_line;
};
// Adds a security to the open portfolio through the "Add a Security"
// dialog, with its checks and questions. Returns true iff it was added; it
// is then the open security (SECOPEN).
bool AddSecurity(Session& session, const SecurityFields& fields);

}  // namespace lotwise::cli
