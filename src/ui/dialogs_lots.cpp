#include "ui/dialog_registry.h"
#include "ui/dlg_lots.h"

namespace lotwise::ui {

void RegisterLotDialogs(DialogRegistry& registry) {
  registry.Add("dlgBuyReinvest", RunBuyReinvest);
  registry.Add("dlgSellShares", RunSellShares);
  registry.Add("dlgMethod", RunMethod);
  registry.Add("dlgSellSpecific", RunSellSpecific);
  registry.Add("dlgNumShares", RunNumShares);
  registry.Add("dlgSplitDiv", RunSplitDiv);
  registry.Add("dlgAdjustBlock", RunAdjustBlock);
  registry.Add("dlgModifyTrans", RunModifyTrans);
  registry.Add("dlgRollback", RunRollback);
  registry.Add("dlgRemBlocks", RunRemBlocks);
}

}  // namespace lotwise::ui
