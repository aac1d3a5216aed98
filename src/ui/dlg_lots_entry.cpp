// The windows of the entry forms that take one transaction (buy or
// reinvestment, split or dividend, adjustment, modification) and of the
// roll-back with its list of removed blocks.
#include <QButtonGroup>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "lots/adjust_block.h"
#include "lots/buy_reinvest.h"
#include "lots/modify_trans.h"
#include "lots/rollback.h"
#include "lots/split_dividend.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

// The size the Taxpayer File gives every Notes field.
constexpr int kNotesLength = 255;

class BuyReinvestWindow : public FormWindow {
 public:
  BuyReinvestWindow(Application& app, BuyReinvestForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    AddPanel("pnlSecurity", "lblSecurity", "Security:", [&form] { return form.security; });
    OnLeaveField(AddDate("dtDate", "Date:", form.date), [&] { DateLostFocusBR(app_, form); });
    OnLeaveField(AddNumber("DblNumShares", "Number of Shares:", form.num_shares),
                 [&] { CheckNumSharesBR(app_, form); });
    OnLeaveField(AddMoney("CurrCostOfShares", "Cost of Shares:", form.cost_of_shares),
                 [&] { CostSharesLostFocusBR(app_, form); });
    OnLeaveField(AddMoney("CurrFee", "Fee:", form.fee), [&] { FeeLostFocusBR(app_, form); });
    AddMoneyDisplay("CurrTotalCost", "Total Cost:", form.total_cost);
    AddText("txtNotes", "Notes:", form.notes, kNotesLength);
    AddButton("btnOK", "OK", [&] { BuyReinvest_OK(app_, form, false); });
    AddButton("btnNext", "&Next", [&] { BuyReinvest_OK(app_, form, true); });
    AddCancelButton("btnCancel", "Cancel", [&] { BuyReinvest_Cancel(app_, form); });
    Finish(form.caption, [&form](std::string_view control) { return HelpText(form, control); });
  }
};

class SplitDivWindow : public FormWindow {
 public:
  SplitDivWindow(Application& app, SplitDivForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    AddPanel("pnlSecurity", "lblSecurity", "Security:", [&form] { return form.security; });
    AddPanel("lblBlock", "lblBlock", "Block:", [&form] { return form.block; });
    OnLeaveField(AddDate("dtDate", "Date:", form.date), [&] { DateLostFocusSD(app_, form); });
    OnLeaveField(AddNumber("DblPreRatio", "Ratio of Number of New Shares:", form.pre_ratio),
                 [&] { CheckPreRatioSD(app_, form); });
    OnLeaveField(AddNumber("DblPostRatio", "To Number of Old Shares:", form.post_ratio),
                 [&] { CheckPostRatioSD(app_, form); });
    AddOptions("CSoptBlocks", "Calculate for:",
               {{SplitDivForm::kCurrentBlock, "&Current Block"},
                {SplitDivForm::kAllBlocks, "&All Blocks"}},
               form.blocks);
    AddText("txtNotes", "Notes:", form.notes, kNotesLength);
    QLabel* explanation =
        AddPanel("lblExplanation", "lblExplanation", nullptr, [&form] { return form.explanation; });
    explanation->setFrameStyle(QFrame::NoFrame);
    explanation->setWordWrap(true);
    AddButton("btnOK", "OK", [&] { PressOkSplitDiv(app_, form); });
    AddCancelButton("btnCancel", "Cancel", [&] { SplitDiv_Cancel(app_, form); });
    Finish(form.caption, [&form](std::string_view control) { return HelpText(form, control); });
  }
};

class AdjustBlockWindow : public FormWindow {
 public:
  AdjustBlockWindow(Application& app, AdjustBlockForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    AddPanel("pnlSecurity", "pnlSecurity", "Security:", [&form] { return form.security; });
    AddPanel("pnlBlock", "pnlBlock", "Block:", [&form] { return form.block; });
    OnLeaveField(AddDate("dtDate", "Date:", form.date), [&] { DateLostFocusAB(app_, form); });
    // Both amounts are signed corrections: no check on leaving them.
    AddNumber("DblNumShares", "Number of Shares:", form.num_shares);
    AddMoney("CurrCostBasis", "Cost Basis:", form.cost_basis);
    AddText("txtNotes", "Notes:", form.notes, kNotesLength);
    AddButton("btnOK", "OK", [&] { AdjustBlock_OK(app_, form); });
    AddCancelButton("btnCancel", "Cancel", [&] { AdjustBlock_Cancel(app_, form); });
    Finish("Adjustment", [&form](std::string_view control) { return HelpText(form, control); });
  }
};

class ModifyTransWindow : public FormWindow {
 public:
  ModifyTransWindow(Application& app, ModifyTransForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    AddPanel("lblSecurity", "lblSecurity", "Security:", [&form] { return form.security; });
    AddPanel("pnlBlock", "lblBlock", "Block:", [&form] { return form.block; });
    QLabel* unique_id = AddPanel("lblUniqueID", "lblUniqueID", nullptr,
                                 [&form] { return std::to_string(form.unique_id); });
    unique_id->hide();
    OnLeaveField(AddDate("dtDate", "Date:", form.date), [&] { CheckDateMT(app_, form); });
    OnLeaveField(AddNumber("DblNumShares", "Number of Shares:", form.num_shares),
                 [&] { CheckNumSharesMT(app_, form); });
    QLineEdit* cost = AddMoney("CurrCostOfShares", form.cost_label.c_str(), form.cost_of_shares);
    cost->setEnabled(form.cost_enabled);
    OnLeaveField(cost, [&] { CheckCostOfSharesMT(app_, form); });
    QLineEdit* fee = AddMoney("CurrFee", "Fee:", form.fee);
    fee->setEnabled(form.fee_enabled);
    OnLeaveField(fee, [&] { CheckFeeMT(app_, form); });
    AddText("txtNotes", "Notes:", form.notes, kNotesLength);
    AddButton("btnOK", "OK", [&] { ModifyTrans_OK(app_, form); });
    AddCancelButton("btnCancel", "Cancel", [&] { ModifyTrans_Cancel(app_, form); });
    Finish(form.caption, [&form](std::string_view control) { return HelpText(form, control); });
  }
};

class RollbackWindow : public FormWindow {
 public:
  RollbackWindow(Application& app, RollbackForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    AddPanel("lblBlock", "lblBlock", "Current Block:", [&form] { return form.block; });
    OnLeaveField(AddDate("dtDate", "Rollback to:", form.date), [&] { CheckdateRB(app_, form); });
    AddCheck("chkBuys", "Buys", form.buys);
    AddCheck("chkReinvests", "Reinvestments", form.reinvests);
    AddCheck("chkSells", "Sells", form.sells);
    AddCheck("chkSplits", "Stock Splits", form.splits);
    AddCheck("chkDividends", "Stock Dividends", form.dividends);
    AddCheck("chkAdjusts", "Adjustments", form.adjusts);
    AddOptions("CSoptBlocks", "Rollback:",
               {{kRollbackAllBlocks, "&All Blocks"}, {kRollbackCurrentBlock, "&Current Block"}},
               form.blocks);
    AddButton("btnOK", "OK", [&] { RollBack_OK(app_, form); });
    AddCancelButton("btnCancel", "Cancel", [&] { RollBack_Cancel(app_, form); });
    Finish("Rollback", [&form](std::string_view control) { return HelpText(form, control); });
  }
};

class RemBlocksWindow : public FormWindow {
 public:
  RemBlocksWindow(Application& app, RemBlocksForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    QLabel* note = AddPanel("lblNote", "lblNote", nullptr, [&form] { return form.note; });
    note->setFrameStyle(QFrame::NoFrame);
    note->setWordWrap(true);
    auto* list = new QListWidget(this);
    list->setObjectName("SSdgRemBlocks");
    AddRow(nullptr, list);
    Bind([] {},
         [list, &form] {
           list->clear();
           for (const std::string& block_id : form.removed) list->addItem(ToQ(block_id));
         });
    AddButton("btnPrint", "&Print", [&] { PrintREmovedBlocks(app_, form); });
    AddCancelButton("btnClose", "&Close", [&] { RemBlocks_Close(app_, form); });
    Finish("Removed Blocks", [&form](std::string_view control) { return HelpText(form, control); });
  }
};

}  // namespace

void RegisterLotDialogs(DialogRegistry& registry) {
  registry.Register<BuyReinvestForm>(ShowWindow<BuyReinvestWindow, BuyReinvestForm>);
  registry.Register<SplitDivForm>(ShowWindow<SplitDivWindow, SplitDivForm>);
  registry.Register<AdjustBlockForm>(ShowWindow<AdjustBlockWindow, AdjustBlockForm>);
  registry.Register<ModifyTransForm>(ShowWindow<ModifyTransWindow, ModifyTransForm>);
  registry.Register<RollbackForm>(ShowWindow<RollbackWindow, RollbackForm>);
  registry.Register<RemBlocksForm>(ShowWindow<RemBlocksWindow, RemBlocksForm>);
  RegisterSaleDialogs(registry);
}

}  // namespace lotwise::ui
