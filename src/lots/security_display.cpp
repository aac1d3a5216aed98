#include "lots/security_display.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "data/application.h"
#include "data/current_context.h"
#include "data/database.h"
#include "data/entry_rows.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "data/security_rows.h"
#include "ground/lw_error.h"
#include "ground/number_text.h"
#include "ground/text.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"

namespace lotwise {

namespace {

constexpr int16_t kFilterCount = 7;

std::vector<BlockRow> ReadBlocks(Application& app, int64_t sec_id) {
  return BlocksOfSecurity(app.ClientFile(), sec_id);
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
  const double total = TotalSharesOfSecurity(app.ClientFile(), app.current.sec_id);
  app.window.display.total_shares = NumberText(RoundShares(total));
}

}  // namespace

void FillSecDisplay(Application& app, int64_t sec_id) {
  SecurityDisplay& display = app.window.display;
  display.blocks = ReadBlocks(app, sec_id);
  display.selected_block = display.blocks.empty() ? -1 : 0;
  display.trans_filter = 0;
  display.trans_filter_caption = kTransFilterCaptions[0];
  UpdateTransInBlock(app, display.trans_filter);
  UpdateSharesInSec(app);
  display.visible = true;
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
    Database& db = app.ClientFile();
    // A re-dated block keeps its row in the grid; its new id and date are
    // read here so that the caption and the current block never go stale.
    if (const std::optional<BlockOnFile> fresh = FindBlock(db, block.block_no)) {
      block.block_id = fresh->block_id;
      block.date = fresh->date;
    }
    display.transactions =
        TransactionsInBlock(db, block.block_no, static_cast<TransKind>(type_index));
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
