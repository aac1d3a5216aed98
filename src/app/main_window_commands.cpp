#include "app/main_window_commands.h"

#include <string>

#include "app/add_mod_sec.h"
#include "app/app_state.h"
#include "app/maintenance.h"
#include "app/portfolio_dialogs.h"
#include "app/sec_symbol.h"
#include "app/security_commands.h"
#include "app/startup.h"
#include "app/taxpayer_dialog.h"
#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "ground/program_ended.h"
#include "ground/ui_port.h"
#include "lots/adjust_block.h"
#include "lots/block_edit.h"
#include "lots/buy_reinvest.h"
#include "lots/modify_trans.h"
#include "lots/rollback.h"
#include "lots/security_display.h"
#include "lots/security_list.h"
#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "lots/split_dividend.h"
#include "reports/report_dialogs.h"
#include "reports/report_runner.h"

namespace lotwise {

namespace {

// Where a control sits; it can be used only while that is shown.
enum class Holder { kMenu, kToolBar, kSecPanel };

struct Command {
  std::string_view name;
  Holder holder;
  std::string_view menu;  // the menu of a menu item
  void (*run)(Application&);
};

// The "Modify Entire" commands act on the whole entry that the selected
// transaction belongs to: every row of its kind in the security on its date.
void ModifyEntire(Application& app, const char* location, int16_t prec_sort, const char* kind,
                  void (*show)(Application&, const TransactionRow&)) {
  TrapVoid(app, location, [&] {
    const SecurityDisplay& display = app.window.display;
    const int index = display.selected_transaction;
    if (display.visible && index >= 0 && index < static_cast<int>(display.transactions.size())) {
      const TransactionRow& row = display.transactions[static_cast<size_t>(index)];
      if (row.prec_sort == prec_sort) {
        show(app, row);
        return;
      }
    }
    app.ui().MessageBox(std::string("Please click on a ") + kind +
                            " transaction in the Transaction List first. Every " + kind +
                            " transaction of the Security on its date will be modified together.",
                        std::string("No ") + kind + " Selected", Icon::kInformation, Buttons::kOk);
  });
}

void ModEntireSellCommand(Application& app) {
  ModifyEntire(app, "mnuModEntireSell", kPrecSell, "Sell",
               [](Application& a, const TransactionRow& row) {
                 ShowModEntireSell(a, a.current.sec_id, row.date);
               });
}

void ModEntireSplitCommand(Application& app) {
  ModifyEntire(app, "mnuModEntSplit", kPrecSplit, "Stock Split",
               [](Application& a, const TransactionRow& row) {
                 ShowModEntSplitDiv(a, a.current.sec_id, row.date, kTypeSplit);
               });
}

void ModEntireDividendCommand(Application& app) {
  ModifyEntire(app, "mnuModEntSDiv", kPrecDividend, "Stock Dividend",
               [](Application& a, const TransactionRow& row) {
                 ShowModEntSplitDiv(a, a.current.sec_id, row.date, kTypeDividend);
               });
}

void OpenClientCommand(Application& app) { ShowOpenClient(app, "Open Taxpayer File"); }
void DeleteClientCommand(Application& app) { ShowOpenClient(app, "Select Taxpayer to Delete"); }
void StockSplitCommand(Application& app) { ShowSplit(app, "Stock Split"); }
void StockDividendCommand(Application& app) { ShowSplit(app, "Stock Dividend"); }

constexpr Holder kMenu = Holder::kMenu;
constexpr Holder kTool = Holder::kToolBar;
constexpr Holder kPanel = Holder::kSecPanel;

constexpr Command kCommands[] = {
    {"mnuFileSecSymbol", kMenu, "mnuFile", ShowSecSymbol},
    {"mnuFilePrintSetup", kMenu, "mnuFile", PrintSetup},
    {"mnuFileCompress", kMenu, "mnuFile", ShowCompress},
    {"mnuFileRepair", kMenu, "mnuFile", ShowRepair},
    {"mnuFileLocate", kMenu, "mnuFile", RunDlgFileLoc},
    {"mnuBackupTP", kMenu, "mnuFile", BackupToDisk},
    {"mnuRestoreTP", kMenu, "mnuFile", RestoreFromDisk},
    {"mnuFileExit", kMenu, "mnuFile", CloseMainWindow},
    {"mnuFileNewClient", kMenu, "mnuTaxpayer", ShowNewClient},
    {"mnuFileOpenClient", kMenu, "mnuTaxpayer", OpenClientCommand},
    {"mnuFileCloseClient", kMenu, "mnuTaxpayer", CloseClientFile},
    {"mnuFileModifyClient", kMenu, "mnuTaxpayer", ShowModifyClient},
    {"mnuTaxpayerDel", kMenu, "mnuTaxpayer", DeleteClientCommand},
    {"mnuPortfolioNew", kMenu, "mnuPortfolio", ShowNewPort},
    {"mnuPortfolioOpen", kMenu, "mnuPortfolio", ShowOpenPort},
    {"mnuPortfolioClose", kMenu, "mnuPortfolio", ClosePort},
    {"mnuPortfolioDelete", kMenu, "mnuPortfolio", ShowDelPort},
    {"mnuPortfolioModify", kMenu, "mnuPortfolio", ShowModPort},
    {"mnuSecurityAdd", kMenu, "mnuSecurity", ShowAddSec},
    {"mnuSecurityDelete", kMenu, "mnuSecurity", SecList_Delete},
    {"mnuChangeMethod", kMenu, "mnuSecurity", SetNewSellMethod},
    {"mnuDeleteBlock", kMenu, "mnuSecurity", DeleteBlock},
    {"mnuModifyTrans", kMenu, "mnuSecurity", ShowModifyTrans},
    {"mnuDeleteTrans", kMenu, "mnuSecurity", DeleteTransaction},
    {"mnuModEntireSell", kMenu, "mnuSecurity", ModEntireSellCommand},
    {"mnuModEntSplit", kMenu, "mnuSecurity", ModEntireSplitCommand},
    {"mnuModEntSDiv", kMenu, "mnuSecurity", ModEntireDividendCommand},
    {"mnuBuyShares", kMenu, "mnuActions", ShowBuyShares},
    {"mnuReinvest", kMenu, "mnuActions", ShowReinvest},
    {"mnuSellShares", kMenu, "mnuActions", ShowSellShares},
    {"mnuStockSplit", kMenu, "mnuActions", StockSplitCommand},
    {"mnuStockDividend", kMenu, "mnuActions", StockDividendCommand},
    {"mnuAdjustBlock", kMenu, "mnuActions", ShowAdjustBlock},
    {"mnuRollback", kMenu, "mnuActions", ShowRollBack},
    {"mnuTaxPayerReport", kMenu, "mnuReports", ShowTaxpayerListingDialog},
    {"mnuSecListing", kMenu, "mnuReports", ShowSecListingDialog},
    {"mnuTransListing", kMenu, "mnuReports", ShowTransListingDialog},
    {"mnuBasisAnalysis", kMenu, "mnuReports", ShowBasisAnalysisDialog},
    {"mnuScheduleD", kMenu, "mnuReports", ShowScheduleDDialog},
    {"mnuShowToolbar", kMenu, "mnuOptions", ToggleToolBar},
    {"mnuShowToolTips", kMenu, "mnuOptions", ToggleToolTips},
    {"mnuHelpBar", kMenu, "mnuOptions", ToggleHelpBar},
    {"mnuOpenOnlyPort", kMenu, "mnuOptions", ToggleOpenOnlyPort},
    {"mnuRecalcShares", kMenu, "mnuOptions", ToggleRecalcShares},
    {"mnuDelBackups", kMenu, "mnuOptions", ShowDelBackups},
    {"mnuHelpContents", kMenu, "mnuHelp", ShowHelpContents},
    {"mnuHelpOnHelp", kMenu, "mnuHelp", ShowHelpOnHelp},
    {"mnuAbout", kMenu, "mnuHelp", ShowAbout},
    {"Help", kTool, "", ShowHelpContents},
    {"SecSymbol", kTool, "", ShowSecSymbol},
    {"NewTP", kTool, "", ShowNewClient},
    {"OpenTP", kTool, "", OpenClientCommand},
    {"NewPort", kTool, "", ShowNewPort},
    {"OpenPort", kTool, "", ShowOpenPort},
    {"AddSec", kTool, "", ShowAddSec},
    {"Exit", kTool, "", CloseMainWindow},
    {"btnBuy", kPanel, "", ShowBuyShares},
    {"btnReinvest", kPanel, "", ShowReinvest},
    {"btnSell", kPanel, "", ShowSellShares},
    {"btnSplit", kPanel, "", StockSplitCommand},
    {"btnDividend", kPanel, "", StockDividendCommand},
    {"btnAdjust", kPanel, "", ShowAdjustBlock},
    {"btnRollback", kPanel, "", ShowRollBack},
};

const Command* FindCommand(std::string_view name) {
  for (const Command& command : kCommands) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

bool HolderShown(const Application& app, const Command& command) {
  switch (command.holder) {
    case Holder::kMenu:
      return app.window.IsVisible(std::string(command.menu));
    case Holder::kToolBar:
      return app.window.tool_bar_visible;
    case Holder::kSecPanel:
      return app.window.display.visible;
  }
  return false;
}

}  // namespace

bool CanRunMenuCommand(const Application& app, std::string_view name) {
  const Command* command = FindCommand(name);
  return command != nullptr && app.window.IsEnabled(std::string(name)) &&
         HolderShown(app, *command);
}

bool RunMenuCommand(Application& app, std::string_view name) {
  if (!CanRunMenuCommand(app, name)) return false;
  FindCommand(name)->run(app);
  return true;
}

void CloseMainWindow(Application& app) {
  app.ui().SetHelpBarText("Thank you for using the Tarnwick Software - Lotwise");
  throw ProgramEnded{};
}

}  // namespace lotwise
