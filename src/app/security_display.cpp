#include "app/security_display.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>
#include <vector>

#include "app/application.h"
#include "app/current_context.h"
#include "app/error_handler.h"
#include "app/lw_error.h"
#include "app/number_text.h"
#include "app/ui_port.h"
#include "app/value_helpers.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/query_builders.h"
#include "data/upgrades.h"
#include "lots/add_mod_sec.h"
#include "lots/security_list.h"

namespace lotwise {

namespace {

constexpr int16_t kNotSelectedMethod = 255;
constexpr int16_t kFilterCount = 7;

Database& ClientFile(Application& app) {
  if (!app.client) throw LwError(err::kUnexpected, "No Taxpayer File is open");
  return *app.client;
}

bool SameSymbol(std::string_view a, std::string_view b) {
  return std::ranges::equal(
      a, b, [](unsigned char x, unsigned char y) { return std::toupper(x) == std::toupper(y); });
}

bool AskReEnterDeletedSymbol(Application& app, const std::string& symbol) {
  const std::string text =
      "The Security (Symbol:" + symbol + ") " +
      "has been deleted from the Security Symbols File. " + "\n" +
      "This means that the Symbol and Name will be missing, however any Transactions in the "
      "Security should be intact." +
      "\n\n" + "Would you like to Add the Security to the Security Symbols File again?";
  return app.ui().MessageBox(text, "Please Note!", Icon::kQuestion, Buttons::kYesNo) ==
         Answer::kYes;
}

// The security's row of the saved query "Get a Security" in the current
// portfolio.
struct SecurityRecord {
  int64_t sec_id = 0;
  std::string symbol;
  std::optional<std::string> second_line;
  std::optional<int64_t> sell_method;
};

// Returns the security's row, or nothing when the portfolio no longer holds
// it (another user of a shared file may have deleted it).
std::optional<SecurityRecord> GetASecurity(Application& app, const std::string& symbol) {
  const std::string port = GetCurrPortInfo(app, "[Port Name]");
  Query q =
      ClientFile(app).SelectSaved("Get a Security", {{"sPortName", port}, {"sSecSymbol", symbol}});
  if (!q.Next()) return std::nullopt;
  SecurityRecord record;
  record.sec_id = q.Int("Sec ID");
  record.symbol = q.Text("Sec Symbol");
  record.second_line = q.OptionalText("2nd Line");
  if (!q.IsNull("Sell Method")) record.sell_method = q.Int("Sell Method");
  return record;
}

std::vector<BlockRow> ReadBlocks(Application& app, int64_t sec_id) {
  std::vector<BlockRow> rows;
  Query q = Select(ClientFile(app), Query_GetBlocksInSec(sec_id));
  while (q.Next()) rows.push_back({q.Int("Block No"), q.Text("Block ID"), q.DateValue("Date")});
  return rows;
}

int FindBlockNo(const std::vector<BlockRow>& rows, int64_t block_no) {
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].block_no == block_no) return static_cast<int>(i);
  }
  return -1;
}

int FindBlockId(const std::vector<BlockRow>& rows, std::string_view block_id) {
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].block_id == block_id) return static_cast<int>(i);
  }
  return -1;
}

void ComputeTotalShares(Application& app) {
  app.ui().SetHelpBarText("Calculating Total Shares");
  double total = 0;
  Query q = ClientFile(app).SelectSaved("Total Shares Per Table", {{"lSecID", app.current.sec_id}});
  while (q.Next()) {
    if (!q.IsNull("Total Shares")) total += q.Double("Total Shares");
  }
  app.window.display.total_shares = NumberText(RoundShares(total));
}

}  // namespace

void ShowSecDisplay(Application& app, const std::string& symbol) {
  TrapVoid(app, "ShowSecDisplay", [&] {
    app.ui().SetHelpBarText("Loading Security");
    std::string name = GetSecInfoFromCDB(app, symbol, "[Sec Name]");
    std::string cusip = GetSecInfoFromCDB(app, symbol, "CUSIP");
    // The taxpayer's transactions do not depend on the central row, so the
    // security opens either way; the marker text stands in for its name.
    if (name == kSymbolNotInCentral && AskReEnterDeletedSymbol(app, symbol)) {
      ShowReplaceSecInCDB(app, symbol);
      name = GetSecInfoFromCDB(app, symbol, "[Sec Name]");
      cusip = GetSecInfoFromCDB(app, symbol, "CUSIP");
    }

    std::optional<SecurityRecord> found = GetASecurity(app, symbol);
    if (found && !found->sell_method) {
      AddSellMethod(app, symbol, kNotSelectedMethod);
      found = GetASecurity(app, symbol);
    }
    if (!found) {
      app.window.display.visible = false;
      app.ui().MessageBox("The Security " + symbol +
                              " is no longer in this Portfolio. Another user may have deleted it.",
                          "Security not found", Icon::kInformation, Buttons::kOk);
      return;
    }
    const SecurityRecord& record = *found;

    SecurityDisplay& display = app.window.display;
    display.sec_name = name;
    display.sec_cusip = cusip;
    display.second_line = record.second_line.value_or(" ");
    display.sell_method = static_cast<int16_t>(record.sell_method.value_or(kNotSelectedMethod));
    display.blocks = ReadBlocks(app, record.sec_id);
    display.selected_block = display.blocks.empty() ? -1 : 0;
    app.current.sec_id = record.sec_id;
    app.current.sec_symbol = record.symbol;

    display.trans_filter = 0;
    display.trans_filter_caption = kTransFilterCaptions[0];
    UpdateTransInBlock(app, display.trans_filter);
    UpdateSharesInSec(app);
    display.visible = true;
  });
}

void HideSecDisplay(Application& app) {
  TrapVoid(app, "HideSecDisplay", [&] { app.window.display.visible = false; });
}

void SetDisplayTrans(Application& app) {
  TrapVoid(app, "SetDisplayTrans", [&] {
    SecurityDisplay& display = app.window.display;
    const int16_t index = display.trans_filter;
    if (index < 0 || index >= kFilterCount) {
      throw LwError(err::kUnexpected, "Invalid transaction type " + std::to_string(index));
    }
    UpdateTransInBlock(app, index);
    display.trans_filter_caption = kTransFilterCaptions[index];
  });
}

void UpdateTransInBlock(Application& app, int16_t type_index) {
  TrapVoid(app, "UpdateTransInBlock", [&] {
    if (type_index < 0 || type_index >= kFilterCount) {
      throw LwError(err::kUnexpected, "Invalid transaction type " + std::to_string(type_index));
    }
    SecurityDisplay& display = app.window.display;
    const int count = static_cast<int>(display.blocks.size());
    if (display.selected_block < 0 || display.selected_block >= count) {
      display.selected_block = count > 0 ? 0 : -1;
    }
    if (display.selected_block < 0) {
      display.transactions.clear();
      display.selected_transaction = -1;
      display.transactions_caption = "Transaction List";
      app.current.block_no = 0;
      app.current.block_id.clear();
      return;
    }

    BlockRow& block = display.blocks[static_cast<size_t>(display.selected_block)];
    Database& db = ClientFile(app);
    {
      // A re-dated block keeps its row in the grid; its new id and date are
      // read here so that the caption and the current block never go stale.
      Query fresh = db.Select(R"(SELECT "Block ID", "Date" FROM "Blocks" WHERE "Block No" = :n)",
                              {{"n", block.block_no}});
      if (fresh.Next()) {
        block.block_id = fresh.Text("Block ID");
        block.date = fresh.DateValue("Date");
      }
    }
    std::vector<TransactionRow> rows;
    Query q = Select(db, Query_TransInBlock(block.block_no, static_cast<TransKind>(type_index)));
    while (q.Next()) {
      TransactionRow row;
      row.date = q.DateValue("Date");
      row.transaction = q.Text("Transaction");
      row.cost = q.Money("Cost");
      row.sale_price = q.Money("Sale Price");
      row.shares = q.Double("Shares");
      row.fee = q.Money("Fee");
      row.notes = q.Text("Notes");
      row.unique_id = q.Int("Unique ID");
      row.prec_sort = static_cast<int16_t>(q.Int("Prec Sort"));
      rows.push_back(std::move(row));
    }
    display.transactions = std::move(rows);
    display.selected_transaction = display.transactions.empty() ? -1 : 0;
    display.transactions_caption = "Transaction List for Block - " + std::to_string(block.block_no);
    app.current.block_no = block.block_no;
    app.current.block_id = block.block_id;
  });
}

void UpdateSharesInSec(Application& app) {
  TrapVoid(app, "UpdateSharesInSec", [&] {
    // Large files open faster when the totals wait for the user's click.
    if (!app.window.options.recalc_shares) {
      app.window.display.total_shares = "Recalculate";
      return;
    }
    ComputeTotalShares(app);
  });
}

void RecalculateShares(Application& app) {
  TrapVoid(app, "RecalculateShares", [&] { ComputeTotalShares(app); });
}

void DisplaySecurity(Application& app, const std::string& symbol) {
  TrapVoid(app, "DisplaySecurity", [&] {
    app.ui().SetHelpBarText("Please Wait");
    ReloadSecList(app, symbol);
    SecList_Select(app);
  });
}

void DisplayBlock(Application& app, const std::string& block_id) {
  TrapVoid(app, "DisplayBlock", [&] {
    app.ui().SetHelpBarText("Please Wait");
    SecurityDisplay& display = app.window.display;
    const int old_index = display.selected_block;
    int64_t old_block_no = 0;
    if (old_index >= 0 && old_index < static_cast<int>(display.blocks.size())) {
      old_block_no = display.blocks[static_cast<size_t>(old_index)].block_no;
    }
    display.blocks = ReadBlocks(app, app.current.sec_id);
    const int count = static_cast<int>(display.blocks.size());
    int index = block_id.empty() ? -1 : FindBlockId(display.blocks, block_id);
    if (index < 0 && old_block_no != 0) index = FindBlockNo(display.blocks, old_block_no);
    if (index < 0 && count > 0) index = std::clamp(old_index, 0, count - 1);
    display.selected_block = index;
    UpdateTransInBlock(app, display.trans_filter);
  });
}

void SelectBlock(Application& app, int index) {
  TrapVoid(app, "SelectBlock", [&] {
    SecurityDisplay& display = app.window.display;
    if (index < 0 || index >= static_cast<int>(display.blocks.size())) return;
    app.ui().SetHelpBarText("Loading Transactions");
    display.selected_block = index;
    UpdateTransInBlock(app, display.trans_filter);
  });
}

void ModifySecDisplay(Application& app, const std::string& symbol, const std::string& name,
                      const std::string& cusip) {
  TrapVoid(app, "ModifySecDisplay", [&] {
    const MainWindowState& window = app.window;
    const int index = window.selected_security;
    if (index < 0 || index >= static_cast<int>(window.securities.size())) return;
    if (!SameSymbol(window.securities[static_cast<size_t>(index)].symbol, symbol)) return;
    app.window.display.sec_name = name;
    app.window.display.sec_cusip = cusip;
  });
}

}  // namespace lotwise
