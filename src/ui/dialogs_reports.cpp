#include <QButtonGroup>
#include <QCheckBox>
#include <QDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <functional>

#include "app/application.h"
#include "reports/report_dialogs.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

// The control a help text or a focus request names: a radio button speaks
// for its option group.
std::string ControlName(const QWidget* widget) {
  if (qobject_cast<const QRadioButton*>(widget) && widget->parentWidget()) {
    return FromQ(widget->parentWidget()->objectName());
  }
  return FromQ(widget->objectName());
}

// Every named control of the window shows the core's help text for it.
void AttachHelp(QWidget& window, UiPort& port, std::function<std::string(std::string_view)> help) {
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    if (widget->objectName().isEmpty() && !qobject_cast<QRadioButton*>(widget)) continue;
    const std::string name = ControlName(widget);
    OnHelp(
        widget, [help, name] { return help(name); }, port);
  }
}

// Puts the focus on the control the form names; an option group takes it
// on its chosen entry.
void FocusControl(QWidget& window, const std::string& name) {
  if (name.empty()) return;
  QWidget* control = window.findChild<QWidget*>(ToQ(name));
  if (control == nullptr) return;
  if (qobject_cast<QGroupBox*>(control)) {
    for (QRadioButton* option : control->findChildren<QRadioButton*>()) {
      if (option->isChecked()) {
        option->setFocus();
        return;
      }
    }
  }
  control->setFocus();
}

// An option group: a framed list of choices, `checked` chosen.
QButtonGroup* AddOptions(QWidget* parent, QLayout* layout, const char* name, const QString& title,
                         const QStringList& captions, int checked) {
  auto* box = new QGroupBox(title, parent);
  box->setObjectName(QString::fromLatin1(name));
  auto* box_layout = new QVBoxLayout(box);
  auto* group = new QButtonGroup(box);
  for (int i = 0; i < captions.size(); ++i) {
    auto* option = new QRadioButton(captions[i], box);
    option->setObjectName(QString::fromLatin1(name) + QString::number(i));
    group->addButton(option, i);
    box_layout->addWidget(option);
  }
  if (QAbstractButton* chosen = group->button(checked)) chosen->setChecked(true);
  layout->addWidget(box);
  return group;
}

QLineEdit* AddDateField(QWidget* parent, QFormLayout* layout, const char* name,
                        const QString& label, const std::string& text) {
  auto* edit = new QLineEdit(parent);
  edit->setObjectName(QString::fromLatin1(name));
  MakeDateEdit(edit);
  SetDateEditText(edit, text);
  auto* caption = new QLabel(label, parent);
  caption->setBuddy(edit);
  layout->addRow(caption, edit);
  return edit;
}

QCheckBox* AddCheck(QWidget* parent, QLayout* layout, const char* name, const char* caption,
                    bool checked) {
  auto* check = new QCheckBox(QString::fromUtf8(caption), parent);
  check->setObjectName(QString::fromLatin1(name));
  check->setChecked(checked);
  layout->addWidget(check);
  return check;
}

const QStringList kScopeCaptions = {QStringLiteral("this &Taxpayer"),
                                    QStringLiteral("this &Portfolio"),
                                    QStringLiteral("this &Security")};

// The part every option dialog shares: `build` puts the form's fields on
// the window and returns what copies them back into the form. View and
// Print copy them, call the form's procedure and close the window when the
// form says so, else move the focus where the form asks; Cancel, Escape
// and the close box cancel.
template <class Form>
void RunOptionsWindow(Application& app, Form& form, QWidget* parent, const std::string& caption,
                      const std::function<std::function<void()>(QDialog&, QVBoxLayout&)>& build,
                      void (*view)(Application&, Form&), void (*print)(Application&, Form&)) {
  QDialog dialog(parent);
  dialog.setObjectName(ToQ(form.Name()));
  dialog.setWindowTitle(ToQ(caption));
  auto* layout = new QVBoxLayout(&dialog);
  const std::function<void()> pull = build(dialog, *layout);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  auto add_button = [&](const char* name, const QString& text) {
    auto* button = new QPushButton(text, &dialog);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    buttons->addWidget(button);
    return button;
  };
  QPushButton* view_button = add_button("btnView", QObject::tr("&View"));
  QPushButton* print_button = add_button("btnPrint", QObject::tr("P&rint"));
  QPushButton* cancel_button = add_button("btnCancel", QObject::tr("Cancel"));
  layout->addLayout(buttons);

  auto run = [&](void (*procedure)(Application&, Form&)) {
    pull();
    procedure(app, form);
    if (form.closed) {
      dialog.accept();
    } else {
      FocusControl(dialog, form.focus);
    }
  };
  QObject::connect(view_button, &QPushButton::clicked, &dialog, [&] { run(view); });
  QObject::connect(print_button, &QPushButton::clicked, &dialog, [&] { run(print); });
  QObject::connect(cancel_button, &QPushButton::clicked, &dialog, &QDialog::reject);
  QObject::connect(&dialog, &QDialog::rejected, &dialog, [&] {
    if (!form.closed) ReportOptions_Cancel(app, form);
  });

  AttachHelp(dialog, app.ui(),
             [&form](std::string_view control) { return HelpText(form, control); });
  InstallEnterMovesFocus(&dialog);
  FocusControl(dialog, form.focus);
  dialog.exec();
}

void RunBasisOptionsWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<BasisOptionsForm&>(base);
  const bool sched_d = form.caption == BasisOptionsForm::kSchedDCaption;
  auto build = [&form, sched_d](QDialog& dialog, QVBoxLayout& layout) -> std::function<void()> {
    auto* date_row = new QFormLayout;
    QLineEdit* year_end =
        AddDateField(&dialog, date_row, "dtYearEnd",
                     QString::fromUtf8(BasisOptionsForm::kYearEndLabel), form.year_end);
    layout.addLayout(date_row);
    auto* choices = new QHBoxLayout;
    QButtonGroup* scope =
        AddOptions(&dialog, choices, "CSoptScope", QString::fromUtf8(BasisOptionsForm::kScopeLabel),
                   kScopeCaptions, form.scope);
    QButtonGroup* type = AddOptions(
        &dialog, choices, "CSoptReportType", QString::fromUtf8(BasisOptionsForm::kReportTypeLabel),
        {QObject::tr("&Detailed"), QObject::tr("S&ummary")}, form.report_type);
    layout.addLayout(choices);
    QCheckBox* include_sched_d = nullptr;
    QCheckBox* exclude_empty = nullptr;
    QCheckBox* elections = nullptr;
    if (sched_d) {
      elections = AddCheck(&dialog, &layout, "chkElections", BasisOptionsForm::kElectionsCaption,
                           form.elections);
    } else {
      include_sched_d = AddCheck(&dialog, &layout, "chkSchedD",
                                 BasisOptionsForm::kIncludeSchedDCaption, form.include_sched_d);
      exclude_empty = AddCheck(&dialog, &layout, "chkRemove0Sec",
                               BasisOptionsForm::kExcludeEmptyCaption, form.exclude_empty);
    }
    return [&form, year_end, scope, type, include_sched_d, exclude_empty, elections] {
      form.year_end = DateEditText(year_end);
      form.scope = scope->checkedId();
      form.report_type = type->checkedId();
      if (include_sched_d) form.include_sched_d = include_sched_d->isChecked();
      if (exclude_empty) form.exclude_empty = exclude_empty->isChecked();
      if (elections) form.elections = elections->isChecked();
    };
  };
  RunOptionsWindow<BasisOptionsForm>(app, form, parent, form.caption, build, BasisOptions_View,
                                     BasisOptions_Print);
}

void RunTransListOptionsWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<TransListOptionsForm&>(base);
  auto build = [&form](QDialog& dialog, QVBoxLayout& layout) -> std::function<void()> {
    QButtonGroup* scope = AddOptions(&dialog, &layout, "CSoptScope", QObject::tr("Report On:"),
                                     kScopeCaptions, form.scope);
    auto* dates = new QFormLayout;
    QLineEdit* begin = AddDateField(&dialog, dates, "dtBeginDate", QObject::tr("&Beginning Date:"),
                                    form.begin_date);
    QLineEdit* end =
        AddDateField(&dialog, dates, "dtEndDate", QObject::tr("&Ending Date:"), form.end_date);
    layout.addLayout(dates);
    return [&form, scope, begin, end] {
      form.scope = scope->checkedId();
      form.begin_date = DateEditText(begin);
      form.end_date = DateEditText(end);
    };
  };
  RunOptionsWindow<TransListOptionsForm>(app, form, parent, TransListOptionsForm::kCaption, build,
                                         TransListOptions_View, TransListOptions_Print);
}

void RunClientListOptionsWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<ClientListOptionsForm&>(base);
  auto build = [&form](QDialog& dialog, QVBoxLayout& layout) -> std::function<void()> {
    QButtonGroup* sort =
        AddOptions(&dialog, &layout, "CSoptSortBy", QObject::tr("Sort By:"),
                   {QObject::tr("Taxpayer &Code"), QObject::tr("Taxpayer &Name")}, form.sort_by);
    return [&form, sort] { form.sort_by = sort->checkedId(); };
  };
  RunOptionsWindow<ClientListOptionsForm>(app, form, parent, ClientListOptionsForm::kCaption, build,
                                          ClientListOptions_View, ClientListOptions_Print);
}

void RunSecListOptionsWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<SecListOptionsForm&>(base);
  auto build = [&form](QDialog& dialog, QVBoxLayout& layout) -> std::function<void()> {
    QButtonGroup* from =
        AddOptions(&dialog, &layout, "CSOptListFrom", QObject::tr("List Securities for"),
                   {QObject::tr("this &Taxpayer"), QObject::tr("this &Portfolio")}, form.list_from);
    QButtonGroup* sort =
        AddOptions(&dialog, &layout, "CSoptSortBy", QObject::tr("Sort By:"),
                   {QObject::tr("Security &Symbol"), QObject::tr("Portfolio &Name")}, form.sort_by);
    return [&form, from, sort] {
      form.list_from = from->checkedId();
      form.sort_by = sort->checkedId();
    };
  };
  RunOptionsWindow<SecListOptionsForm>(app, form, parent, SecListOptionsForm::kCaption, build,
                                       SecListOptions_View, SecListOptions_Print);
}

void RunAboutWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<AboutForm&>(base);
  QDialog dialog(parent);
  dialog.setObjectName(QStringLiteral("dlgAbout"));
  dialog.setWindowTitle(ToQ(form.caption));
  auto* layout = new QVBoxLayout(&dialog);
  auto add_label = [&](const char* name, const QString& text) {
    auto* label = new QLabel(text, &dialog);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(label);
    return label;
  };
  QLabel* program = add_label("lblProgram", ToQ(form.program_name));
  QFont big = program->font();
  big.setPointSizeF(big.pointSizeF() * 1.6);
  big.setBold(true);
  program->setFont(big);
  add_label("lblDescription",
            QObject::tr("Tax cost basis of stocks and mutual-fund shares, lot by lot."));
  add_label("lblVersion", ToQ(form.version));
  add_label("lblUsage", ToQ(form.usage));
  auto* folders = new QFormLayout;
  auto add_folder = [&](const char* name, const QString& caption, const std::string& path) {
    auto* label = new QLabel(ToQ(path), &dialog);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    folders->addRow(caption, label);
  };
  add_folder("lblSsfFolder", QObject::tr("Security Symbols File folder:"), form.ssf_folder);
  add_folder("lblClientFolder", QObject::tr("Taxpayer Files folder:"), form.client_folder);
  add_folder("lblProgramFolder", QObject::tr("Program folder:"), form.program_folder);
  layout->addLayout(folders);
  auto* ok = new QPushButton(QObject::tr("OK"), &dialog);
  ok->setObjectName(QStringLiteral("btnOK"));
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  row->addWidget(ok);
  layout->addLayout(row);
  QObject::connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
  QObject::connect(&dialog, &QDialog::finished, &dialog, [&] { About_OK(app, form); });
  ok->setFocus();
  dialog.exec();
}

}  // namespace

void RegisterReportDialogs(DialogRegistry& registry) {
  registry.Add("dlgBasisOptions", RunBasisOptionsWindow);
  registry.Add("dlgTransListOptions", RunTransListOptionsWindow);
  registry.Add("dlgClientListOptions", RunClientListOptionsWindow);
  registry.Add("dlgSecListOptions", RunSecListOptionsWindow);
  registry.Add("dlgAbout", RunAboutWindow);
}

}  // namespace lotwise::ui
