#pragma once

#include <QString>
#include <functional>
#include <string>
#include <string_view>

#include "app/currency.h"

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

// The text of an empty masked date field, as the dialog forms hold it.
inline constexpr const char* kEmptyDateField = "__/__/____";

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
// with optional "," thousands separators, up to four decimals.
void MakeMoneyEdit(QLineEdit* edit);
// Returns the amount typed, 0 when the field is empty or holds no amount
// (a lone "-" or ".").
Currency MoneyEditValue(const QLineEdit* edit);
// Shows `amount` in its default text form ("1234.5").
void SetMoneyEditValue(QLineEdit* edit, Currency amount);

// Number fields (shares): an optional minus, digits with optional ","
// thousands separators, up to five decimals.
void MakeNumberEdit(QLineEdit* edit);
// Returns the number typed, 0 when the field holds none.
double NumberEditValue(const QLineEdit* edit);
// Shows `value` in its default text form ("12.5").
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
