#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ground/date.h"
#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The choices of the option list CSoptBlocks; 0 while neither is made.
inline constexpr int kRollbackNoBlocks = 0;
inline constexpr int kRollbackAllBlocks = 1;
inline constexpr int kRollbackCurrentBlock = 2;

// The dialog dlgRollback: removes the transactions of the ticked kinds dated
// after a date, from the current block or from every block of the security.
struct RollbackForm : DialogForm {
  std::string date = kEmptyDateText;  // dtDate: the last date left intact
  bool buys = false;                  // chkBuys
  bool reinvests = false;             // chkReinvests
  bool sells = false;                 // chkSells
  bool splits = false;                // chkSplits
  bool dividends = false;             // chkDividends
  bool adjusts = false;               // chkAdjusts
  int blocks = kRollbackNoBlocks;     // CSoptBlocks
  std::string block;                  // lblBlock: the current block id (display only)
  bool accepted = false;              // set only when OK's unit of work committed

  std::string_view Name() const override { return "dlgRollback"; }
};

// The dialog dlgRemBlocks: the blocks a roll-back left empty and removed.
struct RemBlocksForm : DialogForm {
  std::vector<std::string> removed;  // SSdgRemBlocks: block ids
  std::string note = "These blocks were removed becuase all transactions were removed from them";

  std::string_view Name() const override { return "dlgRemBlocks"; }
};

// Opens dlgRollback for the open security after the warning to back up
// first; opens nothing when the security has no transaction or the user
// cancels the warning.
void ShowRollBack(Application& app);

// The date check run when dtDate loses the focus. Returns true iff it is a date.
bool CheckdateRB(Application& app, RollbackForm& form);

// Returns the number of transaction kinds ticked.
int TransForRollBack(Application& app, const RollbackForm& form);

// The OK button: checks the date and the ticked kinds, confirms a roll-back
// of all blocks, and runs RollBackTrans. On success refreshes the share
// total and sets form.closed; a refusal writes nothing.
void RollBack_OK(Application& app, RollbackForm& form);
// The Cancel button: closes the dialog; nothing is written.
void RollBack_Cancel(Application& app, RollbackForm& form);

// Deletes, from the chosen blocks, every transaction of the ticked kinds
// dated after `date` (the date itself is kept), all in one unit of work that
// is committed only when every delete succeeded; then removes the blocks
// left empty (RemoveEmptyBlocks). Returns true iff the roll-back was
// committed.
bool RollBackTrans(Application& app, const RollbackForm& form, Date date);

// Deletes every block of the security's block grid that has no transaction
// left, redisplays the security and, when any was removed, lists them in
// dlgRemBlocks.
void RemoveEmptyBlocks(Application& app);

// Returns true iff block `block_no` has no transaction row in any table.
bool BlockIsEmpty(Application& app, int64_t block_no);

// The Print button of dlgRemBlocks: prints the taxpayer, portfolio, security
// and the removed block ids.
void PrintREmovedBlocks(Application& app, const RemBlocksForm& form);
// The Close button of dlgRemBlocks.
void RemBlocks_Close(Application& app, RemBlocksForm& form);

// The help-bar texts of the controls of dlgRollback and dlgRemBlocks; empty
// text for an unknown control.
std::string HelpText(const RollbackForm& form, std::string_view control);
std::string HelpText(const RemBlocksForm& form, std::string_view control);

}  // namespace lotwise
