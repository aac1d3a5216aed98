#include "app/taxpayer_file.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <optional>

#include "app/app_state.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/client_index.h"
#include "data/client_info.h"
#include "data/client_rows.h"
#include "data/current_context.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/schema.h"
#include "data/security_rows.h"
#include "data/upgrades.h"
#include "ground/environment.h"
#include "ground/lw_error.h"
#include "ground/paths.h"
#include "ground/program_ended.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"

namespace lotwise {

namespace {

namespace fs = std::filesystem;

constexpr const char* kSortNameExistsText =
    "The Sort Name for this Client already exists for another Client. This is OK, however you may "
    "want to change it if you want unique Sort Names.";

// The Client row as stored: no year end for the empty date.
ClientOnFile ClientRow(const std::string& name, const std::string& sort_name,
                       const std::string& code, const std::string& second_line, Date year_end) {
  ClientOnFile row{name, sort_name, code, StoredSecondLine(second_line), std::nullopt};
  if (year_end.serial() != 0) row.year_end = year_end;
  return row;
}

void ShowCodeInUse(Application& app, const std::string& code) {
  app.ui().MessageBox(
      "The Taxpayer Code: " + code + " is already in use. Please enter a new Taxpayer Code.",
      "Taxpayer Code in use!", Icon::kInformation, Buttons::kOk);
}

void ShowPortInUse(Application& app, const std::string& name) {
  app.ui().MessageBox(
      "The Portfolio Name: " + name + " is already in use. Please enter a new Portfolio Name.",
      "Portfolio Name in use!", Icon::kInformation, Buttons::kOk);
}

// True iff `file_name` is neither indexed in the central file nor present
// in the taxpayer folder (both compared without regard to case, as the
// files may live on a folder that ignores case).
bool ClientFileNameFree(Application& app, const std::string& file_name) {
  if (FileNameIndexed(*app.central, file_name)) return false;
  const std::string wanted = ToUpperAscii(file_name);
  for (const std::string& existing : ListFiles(app.taxpayer_folder, "*.mdb")) {
    if (ToUpperAscii(existing) == wanted) return false;
  }
  return true;
}

// Removes a Taxpayer File and its journal from the taxpayer folder; quiet,
// for clearing away a file that could not be finished.
void RemoveClientFileQuietly(Application& app, const std::string& file_name) {
  std::error_code ec;
  fs::remove(app.taxpayer_folder + file_name, ec);
  fs::remove(app.taxpayer_folder + file_name + "-journal", ec);
}

// CreateClientFile's work; throws on failure and leaves no copy behind.
void WriteNewClientFile(Application& app, const std::string& name, const std::string& sort_name,
                        const std::string& code, const std::string& second_line, Date year_end,
                        const std::string& file_name) {
  const std::string path = app.taxpayer_folder + file_name;
  // Refuses to overwrite: a file of that name belongs to someone else.
  fs::copy_file(app.ProgramFile(kClientTemplateName), path);
  try {
    auto db = Database::Open(path, Database::Mode::kExclusive, app.storage_faults);
    InsertClientRow(*db, ClientRow(name, sort_name, code, second_line, year_end));
  } catch (...) {
    RemoveClientFileQuietly(app, file_name);
    throw;
  }
}

// The two variants of changing a central field of a security for every
// Taxpayer File.
struct CentralFieldChange {
  const char* location;
  const char* question;
  const char* title;
  const char* progress;
  bool is_name;  // else the CUSIP
};

constexpr CentralFieldChange kNameChange{
    "UpdateSecName",
    "You have changed the Security Name. This will change it for all Securities in all Taxpayer "
    "Files.\nIf you want to do this click YES, otherwise click NO and the Name will be left as it "
    "was.",
    "Name has been changed!", "Updating Security Name", true};
constexpr CentralFieldChange kCusipChange{
    "UpdateSecCusip",
    "You have changed the Security CUSIP. This will change it for all Securities in all Taxpayer "
    "Files.\nIf you want to do this click YES, otherwise click NO and the CUSIP will be left as it "
    "was.",
    "CUSIP has been changed!", "Updating Cusip", false};

void UpdateSecCentralField(Application& app, const CentralFieldChange& change,
                           const std::string& symbol, const std::string& value) {
  TrapVoid(app, change.location, [&] {
    if (app.ui().MessageBox(change.question, change.title, Icon::kExclamation, Buttons::kYesNo) !=
        Answer::kYes) {
      return;
    }
    HourglassGuard hourglass(app.ui());
    app.ui().SetHelpBarText(change.progress);
    Database& central = *app.central;
    const bool go_on = change.is_name ? ConfirmSharedSecName(app, central, value, symbol)
                                      : ConfirmSharedSecCusip(app, central, value, symbol);
    if (!go_on) return;
    const int64_t changed = change.is_name ? SetCentralSecName(central, symbol, value)
                                           : SetCentralSecCusip(central, symbol, value);
    if (changed == 0) {
      app.ui().MessageBox(
          "The Security you have specified can't be found. You may need to Add it again.",
          "Security not found", Icon::kInformation, Buttons::kOk);
    }
  });
}

}  // namespace

void ShowClientNotIndexed(Application& app, const std::string& code) {
  app.ui().MessageBox(
      "The Taxpayer Code: " + code + " could not be found in the Security Symbols File.",
      "Taxpayer not found", Icon::kInformation, Buttons::kOk);
}

std::string StoredSecondLine(std::string_view text) {
  std::string stored(text);
  while (!stored.empty() && stored.back() == ' ') stored.pop_back();
  return stored + " ";
}

std::string CalcClientFileName(Application& app, std::string_view seed) {
  return Trap(app, "CalcClientFileName", std::string(), [&] {
    static constexpr std::array<const char*, 12> kMonths = {
        "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    // The base keeps the leading letters and digits of the first four
    // characters; any other character (a non-ASCII byte included) ends it.
    std::string base(seed.substr(0, 4));
    for (size_t i = base.size(); i-- > 0;) {
      if (!IsAlphaNum(static_cast<int16_t>(static_cast<unsigned char>(base[i])))) base.resize(i);
    }
    for (;;) {
      const LocalTime now = app.env().Now();
      const std::string stem = base.empty() ? kMonths.at(static_cast<size_t>(now.month - 1)) : base;
      std::string candidate =
          stem + std::to_string(now.minute) + std::to_string(now.second) + ".mdb";
      if (ClientFileNameFree(app, candidate)) return candidate;
      // The name is taken: wait for the clock to give another second.
      app.env().Pause(std::chrono::milliseconds(250));
    }
  });
}

void CreateClientFile(Application& app, const std::string& name, const std::string& sort_name,
                      const std::string& code, const std::string& second_line, Date year_end,
                      const std::string& file_name) {
  TrapVoid(app, "CreateClientFile", [&] {
    WriteNewClientFile(app, name, sort_name, code, second_line, year_end, file_name);
  });
}

bool NewClient(Application& app, const std::string& name, const std::string& sort_name,
               const std::string& code, const std::string& second_line, Date year_end) {
  HourglassGuard hourglass(app.ui());
  return Trap(app, "NewClient", false, [&] {
    Database& central = *app.central;
    const std::string file_name = CalcClientFileName(app, sort_name);
    if (file_name.empty()) return false;
    if (FindIndexedClient(central, code)) {
      ShowCodeInUse(app, code);
      return false;
    }
    if (FindSortNameHolder(central, sort_name) &&
        app.ui().MessageBox(std::string(kSortNameExistsText) +
                                "\nIf you want to keep the Sort Name, click OK, otherwise click "
                                "Cancel.",
                            "Sort Name already exists!", Icon::kQuestion,
                            Buttons::kOkCancel) != Answer::kOk) {
      return false;
    }

    // The index row is committed only once its file is complete, so that a
    // failure leaves neither a row without a file nor a file without a row.
    // Messages wait until the central file is free again.
    bool code_in_use = false;
    std::optional<LwError> file_error;
    {
      Database::Transaction unit(central);
      try {
        AddIndexedClient(central, {name, sort_name, code, file_name});
      } catch (const LwError& e) {
        if (e.number() != err::kDuplicateKey) throw;
        code_in_use = true;
      }
      if (!code_in_use) {
        try {
          WriteNewClientFile(app, name, sort_name, code, second_line, year_end, file_name);
        } catch (...) {
          file_error = CurrentError();
        }
      }
      if (!code_in_use && !file_error) {
        try {
          unit.Commit();
        } catch (...) {
          RemoveClientFileQuietly(app, file_name);
          throw;
        }
      }
    }
    if (code_in_use) {
      ShowCodeInUse(app, code);
      return false;
    }
    if (file_error) {
      ReportError(app, *file_error, "CreateClientFile");
      return false;
    }

    CloseClientFile(app);
    // The taxpayer stays created even when the open one could not be closed.
    if (State(app, kStateQuery) != kClientClosed) return true;
    OpenClientFile(app, file_name);
    UpdateCurrClient(app, file_name, code);
    State(app, kClientOpen);
    return true;
  });
}

void OpenClientFile(Application& app, const std::string& file_name) {
  CloseClientFile(app);
  app.client =
      Database::Open(app.taxpayer_folder + file_name, Database::Mode::kShared, app.storage_faults);
}

void CloseClientFile(Application& app) {
  TrapVoid(app, "CloseClientFile", [&] {
    app.client.reset();
    app.current.ClearClient();
    app.current.ClearPort();
    State(app, kClientClosed);
  });
}

bool ModClientInfo(Application& app, const std::string& name, const std::string& sort_name,
                   const std::string& code, const std::string& second_line, Date year_end) {
  return Trap(app, "ModClientInfo", false, [&] {
    Database& central = *app.central;
    Database& client = *app.client;
    const std::string current = app.current.client_code;
    std::optional<IndexedClient> before = FindIndexedClient(central, current);
    if (!before) {
      ShowClientNotIndexed(app, current);
      return false;
    }

    if (code != current) {
      // A change of letter case only finds the taxpayer's own row.
      std::optional<IndexedClient> holder = FindIndexedClient(central, code);
      if (holder && holder->code == current) {
        ShowCodeInUse(app, code);
        return false;
      }
      // Asked only together with a change of code, and then only a Cancel on
      // the taxpayer's own row stops the change.
      if (std::optional<std::string> found_code = FindSortNameHolder(central, sort_name)) {
        const Answer answer = app.ui().MessageBox(
            std::string(kSortNameExistsText) +
                "\nIf you want to change the Sort Name click OK, otherwise click Cancel.",
            "Sort Name already exists!", Icon::kQuestion, Buttons::kOkCancel);
        if (answer != Answer::kOk && *found_code == current) return false;
      }
    }

    // The two rows live in two files, so no one transaction covers both. The
    // Client row is written first but left uncommitted; the central row is
    // written last. A refused central row (code taken) rolls the Client row
    // back; a Client commit that fails after the central row was written
    // puts the central row back to what it was, as far as the central file
    // still lets us, before the error is reported.
    bool code_in_use = false;
    {
      Database::Transaction client_unit(client);
      WriteClientRow(client, ClientRow(name, sort_name, code, second_line, year_end));
      try {
        ChangeIndexedClient(central, current, {name, sort_name, code, before->file_name});
      } catch (const LwError& e) {
        if (e.number() != err::kDuplicateKey) throw;
        code_in_use = true;
      }
      if (!code_in_use) {
        try {
          client_unit.Commit();
        } catch (...) {
          try {
            ChangeIndexedClient(central, code, *before);
          } catch (...) {
            // The original error is the one the user must see.
          }
          throw;
        }
      }
    }
    if (code_in_use) {
      ShowCodeInUse(app, code);
      return false;
    }
    UpdateCurrClient(app, before->file_name, code);
    if (app.window.state >= kClientOpen) {
      app.window.client_panel = FixAmpersand(app.current.client_name);
    }
    return true;
  });
}

void DelTaxpayer(Application& app, const std::string& code) {
  TrapVoid(app, "DelTaxpayer", [&] {
    if (app.ui().MessageBox("Are you sure you want to delete all transactions, files and "
                            "references within this system to the taxpayer that has a taxpayer "
                            "code of " +
                                code + "?",
                            "Warning", Icon::kExclamation, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    CloseClientFile(app);
    Database& central = *app.central;
    std::optional<IndexedClient> row = FindIndexedClient(central, code);
    if (row && !row->file_name.empty()) {
      const std::string wanted = ToUpperAscii(row->file_name);
      for (const std::string& existing : ListFiles(app.taxpayer_folder, "*")) {
        if (ToUpperAscii(existing) != wanted) continue;
        fs::remove(app.taxpayer_folder + existing);
        // A journal left beside it would be replayed into any later file of
        // the same name.
        std::error_code ec;
        fs::remove(app.taxpayer_folder + existing + "-journal", ec);
      }
    }
    const int64_t count = CountIndexedWithCode(central, code);
    if (count != 1) {
      app.ui().MessageBox("One and only one record should be found with this taxpayer code. " +
                              std::to_string(count) +
                              " records were found. Could not remove from central file.",
                          "Warning", Icon::kExclamation, Buttons::kOk);
      return;
    }
    DeleteIndexedClient(central, code);
  });
}

bool NewPort(Application& app, const std::string& name, const std::string& second_line) {
  return Trap(app, "NewPort", false, [&] {
    try {
      InsertPortfolioRow(*app.client, {name, StoredSecondLine(second_line)},
                         app.current.client_code);
    } catch (const LwError& e) {
      if (e.number() != err::kDuplicateKey) throw;
      ShowPortInUse(app, name);
      return false;
    }
    app.current.ClearPort();
    UpdateCurrPort(app, name);
    State(app, kPortOpen);
    return true;
  });
}

bool ModPort(Application& app, const std::string& name, const std::string& second_line) {
  return Trap(app, "ModPort", false, [&] {
    int64_t changed = 0;
    try {
      changed = ChangePortfolioRow(*app.client, app.current.port_name,
                                   {name, StoredSecondLine(second_line)}, app.current.client_code);
    } catch (const LwError& e) {
      if (e.number() != err::kDuplicateKey) throw;
      ShowPortInUse(app, name);
      return false;
    }
    if (changed == 0) return false;
    UpdateCurrPort(app, name);
    return true;
  });
}

bool DelPort(Application& app, const std::string& name) {
  return Trap(app, "DelPort", false, [&] {
    DeletePortfolioRow(*app.client, name);
    return true;
  });
}

bool OpenPort(Application& app, const std::string& name) {
  return Trap(app, "OpenPort", false, [&] {
    // Another user may have deleted it since the list was shown.
    if (!FindPortfolio(*app.client, name)) return false;
    app.current.ClearPort();
    UpdateCurrPort(app, name);
    State(app, kPortOpen);
    return true;
  });
}

void ClosePort(Application& app) {
  TrapVoid(app, "ClosePort", [&] {
    app.current.ClearPort();
    State(app, kClientOpen);
  });
}

bool VerifyNewModPort(Application& app, const std::string& name) {
  return Trap(app, "VerifyNewModPort", false, [&] {
    if (name.find_first_not_of(' ') != std::string::npos) return true;
    app.ui().MessageBox(
        "A Portfolio Name must be provided to create a new Portfolio. Please enter a Portfolio "
        "Name.",
        "Information Missing!", Icon::kInformation, Buttons::kOk);
    return false;
  });
}

bool AddSec(Application& app, const std::string& symbol, const std::string& name,
            std::string& cusip, const std::string& second_line, const std::string& port_name) {
  return Trap(app, "AddSec", false, [&] {
    if (!SymbolLengthValid(app.ui(), symbol)) return false;
    // The portfolio may hold a symbol the central file lacks: the outcome of
    // the central add (the user may decline it) does not stop the portfolio's.
    if (!CentralHasSymbol(*app.central, symbol)) AddSecToCDB(app, symbol, name, cusip);
    // A fatal error there has closed the files.

    Database& client = *app.client;
    bool already_held = FindSecurity(client, port_name, symbol).has_value();
    if (!already_held) {
      Database::Transaction unit(client);
      try {
        InsertSecurityRow(client, port_name, symbol, StoredSecondLine(second_line));
      } catch (const LwError& e) {
        if (e.number() != err::kDuplicateKey) throw;
        already_held = true;
      }
      if (!already_held) {
        if (!AddSellMethod(app, symbol, SellMethod::kNotSelected)) return false;
        unit.Commit();
        return true;
      }
    }
    app.ui().MessageBox(
        "The Security you wish to add already exists in this Portfolio, therefore it can not be "
        "added again. If you wish to purchase Shares for this Security, click on the icon for the "
        "Security and click the 'Buy' button.",
        "Security Already Exists!", Icon::kInformation, Buttons::kOk);
    return false;
  });
}

bool DelSec(Application& app, const std::string& port_name, const std::string& symbol) {
  return Trap(app, "DelSec", false, [&] {
    DeleteSecurityRow(*app.client, port_name, symbol);
    return true;
  });
}

void UpdateSec2ndLine(Application& app, const std::string& symbol, const std::string& second_line) {
  TrapVoid(app, "UpdateSec2ndLine", [&] {
    app.ui().SetHelpBarText("Updating Optional Line");
    const std::string stored = StoredSecondLine(second_line);
    SetSecuritySecondLine(*app.client, app.current.port_name, symbol, stored);
    if (app.current.sec_symbol == symbol) app.window.display.second_line = stored;
  });
}

void UpdateSecName(Application& app, const std::string& symbol, const std::string& name) {
  UpdateSecCentralField(app, kNameChange, symbol, name);
}

void UpdateSecCusip(Application& app, const std::string& symbol, const std::string& cusip) {
  UpdateSecCentralField(app, kCusipChange, symbol, cusip);
}

}  // namespace lotwise
