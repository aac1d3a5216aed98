#pragma once

#include <QString>
#include <functional>
#include <string>
#include <string_view>

#include "ground/currency.h"
#include "ground/date.h"

class QLineEdit;
class QWidget;

namespace lotwise {

class UiPort;

namespace ui {

// Text between the core (UTF-8 std::string) and Qt.
QString ToQ(std::string_view text);
std::string FromQ(const QString& text);

// Enter and Return in a field move the focus to the next field, as Tab
// does, and never accept the window: in a dialog full of amounts a stray
// Enter must not store a half-typed entry. A focused push button is
// pressed by Enter. Applies to every present and future field of `root`
// (a dialog or window) for as long as `root` lives.
void InstallEnterMovesFocus(QWidget* root);
// The same for the one field `field`.
void EnterMovesFocus(QWidget* field);

// Makes `edit` a masked date field ("__/__/____"): two digits, slash, two
// digits, slash, four digits.
void MakeDateEdit(QLineEdit* edit);
// Returns the field as typed with its placeholders ("01/05/2024",
// "__/__/____" when empty, "1_/__/____" half typed): the forms' text.
std::string DateEditText(const QLineEdit* edit);
// Returns the field with blanks for the placeholders, as the INI file keeps
// it: "  /  /    " (kEmptyDateMask) when empty.
std::string DateEditMaskText(const QLineEdit* edit);
// Shows `text` in a masked date field. Empty text and either empty mask
// clear it; a date in any form Date::Parse reads is shown "mm/dd/yyyy";
// anything else is shown as far as the mask takes it.
void SetDateEditText(QLineEdit* edit, std::string_view text);

// Money fields take what Currency::Parse reads: an optional minus, digits
// with optional "," thousands separators between groups of three, up to
// four decimals. Keys that cannot lead to such a number are not taken; a
// half-typed one ("1,23") or one beyond the range is (AmountFieldComplaint).
void MakeMoneyEdit(QLineEdit* edit);
// Returns the amount typed, 0 when the field is empty or holds no amount
// (a lone "-" or ".").
Currency MoneyEditValue(const QLineEdit* edit);
// Shows `amount` in its default text form ("1234.5").
void SetMoneyEditValue(QLineEdit* edit, Currency amount);

// Number fields (shares): as money fields with up to five decimals, read as
// ParseNumber reads them (at most kMaxWholeDigits digits before the point).
void MakeNumberEdit(QLineEdit* edit);
// Returns what is wrong with the text of a money or number field, naming
// it by `label` ("Number of Shares"), or empty text when it reads as a
// number: digits that are not yet one ("1,23") or one too large for the
// field, which read as they are would give 0. An empty field, a lone "-"
// or "." are a field left at 0.
std::string AmountFieldComplaint(const QLineEdit* edit, std::string_view label);
// Limits typing into `edit` to `max_characters` characters (code points,
// as the core counts them). Text set by the program is shown whole, so
// that the core can refuse it rather than the field cutting it.
void LimitCharacters(QLineEdit* edit, int max_characters);
// Returns the number typed, 0 when the field holds none.
double NumberEditValue(const QLineEdit* edit);
// Shows `value` as PlainNumberText writes it ("12.5", "0.00001").
void SetNumberEditValue(QLineEdit* edit, double value);

// Runs `check` when `field` loses the focus to another control of its
// window (Tab, Enter, a click), not when another window (such as the
// check's own message box) takes the focus. Checks never nest: a focus
// change made while one runs triggers no second check.
void OnLeave(QWidget* field, std::function<void()> check);

// Shows `text()` on the main window's help bar when `control` gets the
// focus or the mouse moves over it; an empty text leaves the bar alone.
void OnHelp(QWidget* control, std::function<std::string()> text, UiPort& ui);

}  // namespace ui
}  // namespace lotwise
