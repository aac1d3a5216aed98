#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "ground/currency.h"
#include "ground/date.h"
#include "ground/sell_method_codes.h"

namespace lotwise {

// Application states.
inline constexpr int16_t kStateNone = 0;
inline constexpr int16_t kClientClosed = 1;
inline constexpr int16_t kClientOpen = 2;
inline constexpr int16_t kPortOpen = 3;
inline constexpr int16_t kSecOpen = 4;
inline constexpr int16_t kStateQuery = -4000;

// Check marks of the Options menu, as the INI file sets them.
struct OptionMarks {
  bool show_tool_bar = true;   // mnuShowToolbar
  bool show_tool_tips = true;  // mnuShowToolTips
  bool show_help_bar = true;   // mnuHelpBar
  bool recalc_shares = true;   // mnuRecalcShares
  bool open_only_port = true;  // mnuOpenOnlyPort
};

// One row of the portfolio's security list (SSdgSecList).
struct SecurityRow {
  std::string symbol;
  std::string second_line;
  int64_t sec_id = 0;
};

// One row of the open security's blocks grid (SSdgBlocks), oldest first.
struct BlockRow {
  int64_t block_no = 0;
  std::string block_id;
  Date date;
};

// One row of the selected block's transactions grid (SSdgTransactions), in
// the shape of the block's transaction listing.
struct TransactionRow {
  Date date;
  std::string transaction;  // "Buy", "Sell", "Stock Split (1 to 2)", ...
  Currency cost;
  Currency sale_price;
  double shares = 0;
  Currency fee;
  std::string notes;
  int64_t unique_id = 0;
  int16_t prec_sort = 0;
};

// The security panel (pnlSecDisplay) of the open security.
struct SecurityDisplay {
  bool visible = false;
  std::string sec_name;     // txtSecName
  std::string sec_cusip;    // txtSecCusip
  std::string second_line;  // txt2ndLine
  // The security's sell method as the main window holds it.
  SellMethod sell_method = SellMethod::kNotSelected;
  std::vector<BlockRow> blocks;
  int selected_block = -1;                   // index into blocks, -1 when there are none
  int16_t trans_filter = 0;                  // CSoptDisplayTrans, 0 "All" to 6 "Adjustment"
  std::string trans_filter_caption = "All";  // lblDisplayTrans
  std::vector<TransactionRow> transactions;
  int selected_transaction = -1;
  std::string transactions_caption;  // "Transaction List for Block - 12"
  std::string total_shares;          // pnlTotalShares: the total, or "Recalculate"
};

// The main window's state, kept in the core so that the window only mirrors
// it: the application state, what each state enables and shows, the option
// check marks, the caption panels, the security list and the security panel.
struct MainWindowState {
  int16_t state = kStateNone;
  OptionMarks options;
  std::string client_panel;     // pnlClient caption (ampersands doubled)
  std::string portfolio_panel;  // pnlPortfolio caption (ampersands doubled)
  bool tool_bar_visible = true;
  bool help_bar_visible = true;
  // Menu items and menus by name ("mnuFileCloseClient", "mnuPortfolio")
  // and tool-bar buttons by key ("NewPort"): enabled, and (menus) visible.
  // A name not in the map keeps its designed default (enabled, visible).
  std::map<std::string, bool> enabled;
  std::map<std::string, bool> visible;
  bool sec_list_visible = false;
  std::vector<SecurityRow> securities;
  int selected_security = -1;  // index into securities
  SecurityDisplay display;

  // Returns whether the menu item or tool-bar key is enabled (default true).
  bool IsEnabled(const std::string& name) const;
  // Returns whether the menu is shown (default true).
  bool IsVisible(const std::string& name) const;
};

// The captions of the transaction-type filter, by index 0 to 6.
inline constexpr const char* kTransFilterCaptions[] = {
    "All", "Buy", "Reinvestment", "Sell", "Stock Split", "Dividend", "Adjustment"};

}  // namespace lotwise
