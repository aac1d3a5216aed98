#include <QCheckBox>
#include <QDialog>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <functional>
#include <string>
#include <utility>

#include "app/application.h"
#include "data/maintenance.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

// The core writes line breaks as CR LF and doubles "&" in names shown in
// captions; a Qt label needs neither.
QString LabelText(std::string_view text) {
  QString shown = ToQ(text);
  shown.remove(QLatin1Char('\r'));
  return shown;
}

QString ProgressText(std::string_view text) {
  return LabelText(text).replace(QStringLiteral("&&"), QStringLiteral("&"));
}

QLabel* NewLabel(QWidget* parent, const char* name, const QString& text = {}) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(QLatin1String(name));
  return label;
}

QLabel* NewPanel(QWidget* parent, const char* name, int min_width) {
  QLabel* panel = NewLabel(parent, name);
  panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  panel->setMinimumWidth(min_width);
  return panel;
}

QPushButton* NewButton(QWidget* parent, const char* name, const QString& caption) {
  auto* button = new QPushButton(caption, parent);
  button->setObjectName(QLatin1String(name));
  button->setAutoDefault(false);
  return button;
}

// A modal window whose Escape and title-bar close run the form's own close
// procedure, and which closes only when the form says so.
class MaintWindow : public QDialog {
 public:
  MaintWindow(QWidget* parent, const char* name, const bool& closed)
      : QDialog(parent), closed_(closed) {
    setObjectName(QLatin1String(name));
    InstallEnterMovesFocus(this);
  }

  std::function<void()> on_close;
  std::function<void()> refresh;

  // Runs a button's procedure, then shows what the form holds.
  void Run(const std::function<void()>& procedure) {
    procedure();
    Done();
  }
  void Done() {
    if (closed_) {
      accept();
    } else if (refresh) {
      refresh();
    }
  }

 protected:
  void reject() override {
    if (on_close) on_close();
    Done();
  }

 private:
  const bool& closed_;
};

void RunCompressRepairWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<CompressRepairForm&>(base);
  MaintWindow window(parent, "dlgCR_Report", form.closed);
  auto* outer = new QVBoxLayout(&window);

  QLabel* warning = NewLabel(&window, "lblWarning", LabelText(form.warning));
  warning->setWordWrap(true);
  outer->addWidget(warning);

  auto* grid = new QGridLayout;
  struct Choice {
    const char* check;
    QString caption;
    bool CompressRepairForm::*chosen;
    const char* status;
    std::string CompressRepairForm::*status_text;
    const char* time;
    std::string CompressRepairForm::*time_text;
  };
  const Choice choices[] = {
      {"chkSSF", QStringLiteral("Security Symbols File"), &CompressRepairForm::ssf_chosen,
       "lblSSFStatus", &CompressRepairForm::ssf_status, "lblSSFTime",
       &CompressRepairForm::ssf_time},
      {"chkAllTaxpayers", QStringLiteral("All Taxpayer Files"), &CompressRepairForm::all_chosen,
       "lblAllStatus", &CompressRepairForm::all_status, "lblAllTime",
       &CompressRepairForm::all_time},
      {"chkSelTaxpayers", QStringLiteral("Taxpayers selected below"),
       &CompressRepairForm::picked_chosen, "lblSelStatus", &CompressRepairForm::picked_status,
       "lblSelTime", &CompressRepairForm::picked_time},
  };
  std::vector<std::function<void()>> shows;
  std::vector<QCheckBox*> checks;
  int row = 0;
  for (const Choice& choice : choices) {
    auto* check = new QCheckBox(choice.caption, &window);
    check->setObjectName(QLatin1String(choice.check));
    QLabel* status = NewPanel(&window, choice.status, 110);
    QLabel* time = NewPanel(&window, choice.time, 70);
    grid->addWidget(check, row, 0);
    grid->addWidget(status, row, 1);
    grid->addWidget(time, row, 2);
    ++row;
    const auto chosen = choice.chosen;
    QObject::connect(check, &QCheckBox::toggled, &window,
                     [&form, chosen](bool on) { form.*chosen = on; });
    shows.push_back([&form, check, status, time, choice] {
      check->setChecked(form.*choice.chosen);
      status->setText(LabelText(form.*choice.status_text));
      time->setText(LabelText(form.*choice.time_text));
    });
    checks.push_back(check);
  }
  grid->setColumnStretch(0, 1);
  outer->addLayout(grid);

  auto* list = new QListWidget(&window);
  list->setObjectName(QStringLiteral("lstTaxpayers"));
  list->setSelectionMode(QAbstractItemView::MultiSelection);
  for (const MaintClientRow& client : form.clients) list->addItem(ToQ(client.client_name));
  outer->addWidget(list);
  QObject::connect(list, &QListWidget::itemSelectionChanged, &window, [&form, list, &checks] {
    bool any = false;
    for (int i = 0; i < list->count() && static_cast<size_t>(i) < form.picked.size(); ++i) {
      form.picked[static_cast<size_t>(i)] = list->item(i)->isSelected();
      any = any || list->item(i)->isSelected();
    }
    // Picking a taxpayer is choosing the picked taxpayers.
    if (any) checks[2]->setChecked(true);
  });

  QLabel* progress = NewLabel(&window, "lblProgress");
  outer->addWidget(progress);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  QPushButton* compress = NewButton(&window, "btnCompress", QStringLiteral("&Compress"));
  QPushButton* repair = NewButton(&window, "btnRepair", QStringLiteral("&Repair"));
  QPushButton* close = NewButton(&window, "btnClose", QStringLiteral("C&lose"));
  buttons->addWidget(compress);
  buttons->addWidget(repair);
  buttons->addWidget(close);
  outer->addLayout(buttons);

  const bool compress_mode = form.caption == kCompressCaption;
  compress->setVisible(compress_mode);
  repair->setVisible(!compress_mode);

  window.refresh = [&] {
    window.setWindowTitle(ToQ(form.caption));
    for (const auto& show : shows) show();
    progress->setText(ProgressText(form.progress));
    for (QCheckBox* check : checks) check->setEnabled(!form.working);
    list->setEnabled(!form.working);
    compress->setEnabled(!form.working);
    repair->setEnabled(!form.working);
    close->setEnabled(!form.working);
  };
  form.changed = window.refresh;
  window.on_close = [&] { CompressRepair_Close(app, form); };
  QObject::connect(compress, &QPushButton::clicked, &window,
                   [&] { window.Run([&] { Button_Compress(app, form); }); });
  QObject::connect(repair, &QPushButton::clicked, &window,
                   [&] { window.Run([&] { Button_Repair(app, form); }); });
  QObject::connect(close, &QPushButton::clicked, &window,
                   [&] { window.Run([&] { CompressRepair_Close(app, form); }); });

  for (QWidget* control : window.findChildren<QWidget*>()) {
    const std::string name = FromQ(control->objectName());
    if (name.empty()) continue;
    OnHelp(
        control, [&form, name] { return HelpText(form, name); }, app.ui());
  }
  window.refresh();
  window.exec();
  form.changed = nullptr;
}

void RunDelBackupsWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<DelBackupsForm&>(base);
  MaintWindow window(parent, "dlgDelBackups", form.closed);
  window.setWindowTitle(QStringLiteral("Delete Backup Files"));
  auto* outer = new QVBoxLayout(&window);
  QLabel* about = NewLabel(&window, "lblAbout",
                           QStringLiteral("Deletes the backup files (.bak) that the Compress and "
                                          "Repair routines made of the data files."));
  about->setWordWrap(true);
  outer->addWidget(about);
  QLabel* status = NewPanel(&window, "lblStatus", 280);
  outer->addWidget(status);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  QPushButton* remove = NewButton(&window, "btnDelete", QStringLiteral("&Delete"));
  QPushButton* notes = NewButton(&window, "btnNotes", QStringLiteral("&Notes"));
  QPushButton* close = NewButton(&window, "btnClose", QStringLiteral("&Close"));
  buttons->addWidget(remove);
  buttons->addWidget(notes);
  buttons->addWidget(close);
  outer->addLayout(buttons);

  window.refresh = [&] { status->setText(LabelText(form.status)); };
  form.changed = window.refresh;
  window.on_close = [&] { DelBackups_Close(app, form); };
  QObject::connect(remove, &QPushButton::clicked, &window,
                   [&] { window.Run([&] { DelBackups_Delete(app, form); }); });
  QObject::connect(notes, &QPushButton::clicked, &window,
                   [&] { window.Run([&] { DelBackups_Notes(app, form); }); });
  QObject::connect(close, &QPushButton::clicked, &window,
                   [&] { window.Run([&] { DelBackups_Close(app, form); }); });
  for (QPushButton* button : {remove, notes, close}) {
    const std::string name = FromQ(button->objectName());
    OnHelp(
        button, [&form, name] { return HelpText(form, name); }, app.ui());
  }
  window.refresh();
  window.exec();
  form.changed = nullptr;
}

void RunBackupNoticeWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<BackupNoticeForm&>(base);
  MaintWindow window(parent, "dlgBackup", form.closed);
  window.setWindowTitle(QStringLiteral("Backup and Restore"));
  auto* outer = new QVBoxLayout(&window);
  auto* folders = new QGridLayout;
  folders->addWidget(NewLabel(&window, "lblSSFCaption", QStringLiteral("Security Symbols File:")),
                     0, 0);
  folders->addWidget(NewLabel(&window, "lblSSFFolder", ToQ(form.ssf_folder)), 0, 1);
  folders->addWidget(NewLabel(&window, "lblTaxpayerCaption", QStringLiteral("Taxpayer Files:")), 1,
                     0);
  folders->addWidget(NewLabel(&window, "lblTaxpayerFolder", ToQ(form.taxpayer_folder)), 1, 1);
  folders->setColumnStretch(1, 1);
  outer->addLayout(folders);
  QLabel* notice = NewLabel(&window, "lblNotice", LabelText(form.notice));
  notice->setWordWrap(true);
  notice->setMinimumWidth(460);
  outer->addWidget(notice);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  QPushButton* ok = NewButton(&window, "btnOK", QStringLiteral("OK"));
  buttons->addWidget(ok);
  outer->addLayout(buttons);
  window.on_close = [&] { Backup_OK(app, form); };
  QObject::connect(ok, &QPushButton::clicked, &window,
                   [&] { window.Run([&] { Backup_OK(app, form); }); });
  window.exec();
}

}  // namespace

void RegisterMaintenanceDialogs(DialogRegistry& registry) {
  registry.Add("dlgCR_Report", RunCompressRepairWindow);
  registry.Add("dlgDelBackups", RunDelBackupsWindow);
  registry.Add("dlgBackup", RunBackupNoticeWindow);
}

}  // namespace lotwise::ui
