#include "ui/form_widgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextEdit>
#include <QValidator>

#include "data/application.h"
#include "ground/date.h"
#include "ground/number_text.h"
#include "ground/ui_port.h"

namespace lotwise::ui {

namespace {

bool IsEnterKey(const QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent*>(event)->key();
  return key == Qt::Key_Return || key == Qt::Key_Enter;
}

// Enter in `widget`: press a push button, keep multi-line text boxes'
// line breaks, and otherwise move on as Tab would. Returns true iff the
// key was used up.
bool HandleEnter(QWidget* widget) {
  if (auto* button = qobject_cast<QPushButton*>(widget)) {
    if (button->isEnabled()) button->click();
    return true;
  }
  if (qobject_cast<QPlainTextEdit*>(widget) || qobject_cast<QTextEdit*>(widget)) return false;
  QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
  QCoreApplication::sendEvent(widget, &tab);
  return true;
}

// Watches the key presses of every widget of one window (installed on the
// application, so fields added later are covered) or of one field.
class EnterFilter : public QObject {
 public:
  EnterFilter(QWidget* owner, bool whole_window)
      : QObject(owner), owner_(owner), all_(whole_window) {}

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (!IsEnterKey(event)) return false;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr) return false;
    if (all_ ? !(widget == owner_ || owner_->isAncestorOf(widget)) : widget != owner_) return false;
    return HandleEnter(widget);
  }

 private:
  QWidget* owner_;
  bool all_;
};

// True while a field check runs, so that the focus moves it makes (a
// message box, the focus sent back to the field) start no second check.
bool check_running = false;

class LeaveFilter : public QObject {
 public:
  LeaveFilter(QWidget* field, std::function<void()> check)
      : QObject(field), check_(std::move(check)) {}

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::FocusOut || check_running) return false;
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) return false;
    check_running = true;
    try {
      check_();
    } catch (...) {
      check_running = false;
      throw;
    }
    check_running = false;
    // A message box of the check took the activation; the field's window
    // gets it back, and with it the focus where it was going.
    QWidget* window = static_cast<QWidget*>(watched)->window();
    if (window->isVisible() && !window->isActiveWindow()) window->activateWindow();
    return false;
  }

 private:
  std::function<void()> check_;
};

class HelpFilter : public QObject {
 public:
  HelpFilter(QWidget* control, std::function<std::string()> text, UiPort& ui)
      : QObject(control), text_(std::move(text)), ui_(ui) {}

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::Enter) {
      const std::string text = text_();
      if (!text.empty()) ui_.SetHelpBarText(text);
    }
    return false;
  }

 private:
  std::function<std::string()> text_;
  UiPort& ui_;
};

// Takes what is, or can still become, a number as it is typed: "1,23" may
// become "1,234", "0," never can. A number too large for the field is
// taken, to be refused with the limit named (AmountFieldComplaint).
class AmountValidator : public QValidator {
 public:
  AmountValidator(int decimals, bool money, QObject* parent)
      : QValidator(parent),
        money_(money),
        shape_(QRegularExpression::anchoredPattern(
            QStringLiteral("-?(?:(?:[1-9]\\d{0,2}(?:,\\d{3})+|\\d+)(?:\\.\\d{0,%1})?"
                           "|[1-9]\\d{0,2}(?:,\\d{3})*,\\d{0,2}|\\.\\d{0,%1})?")
                .arg(decimals))) {}

  State validate(QString& input, int&) const override {
    if (!shape_.match(input).hasMatch()) return Invalid;
    return Fault(input) == NumberFault::kNone ? Acceptable : Intermediate;
  }

  bool money() const { return money_; }
  // What the core says about `text` as a number of the field's kind.
  NumberFault Fault(const QString& text) const {
    return money_ ? Currency::ParseFault(FromQ(text)) : ParseNumberFault(FromQ(text));
  }

 private:
  bool money_;
  QRegularExpression shape_;
};

class CharacterLimit : public QValidator {
 public:
  CharacterLimit(int max_characters, QObject* parent) : QValidator(parent), max_(max_characters) {}

  State validate(QString& input, int&) const override {
    return input.toUcs4().size() <= max_ ? Acceptable : Invalid;
  }

 private:
  qsizetype max_;
};

}  // namespace

QString ToQ(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string FromQ(const QString& text) { return text.toStdString(); }

void InstallEnterMovesFocus(QWidget* root) {
  qApp->installEventFilter(new EnterFilter(root, true));
}

void EnterMovesFocus(QWidget* field) { field->installEventFilter(new EnterFilter(field, false)); }

void MakeDateEdit(QLineEdit* edit) { edit->setInputMask(QStringLiteral("99/99/9999;_")); }

std::string DateEditText(const QLineEdit* edit) { return FromQ(edit->displayText()); }

std::string DateEditMaskText(const QLineEdit* edit) {
  std::string text = DateEditText(edit);
  for (char& c : text) {
    if (c == '_') c = ' ';
  }
  return text;
}

void SetDateEditText(QLineEdit* edit, std::string_view text) {
  if (text.empty() || text == kEmptyDateText || text == kEmptyDateMask) {
    edit->clear();
    return;
  }
  if (auto date = Date::Parse(text)) {
    edit->setText(ToQ(date->ToString()));
    return;
  }
  edit->setText(ToQ(text));
}

void MakeMoneyEdit(QLineEdit* edit) { edit->setValidator(new AmountValidator(4, true, edit)); }

Currency MoneyEditValue(const QLineEdit* edit) {
  return Currency::Parse(FromQ(edit->text())).value_or(Currency());
}

void SetMoneyEditValue(QLineEdit* edit, Currency amount) { edit->setText(ToQ(amount.ToString())); }

void MakeNumberEdit(QLineEdit* edit) { edit->setValidator(new AmountValidator(5, false, edit)); }

std::string AmountFieldComplaint(const QLineEdit* edit, std::string_view label) {
  const auto* validator = dynamic_cast<const AmountValidator*>(edit->validator());
  const QString text = edit->text();
  // A lone "-" or "." is a field left at 0. A value the program showed with
  // more decimals than can be typed (from an older file) is still a number:
  // the core judges its decimals.
  if (validator == nullptr || !text.contains(QRegularExpression(QStringLiteral("\\d")))) return {};
  const NumberFault fault = validator->Fault(text);
  if (fault == NumberFault::kNone) return {};
  const std::string field(label);
  std::string complaint = "The " + field + " entered as " + FromQ(text);
  if (fault == NumberFault::kNotANumber) {
    complaint +=
        " is not a number. A \",\" may only separate groups of three digits before the decimal "
        "point, as in 1,234.50.";
  } else if (validator->money()) {
    complaint +=
        std::string(" is too large. An amount must be less than ") + Currency::kLimitText + ".";
  } else {
    complaint += " is too large. It can have at most " + std::to_string(kMaxWholeDigits) +
                 " digits before the decimal point.";
  }
  return complaint + " Please re-enter the " + field + ".";
}

void LimitCharacters(QLineEdit* edit, int max_characters) {
  edit->setMaxLength(32767);  // Qt's own default: no cut of text set by the program
  edit->setValidator(new CharacterLimit(max_characters, edit));
  edit->setProperty("lw_max_characters", max_characters);
}

double NumberEditValue(const QLineEdit* edit) {
  return ParseNumber(FromQ(edit->text())).value_or(0.0);
}

void SetNumberEditValue(QLineEdit* edit, double value) {
  // Fixed notation: the field reads no exponent ("1E-05" would be no number).
  edit->setText(ToQ(PlainNumberText(value)));
}

void OnLeave(QWidget* field, std::function<void()> check) {
  field->installEventFilter(new LeaveFilter(field, std::move(check)));
}

void OnHelp(QWidget* control, std::function<std::string()> text, UiPort& ui) {
  control->installEventFilter(new HelpFilter(control, std::move(text), ui));
}

}  // namespace lotwise::ui
