#pragma once

class QWidget;

namespace lotwise {

class Application;
class DialogForm;

namespace ui {

// The windows of the lot-entry forms. Each shows its form (static_cast to
// the form type its name stands for) modally until the form is closed.
void RunBuyReinvest(Application& app, DialogForm& form, QWidget* parent);
void RunSplitDiv(Application& app, DialogForm& form, QWidget* parent);
void RunAdjustBlock(Application& app, DialogForm& form, QWidget* parent);
void RunModifyTrans(Application& app, DialogForm& form, QWidget* parent);
void RunSellShares(Application& app, DialogForm& form, QWidget* parent);
void RunMethod(Application& app, DialogForm& form, QWidget* parent);
void RunSellSpecific(Application& app, DialogForm& form, QWidget* parent);
void RunNumShares(Application& app, DialogForm& form, QWidget* parent);
void RunRollback(Application& app, DialogForm& form, QWidget* parent);
void RunRemBlocks(Application& app, DialogForm& form, QWidget* parent);

}  // namespace ui
}  // namespace lotwise
