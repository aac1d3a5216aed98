#include "data/taxpayer_file.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <optional>

#include "app/application.h"
#include "app/environment.h"
#include "app/error_handler.h"
#include "app/lw_error.h"
#include "app/paths.h"
#include "app/program_ended.h"
#include "app/ui_port.h"
#include "app/value_helpers.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/query_builders.h"
#include "data/schema.h"
#include "data/taxpayer_dialog.h"
#include "data/upgrades.h"

namespace lotwise {

namespace {

namespace fs = std::filesystem;

constexpr const char* kSortNameExistsText =
    "The Sort Name for this Client already exists for another Client. This is OK, however you may "
    "want to change it if you want unique Sort Names.";

// Cuts the text to at most `size` bytes without splitting a character.
std::string TruncateUtf8(const std::string& text, size_t size) {
  if (text.size() <= size) return text;
  size_t cut = size;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
  return text.substr(0, cut);
}

// The stored form of a year end: NULL for the empty date.
Value YearEndValue(Date year_end) {
  if (year_end.serial() == 0) return Value{};
  return Value{year_end};
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

// A taxpayer's row of the central index, as read before it is changed.
struct CentralClient {
  std::string name;
  std::string sort_name;
  std::string code;
  std::string file_name;
};

// Returns the central index row of `code` (compared without regard to
// case), if there is one.
std::optional<CentralClient> FindCentralClient(Database& central, std::string_view code) {
  Query q = Select(central, Query_GetClientCDB(code));
  if (!q.Next()) return std::nullopt;
  return CentralClient{q.Text("Client Name"), q.Text("Sort Name"), q.Text("Client Code"),
                       q.Text("File Name")};
}

// Returns the code of the first central row (in the order the rows were
// made) whose sort name equals `sort_name` without regard to case.
std::optional<std::string> FindSortNameHolder(Database& central, const std::string& sort_name) {
  Query q = central.Select(
      R"(SELECT "Client Code" FROM "Clients" WHERE "Sort Name" = :sort COLLATE NOCASE )"
      R"(ORDER BY rowid)",
      {{"sort", sort_name}});
  if (!q.Next()) return std::nullopt;
  return q.Text("Client Code");
}

bool SymbolInCentral(Database& central, const std::string& symbol) {
  Query q = central.Select(R"(SELECT 1 AS Found FROM "Securities" WHERE "Sec Symbol" = :symbol)",
                           {{"symbol", symbol}});
  return q.Next();
}

bool PortfolioHolds(Database& client, const std::string& port_name, const std::string& symbol) {
  Query q =
      client.SelectSaved("Get a Security", {{"sPortName", port_name}, {"sSecSymbol", symbol}});
  return q.Next();
}

void ShowClientNotIndexed(Application& app, const std::string& code) {
  app.ui().MessageBox(
      "The Taxpayer Code: " + code + " could not be found in the Security Symbols File.",
      "Taxpayer not found", Icon::kInformation, Buttons::kOk);
}

void InsertCentralClient(Database& central, const CentralClient& row) {
  central.Execute(
      R"(INSERT INTO "Clients" ("Client Name", "Sort Name", "Client Code", "File Name") )"
      R"(VALUES (:name, :sort, :code, :file))",
      {{"name", row.name}, {"sort", row.sort_name}, {"code", row.code}, {"file", row.file_name}});
}

// True iff `file_name` is neither indexed in the central file nor present
// in the taxpayer folder (both compared without regard to case, as the
// files may live on a folder that ignores case).
bool ClientFileNameFree(Application& app, const std::string& file_name) {
  Query indexed = app.central->SelectSaved("File Name", {{"sFileName", file_name}});
  if (indexed.Next()) return false;
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
    db->Execute(
        R"(INSERT INTO "Client" ("Client Name", "Sort Name", "Client Code", "2nd Line", "Year End") )"
        R"(VALUES (:name, :sort, :code, :line, :year_end))",
        {{"name", name},
         {"sort", sort_name},
         {"code", code},
         {"line", StoredSecondLine(second_line)},
         {"year_end", YearEndValue(year_end)}});
  } catch (...) {
    RemoveClientFileQuietly(app, file_name);
    throw;
  }
}

// After "No Taxpayer File" was answered Yes: lets the user make a new file
// for the taxpayer. NewClient refuses a code that is still indexed, so the
// index row (which points at the lost file) makes room while the dialog is
// open, and comes back unchanged if the user gives up. Returns true iff a
// Taxpayer File is open afterwards.
bool RecreateClientFile(Application& app, const CentralClient& row) {
  Database& central = *app.central;
  central.Execute(R"(DELETE FROM "Clients" WHERE "Client Code" = :code)", {{"code", row.code}});
  try {
    ShowNewModClient(app, "New Taxpayer", row.name, row.sort_name, row.code);
  } catch (const ProgramEnded&) {
    // The program ends on a fatal error in the dialog; the row still goes
    // back first, through a connection of its own.
    auto reopened = Database::Open(app.central_path, Database::Mode::kShared, app.storage_faults);
    if (!FindCentralClient(*reopened, row.code)) InsertCentralClient(*reopened, row);
    throw;
  }
  if (!FindCentralClient(central, row.code)) InsertCentralClient(central, row);
  return app.client != nullptr;
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
    const char* sql =
        change.is_name
            ? R"(UPDATE "Securities" SET "Sec Name" = :value WHERE "Sec Symbol" = :symbol)"
            : R"(UPDATE "Securities" SET "CUSIP" = :value WHERE "Sec Symbol" = :symbol)";
    if (central.Execute(sql, {{"value", value}, {"symbol", symbol}}) == 0) {
      app.ui().MessageBox(
          "The Security you have specified can't be found. You may need to Add it again.",
          "Security not found", Icon::kInformation, Buttons::kOk);
    }
  });
}

}  // namespace

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
    if (FindCentralClient(central, code)) {
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
        InsertCentralClient(central, {name, sort_name, code, file_name});
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

bool OpenClient(Application& app, const std::string& code) {
  return Trap(app, "OpenClient", false, [&] {
    std::optional<CentralClient> row = FindCentralClient(*app.central, code);
    if (!row) {
      ShowClientNotIndexed(app, code);
      return false;
    }
    try {
      if (row->file_name.empty()) {
        throw LwError(err::kFileNotFound, "No Taxpayer File is indexed for " + row->code);
      }
      OpenClientFile(app, row->file_name);
    } catch (const LwError& e) {
      if (e.number() != err::kFileNotFound) throw;
      if (app.ui().MessageBox(
              "A File does not exist for this Taxpayer. Would you like to create a new one?",
              "No Taxpayer File", Icon::kExclamation, Buttons::kYesNo) == Answer::kYes) {
        return RecreateClientFile(app, *row);
      }
      app.ui().MessageBox("Cancelled...", "Open Taxpayer cancelled", Icon::kInformation,
                          Buttons::kOk);
      return false;
    }
    UpdateCurrClient(app, row->file_name, row->code);
    UpdateCurrClientDB(app, app.update_all);
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
    std::optional<CentralClient> before = FindCentralClient(central, current);
    if (!before) {
      ShowClientNotIndexed(app, current);
      return false;
    }

    if (code != current) {
      // A change of letter case only finds the taxpayer's own row.
      std::optional<CentralClient> holder = FindCentralClient(central, code);
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
      const Params values = {{"name", name},
                             {"sort", sort_name},
                             {"code", code},
                             {"line", StoredSecondLine(second_line)},
                             {"year_end", YearEndValue(year_end)},
                             {"current", current}};
      // The Client table holds the one row of this file's taxpayer; a file
      // that lost it gets it back.
      if (client.Execute(R"(UPDATE "Client" SET "Client Name" = :name, "Sort Name" = :sort, )"
                         R"("Client Code" = :code, "2nd Line" = :line, "Year End" = :year_end)",
                         values) == 0) {
        client.Execute(
            R"(INSERT INTO "Client" ("Client Name", "Sort Name", "Client Code", "2nd Line", )"
            R"("Year End") VALUES (:name, :sort, :code, :line, :year_end))",
            values);
      }
      try {
        central.Execute(
            R"(UPDATE "Clients" SET "Client Name" = :name, "Sort Name" = :sort, "Client Code" = :code )"
            R"(WHERE "Client Code" = :current)",
            {{"name", name}, {"sort", sort_name}, {"code", code}, {"current", current}});
      } catch (const LwError& e) {
        if (e.number() != err::kDuplicateKey) throw;
        code_in_use = true;
      }
      if (!code_in_use) {
        try {
          client_unit.Commit();
        } catch (...) {
          try {
            central.Execute(R"(UPDATE "Clients" SET "Client Name" = :name, "Sort Name" = :sort, )"
                            R"("Client Code" = :old_code WHERE "Client Code" = :code)",
                            {{"name", before->name},
                             {"sort", before->sort_name},
                             {"old_code", before->code},
                             {"code", code}});
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
    std::optional<CentralClient> row = FindCentralClient(central, code);
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
    int count = 0;
    {
      Query found = central.SelectSaved("Get a Client", {{"sClientCode", code}});
      while (found.Next()) ++count;
    }
    if (count != 1) {
      app.ui().MessageBox("One and only one record should be found with this taxpayer code. " +
                              std::to_string(count) +
                              " records were found. Could not remove from central file.",
                          "Warning", Icon::kExclamation, Buttons::kOk);
      return;
    }
    central.ExecuteSaved("DeleteClient", {{"sClientCode", code}});
  });
}

void LogChange(Application& app, const std::string& port_name, int64_t sec_id, Date date,
               const std::string& description) {
  TrapVoid(app, "LogChange", [&] {
    std::string text = description;
    const auto size = static_cast<size_t>(DefinedTextSize("Change", "Description"));
    if (text.size() > size) {
      text = TruncateUtf8(text, size);
      app.ui().MessageBox(
          "Description length error in LogChange(). This error will not affect any of your data, "
          "and you may continue with your work. Please report the error to Tarnwick Software, Inc.",
          "Non-Fatal Error", Icon::kInformation, Buttons::kOk);
    }
    app.client->Execute(
        R"(INSERT INTO "Change" ("Date", "Port Name", "Sec ID", "Description") )"
        R"(VALUES (:date, :port, :sec, :description))",
        {{"date", date}, {"port", port_name}, {"sec", sec_id}, {"description", text}});
  });
}

bool NewPort(Application& app, const std::string& name, const std::string& second_line) {
  return Trap(app, "NewPort", false, [&] {
    try {
      app.client->Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line", "Client Code") )"
                          R"(VALUES (:name, :line, :code))",
                          {{"name", name},
                           {"line", StoredSecondLine(second_line)},
                           {"code", app.current.client_code}});
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
    // The securities follow the new name through the key's ON UPDATE CASCADE,
    // in the same statement.
    int64_t changed = 0;
    try {
      changed = app.client->Execute(
          R"(UPDATE "Portfolio" SET "Port Name" = :name, "2nd Line" = :line, "Client Code" = :code )"
          R"(WHERE "Port Name" = :current)",
          {{"name", name},
           {"line", StoredSecondLine(second_line)},
           {"code", app.current.client_code},
           {"current", app.current.port_name}});
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
    // Its securities, blocks and transactions go with it (ON DELETE CASCADE).
    app.client->ExecuteSaved("DelPortfolio", {{"sPortName", name}});
    return true;
  });
}

bool OpenPort(Application& app, const std::string& name) {
  return Trap(app, "OpenPort", false, [&] {
    {
      // Another user may have deleted it since the list was shown.
      Query port = Select(*app.client, Query_GetPort(name));
      if (!port.Next()) return false;
    }
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
    if (!SymbolInCentral(*app.central, symbol)) AddSecToCDB(app, symbol, name, cusip);

    Database& client = *app.client;
    bool already_held = PortfolioHolds(client, port_name, symbol);
    if (!already_held) {
      Database::Transaction unit(client);
      try {
        client.Execute(
            R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line") )"
            R"(VALUES (:symbol, :port, :line))",
            {{"symbol", symbol}, {"port", port_name}, {"line", StoredSecondLine(second_line)}});
      } catch (const LwError& e) {
        if (e.number() != err::kDuplicateKey) throw;
        already_held = true;
      }
      if (!already_held) {
        if (!AddSellMethod(app, symbol, 255)) return false;
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
    // Its blocks and their transactions go with it (ON DELETE CASCADE).
    app.client->ExecuteSaved("Delete Security", {{"sPortName", port_name}, {"sSecSymbol", symbol}});
    return true;
  });
}

void UpdateSec2ndLine(Application& app, const std::string& symbol, const std::string& second_line) {
  TrapVoid(app, "UpdateSec2ndLine", [&] {
    app.ui().SetHelpBarText("Updating Optional Line");
    app.client->Execute(R"(UPDATE "Security" SET "2nd Line" = :line WHERE "Port Name" = :port )"
                        R"(AND "Sec Symbol" = :symbol)",
                        {{"line", StoredSecondLine(second_line)},
                         {"port", app.current.port_name},
                         {"symbol", symbol}});
  });
}

void UpdateSecName(Application& app, const std::string& symbol, const std::string& name) {
  UpdateSecCentralField(app, kNameChange, symbol, name);
}

void UpdateSecCusip(Application& app, const std::string& symbol, const std::string& cusip) {
  UpdateSecCentralField(app, kCusipChange, symbol, cusip);
}

}  // namespace lotwise
