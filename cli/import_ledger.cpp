#include "import_ledger.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <istream>
#include <optional>
#include <string_view>

#include "app/app_state.h"
#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "ground/date.h"
#include "ground/number_text.h"
#include "ground/paths.h"
#include "ground/program_ended.h"
#include "import_csv.h"
#include "import_entries.h"
#include "import_forms.h"
#include "lots/sell_shares.h"

namespace lotwise::cli {

namespace {

enum Column {
  kPortfolio,
  kSymbol,
  kDate,
  kAction,
  kShares,
  kAmount,
  kFee,
  kRatio,
  kBlock,
  kMethod,
  kNotes,
  kName,
  kCusip,
  kColumnCount
};

constexpr std::array<const char*, kColumnCount> kColumnNames = {
    "Portfolio", "Symbol", "Date",   "Action", "Shares", "Amount", "Fee",
    "Ratio",     "Block",  "Method", "Notes",  "Name",   "CUSIP"};
// The columns a ledger may leave out: they only describe new securities.
constexpr bool Optional(int column) { return column == kName || column == kCusip; }

struct ActionName {
  const char* name;
  LedgerAction action;
  // The columns this action reads, beside Portfolio, Symbol, Date and Notes.
  std::array<bool, kColumnCount> uses;
};

constexpr std::array<bool, kColumnCount> Uses(std::initializer_list<Column> columns) {
  std::array<bool, kColumnCount> uses{};
  for (Column column : columns) uses[column] = true;
  return uses;
}

const std::array<ActionName, 6> kActions = {{
    {"Buy", LedgerAction::kBuy, Uses({kShares, kAmount, kFee})},
    {"Reinvest", LedgerAction::kReinvest, Uses({kShares, kAmount, kFee})},
    {"Sell", LedgerAction::kSell, Uses({kShares, kAmount, kFee, kBlock, kMethod})},
    {"Split", LedgerAction::kSplit, Uses({kRatio, kBlock})},
    {"Dividend", LedgerAction::kDividend, Uses({kRatio, kBlock})},
    {"Adjust", LedgerAction::kAdjust, Uses({kShares, kAmount, kBlock})},
}};

struct MethodName {
  const char* token;
  SellMethod code;
};

constexpr std::array<MethodName, 4> kMethods = {{
    {"FIFO", SellMethod::kFifo},
    {"Specific", SellMethod::kSpecificId},
    {"AvgSingle", SellMethod::kAvgSingle},
    {"AvgDouble", SellMethod::kAvgDouble},
}};

bool SameText(std::string_view a, std::string_view b) { return ToUpperAscii(a) == ToUpperAscii(b); }

std::string Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// Why a number or amount column was refused, and what it takes.
std::string NumberComplaint(std::string_view column, const std::string& text, NumberFault fault) {
  const std::string field = std::string(column) + " " + Quoted(text);
  const bool money = column != "Shares";
  if (fault == NumberFault::kTooLarge) {
    if (money) return field + " is too large: an amount must be less than " + Currency::kLimitText;
    return field + " is too large: at most " + std::to_string(kMaxWholeDigits) +
           " digits before the decimal point";
  }
  std::string complaint = field + (money ? " is not an amount of money" : " is not a number");
  if (text.find(',') != std::string::npos) {
    complaint +=
        ": a \",\" may only separate groups of three digits before the decimal point, "
        "as in 1,234.50";
  }
  return complaint;
}

// Where each column sits in the records.
using ColumnMap = std::array<int, kColumnCount>;

// Reads the header row. Returns the complaint, or nullopt when every
// required column is there once and no other column is.
std::optional<std::string> MapColumns(const CsvRecord& header, ColumnMap& map) {
  map.fill(-1);
  for (size_t i = 0; i < header.fields.size(); ++i) {
    const std::string name = Trimmed(header.fields[i]);
    int column = -1;
    for (int c = 0; c < kColumnCount; ++c) {
      if (SameText(name, kColumnNames[static_cast<size_t>(c)])) column = c;
    }
    // A misspelt column would otherwise be dropped without a word.
    if (column < 0) return "unknown column " + Quoted(name);
    if (map[static_cast<size_t>(column)] >= 0) return "column " + name + " appears twice";
    map[static_cast<size_t>(column)] = static_cast<int>(i);
  }
  for (int c = 0; c < kColumnCount; ++c) {
    if (map[static_cast<size_t>(c)] < 0 && !Optional(c)) {
      return std::string("missing column ") + kColumnNames[static_cast<size_t>(c)];
    }
  }
  return std::nullopt;
}

// A block id as the program writes it ("01/05/2020-1"), also when typed
// with a short date ("1/5/2020-1").
std::string NormalBlockId(const std::string& text) {
  const size_t dash = text.rfind('-');
  if (dash == std::string::npos) return text;
  std::optional<Date> date = Date::Parse(text.substr(0, dash));
  if (!date) return text;
  return date->ToString() + text.substr(dash);
}

// One ledger line read from its record.
struct LedgerLine {
  std::string portfolio;
  SecurityFields security;
  LedgerEntry entry;
  // The sale's method, named in the entry as the dialog names it once the
  // program is there to name it.
  std::optional<SellMethod> method;
};

class LineReader {
 public:
  LineReader(const ColumnMap& map, const CsvRecord& record) : map_(map), record_(record) {}

  // Returns the complaint about the line, or nullopt when `line` is filled.
  std::optional<std::string> Read(LedgerLine& line) {
    line.portfolio = Field(kPortfolio);
    line.security.symbol = Field(kSymbol);
    line.security.name = Field(kName);
    line.security.cusip = Field(kCusip);
    LedgerEntry& entry = line.entry;
    entry.date = Field(kDate);
    entry.notes = record_.fields[static_cast<size_t>(map_[kNotes])];

    const std::string action_text = Field(kAction);
    const ActionName* action = nullptr;
    for (const ActionName& candidate : kActions) {
      if (SameText(action_text, candidate.name)) action = &candidate;
    }
    if (action == nullptr) {
      return "unknown action " + Quoted(action_text) +
             ": use Buy, Reinvest, Sell, Split, Dividend or Adjust";
    }
    entry.action = action->action;
    for (int c : {kShares, kAmount, kFee, kRatio, kBlock, kMethod}) {
      if (!action->uses[static_cast<size_t>(c)] && !Field(c).empty()) {
        return std::string("a ") + action->name + " takes no " +
               kColumnNames[static_cast<size_t>(c)];
      }
    }
    // An empty amount or number is a field left at 0, as in the dialog.
    if (!Field(kShares).empty()) {
      std::optional<double> shares = ParseNumber(Field(kShares));
      if (!shares)
        return NumberComplaint("Shares", Field(kShares), ParseNumberFault(Field(kShares)));
      entry.shares = *shares;
      entry.shares_given = true;
    }
    for (auto [column, target] : {std::pair{kAmount, &entry.amount}, std::pair{kFee, &entry.fee}}) {
      if (Field(column).empty()) continue;
      std::optional<Currency> amount = Currency::Parse(Field(column));
      if (!amount) {
        return NumberComplaint(kColumnNames[column], Field(column),
                               Currency::ParseFault(Field(column)));
      }
      *target = *amount;
    }
    if (!Field(kRatio).empty() && !ReadRatio(entry)) {
      return "Ratio " + Quoted(Field(kRatio)) + " is not NEW:OLD, such as 2:1 or 0.1:1";
    }
    if (!Field(kMethod).empty() && !ReadMethod(line)) {
      return "unknown method " + Quoted(Field(kMethod)) +
             ": use FIFO, Specific, AvgSingle or AvgDouble";
    }
    return ReadBlock(entry);
  }

 private:
  std::string Field(int column) const {
    const int at = map_[static_cast<size_t>(column)];
    if (at < 0) return {};
    return Trimmed(record_.fields[static_cast<size_t>(at)]);
  }

  bool ReadRatio(LedgerEntry& entry) const {
    const std::string text = Field(kRatio);
    const size_t colon = text.find(':');
    if (colon == std::string::npos) return false;
    std::optional<double> new_shares = ParseNumber(Trimmed(text.substr(0, colon)));
    std::optional<double> old_shares = ParseNumber(Trimmed(text.substr(colon + 1)));
    if (!new_shares || !old_shares) return false;
    // The split dialog asks for the new shares first ("Ratio of Number of
    // New Shares:"), then the old ("To Number of Old Shares:").
    entry.new_shares = *new_shares;
    entry.old_shares = *old_shares;
    return true;
  }

  bool ReadMethod(LedgerLine& line) const {
    for (const MethodName& method : kMethods) {
      if (SameText(Field(kMethod), method.token)) {
        line.method = method.code;
        return true;
      }
    }
    return false;
  }

  std::optional<std::string> ReadBlock(LedgerEntry& entry) const {
    const std::string text = Field(kBlock);
    if (entry.action == LedgerAction::kAdjust && text.empty()) {
      return std::string("an adjustment needs the Block it corrects");
    }
    if (entry.action != LedgerAction::kSell) {
      if (text.find_first_of("=;") != std::string::npos) {
        return "Block " + Quoted(text) + " is not one block id";
      }
      entry.block = NormalBlockId(text);
      return std::nullopt;
    }
    const std::string bad = "Block " + Quoted(text) + " is not BLOCKID=SHARES;BLOCKID=SHARES";
    size_t start = 0;
    while (start < text.size()) {
      size_t end = text.find(';', start);
      if (end == std::string::npos) end = text.size();
      const std::string pick = text.substr(start, end - start);
      const size_t equals = pick.find('=');
      if (equals == std::string::npos) return bad;
      const std::string block_id = Trimmed(pick.substr(0, equals));
      std::optional<double> shares = ParseNumber(Trimmed(pick.substr(equals + 1)));
      if (block_id.empty() || !shares) return bad;
      entry.picks.push_back({NormalBlockId(block_id), *shares});
      start = end + 1;
    }
    return std::nullopt;
  }

  const ColumnMap& map_;
  const CsvRecord& record_;
};

bool AllEmpty(const CsvRecord& record) {
  for (const std::string& field : record.fields) {
    if (!Trimmed(field).empty()) return false;
  }
  return true;
}

// Opens what the line needs, creating its portfolio and security when the
// taxpayer has none of that name, then enters its transaction. Returns
// true iff the transaction was stored; the user has been told otherwise.
bool ImportLine(Session& session, const ColumnMap& map, size_t width, const CsvRecord& record) {
  Application& app = session.app;
  if (record.fields.size() != width) {
    session.ui.Note(std::to_string(record.fields.size()) + " fields where the header has " +
                    std::to_string(width));
    return false;
  }
  LedgerLine line;
  if (std::optional<std::string> complaint = LineReader(map, record).Read(line)) {
    session.ui.Note(*complaint);
    return false;
  }
  if (line.method) line.entry.method = GetSellName(app, *line.method);
  std::optional<std::string> port = FindPortfolio(app, line.portfolio);
  if (!port) {
    if (!NewPortfolio(session, line.portfolio, "")) return false;
    port = app.current.port_name;
  } else if (State(app, kStateQuery) < kPortOpen || app.current.port_name != *port) {
    if (!session.OpenPortfolio(*port)) return false;
  }
  std::optional<std::string> symbol = FindSecurity(app, *port, line.security.symbol);
  if (!symbol) {
    if (!AddSecurity(session, line.security)) return false;
  } else if (State(app, kStateQuery) != kSecOpen || app.current.sec_symbol != *symbol) {
    if (!session.OpenSecurity(*symbol)) return false;
  }
  return EnterTransaction(session, line.entry);
}

// Prints what the program said about a line, every line of it after
// `prefix`, so that the messages of a ledger line can be found by its
// number.
void Report(ConsoleUi& ui, const std::string& prefix, std::string_view text) {
  size_t start = 0;
  while (true) {
    const size_t end = text.find('\n', start);
    ui.Note(prefix + std::string(text.substr(start, end - start)));
    if (end == std::string_view::npos) return;
    start = end + 1;
  }
}

// While alive, what the program says goes into `lines` instead of the
// console.
class CaptureGuard {
 public:
  CaptureGuard(ConsoleUi& ui, std::vector<ConsoleUi::ShownLine>& lines) : ui_(ui) {
    ui_.SetCapture(&lines);
  }
  ~CaptureGuard() { ui_.SetCapture(nullptr); }
  CaptureGuard(const CaptureGuard&) = delete;
  CaptureGuard& operator=(const CaptureGuard&) = delete;

 private:
  ConsoleUi& ui_;
};

}  // namespace

bool ImportLedger(Session& session, const std::string& taxpayer_code, std::istream& csv,
                  const std::string& source_name, int* stored) {
  Application& app = session.app;
  ConsoleUi& ui = session.ui;
  if (stored != nullptr) *stored = 0;
  auto at = [&](int line) { return source_name + ":" + std::to_string(line) + ": "; };

  std::vector<CsvRecord> records;
  CsvError error;
  if (!ReadCsv(csv, records, error)) {
    ui.Note(at(error.line) + error.text + "; nothing imported");
    return false;
  }
  if (records.empty()) {
    ui.Note(source_name + ": no header row; nothing imported");
    return false;
  }
  ColumnMap map;
  if (std::optional<std::string> complaint = MapColumns(records.front(), map)) {
    ui.Note(at(records.front().line) + *complaint + "; nothing imported");
    return false;
  }
  const size_t width = records.front().fields.size();
  if (!app.central) return false;
  if (!app.client || app.current.client_code != taxpayer_code) {
    if (!session.OpenTaxpayer(taxpayer_code)) return false;
  }

  int imported = 0;
  int lines = 0;
  int refused = 0;
  {
    // All or nothing: the procedures' own units nest inside these as
    // savepoints. New symbols go to the Security Symbols File, so it takes
    // part too.
    std::optional<Database::Transaction> central_unit;
    std::optional<Database::Transaction> client_unit;
    if (!Trap(app, "ImportLedger", false, [&] {
          central_unit.emplace(*app.central);
          client_unit.emplace(*app.client);
          return true;
        })) {
      return false;
    }
    for (size_t i = 1; i < records.size(); ++i) {
      const CsvRecord& record = records[i];
      // Spreadsheets leave rows of empty cells below the data.
      if (AllEmpty(record)) continue;
      ++lines;
      std::vector<ConsoleUi::ShownLine> shown;
      bool ok = false;
      // A line that ends the program still has its messages and its refusal
      // told before the end goes on.
      bool program_ended = false;
      {
        CaptureGuard capture(ui, shown);
        try {
          ok = Trap(app, "ImportLedger", false,
                    [&] { return ImportLine(session, map, width, record); });
        } catch (const ProgramEnded&) {
          program_ended = true;
        }
      }
      // A message of the error kind means something failed on the way,
      // even where the dialog went on and closed.
      for (const ConsoleUi::ShownLine& line : shown) {
        Report(ui, at(record.line), line.text);
        if (line.icon == Icon::kCritical) ok = false;
      }
      // The entry's own procedure re-booked these, having asked first.
      for (const RebookedSale& sale : app.rebooked_sales) {
        ui.Note(at(record.line) + "re-booked sale of " + NumberText(sale.shares) + " shares on " +
                sale.date.ToString());
      }
      app.rebooked_sales.clear();
      if (ok) {
        ++imported;
      } else {
        ++refused;
        ui.Note(at(record.line) + "refused");
      }
      if (program_ended) throw ProgramEnded{};
    }
    if (refused > 0) {
      ui.Note(source_name + ": nothing imported: " + std::to_string(refused) + " of " +
              std::to_string(lines) + (lines == 1 ? " line" : " lines") + " refused");
      return false;
    }
    bool committed = Trap(app, "ImportLedger", false, [&] {
      // The symbols first: should the Taxpayer File then fail to commit,
      // the Security Symbols File only holds symbols nobody uses yet.
      central_unit->Commit();
      client_unit->Commit();
      return true;
    });
    if (!committed) return false;
  }
  if (stored != nullptr) *stored = imported;
  return true;
}

}  // namespace lotwise::cli
