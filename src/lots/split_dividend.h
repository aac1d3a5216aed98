#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "data/transaction_store.h"
#include "ground/date.h"
#include "ground/ui_port.h"
#include "lots/share_rules.h"

namespace lotwise {

class Application;

// The dialog dlgSplitDiv: a stock split or a stock dividend on the current
// block or on every block of the open security, or the replacement of all
// of one date's splits (dividends) of the security.
struct SplitDivForm : DialogForm {
  static constexpr const char* kSplitCaption = "Stock Split";
  static constexpr const char* kDividendCaption = "Stock Dividend";
  static constexpr const char* kModifySplitCaption = "Modify Entire Split";
  static constexpr const char* kModifyDividendCaption = "Modify Entire Stock Dividend";
  // CSoptBlocks: the current block only, or every block of the security.
  static constexpr int kCurrentBlock = 0;
  static constexpr int kAllBlocks = 1;

  // caption: one of the four captions above
  std::string date = kEmptyDateText;  // dtDate, as typed
  double pre_ratio = 0;               // DblPreRatio: "Ratio of Number of New Shares:"
  double post_ratio = 0;              // DblPostRatio: "To Number of Old Shares:"
  int blocks = kAllBlocks;            // CSoptBlocks
  std::string notes;                  // txtNotes
  std::string security;               // lblSecurity, ampersands doubled
  std::string block;                  // lblBlock: the current block id
  std::string explanation;            // lblExplanation
  // What a modification replaces: the security and the date of the rows
  // shown when the dialog opened (the user may move the new entry's date).
  int64_t modify_sec_id = 0;
  Date modify_date;
  // Set only when OK stored the entry: its unit of work committed with at
  // least one row.
  bool accepted = false;

  std::string_view Name() const override { return "dlgSplitDiv"; }
};

// Returns the Split type of a caption: 11 for "Stock Split" and "Modify
// Entire Split", 21 for any other.
int16_t SplitDivType(std::string_view caption);
// Returns true iff the caption is one of the two "Modify Entire" captions.
bool IsModifyEntireCaption(std::string_view caption);

// Shows the dialog as `caption` ("Stock Split" or "Stock Dividend") for the
// open security and its current block; with no block, only tells the user.
void ShowSplit(Application& app, const std::string& caption);
// Asks whether every split (type 11) or dividend (21) of security `sec_id`
// on `date` may be treated as one, and on Yes shows the dialog filled with
// their ratios and notes, as "Modify Entire Split" or "... Stock Dividend".
// The dialog starts on "Current Block" when the rows replaced sit in one
// block and on "All Blocks" when they sit in several, so that an entry made
// for one block is not spread to every block by its correction.
void ShowModEntSplitDiv(Application& app, int64_t sec_id, Date date, int16_t type);

// Field checks on leaving a field. Each tells the user what is wrong and
// sends the focus back to the field; it returns true iff the value is good.
bool CheckDateSD(Application& app, SplitDivForm& form);
bool CheckPreRatioSD(Application& app, SplitDivForm& form);
bool CheckPostRatioSD(Application& app, SplitDivForm& form);
// Leaving the date: warns about an implausible date, then CheckDateSD.
void DateLostFocusSD(Application& app, SplitDivForm& form);

// Enters the split or dividend. With `modify_flag` the rows being replaced
// are deleted in the unit that stores the new rows: either the new entry is
// stored and the old rows are gone, or nothing changed and the user is told
// so. Sets form.accepted and closes the form on success; otherwise it stays
// open as typed.
void SplitDiv_OK(Application& app, SplitDivForm& form, bool modify_flag);
// The OK button: SplitDiv_OK with the modify flag set by the caption.
void PressOkSplitDiv(Application& app, SplitDivForm& form);
// Closes the form; nothing is stored.
void SplitDiv_Cancel(Application& app, SplitDivForm& form);

// Computes the shares each block holds on `date` (the day's own
// transactions included, the rows of `replaced` left out), asks every
// same-date question, and then in one unit of work deletes the rows of
// `replaced` (when given) and files a Split row of `type` under each block
// holding more than 0 shares: the current block only, or every block when
// `blocks` is 1. Tells the user when no row was added; a replacement that
// adds no row is not stored. Returns true iff the unit was committed;
// `*rows_added` (when given) gets the number of rows it stored.
bool AddAllSplitDivs(Application& app, int16_t type, Date date, double pre, double post,
                     const std::string& notes, int blocks, const ReplacedEntry* replaced = nullptr,
                     int* rows_added = nullptr);

// Returns the help-bar text of `control` in the form's mode, empty for a
// control without one.
std::string HelpText(const SplitDivForm& form, std::string_view control);

}  // namespace lotwise
