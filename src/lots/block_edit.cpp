#include "lots/block_edit.h"

#include "data/application.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "ground/ui_port.h"
#include "lots/security_display.h"

namespace lotwise {

bool UpdateBlock(Application& app, int64_t sec_id, int64_t block_no, Date date) {
  return Trap(app, "UpdateBlock", false, [&] {
    if (!ConfirmAndRedateBlock(app, sec_id, block_no, date)) return false;
    if (app.window.display.visible && app.current.sec_id == sec_id) {
      UpdateTransInBlock(app, app.window.display.trans_filter);
    }
    return true;
  });
}

void DeleteBlock(Application& app) {
  TrapVoid(app, "DeleteBlock", [&] {
    const int64_t block_no = app.current.block_no;
    // With lots but none of them selected there is still nothing to delete.
    if (!SecurityHoldsBlock(app, app.current.sec_id, block_no)) {
      app.ui().MessageBox(
          "There are no blocks to delete. To add a block you need to enter a Buy or Reinvestment.",
          "No Blocks", Icon::kInformation, Buttons::kOk);
      return;
    }
    if (app.ui().MessageBox("You are about to delete Block: " + app.current.block_id +
                                ". This will also delete all transactions in this block. Are you "
                                "sure you want to do this?",
                            "Delete Block?", Icon::kQuestion, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    DeleteBlockRows(app, block_no);
    app.current.block_no = 0;
    app.current.block_id.clear();
    if (app.window.display.visible) {
      UpdateSharesInSec(app);
      DisplayBlock(app);
    }
  });
}

}  // namespace lotwise
