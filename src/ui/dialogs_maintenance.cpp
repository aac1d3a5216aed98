// The windows of the maintenance dialogs: compress or repair the data
// files, delete their backups, and the backup notice.
#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <string>
#include <vector>

#include "app/maintenance.h"
#include "data/application.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

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

void RunCompressRepairWindow(Application& app, CompressRepairForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  QLabel* warning = NewLabel(&window, "lblWarning", LabelText(form.warning));
  warning->setWordWrap(true);
  window.AddRow(nullptr, warning);

  auto* choices_box = new QWidget(&window);
  auto* grid = new QGridLayout(choices_box);
  grid->setContentsMargins(0, 0, 0, 0);
  struct Choice {
    const char* check;
    const char* caption;
    bool CompressRepairForm::*chosen;
    const char* status;
    std::string CompressRepairForm::*status_text;
    const char* time;
    std::string CompressRepairForm::*time_text;
  };
  const Choice choices[] = {
      {"chkSSF", "Security Symbols File", &CompressRepairForm::ssf_chosen, "lblSSFStatus",
       &CompressRepairForm::ssf_status, "lblSSFTime", &CompressRepairForm::ssf_time},
      {"chkAllTaxpayers", "All Taxpayer Files", &CompressRepairForm::all_chosen, "lblAllStatus",
       &CompressRepairForm::all_status, "lblAllTime", &CompressRepairForm::all_time},
      {"chkSelTaxpayers", "Taxpayers selected below", &CompressRepairForm::picked_chosen,
       "lblSelStatus", &CompressRepairForm::picked_status, "lblSelTime",
       &CompressRepairForm::picked_time},
  };
  std::vector<QCheckBox*> checks;
  int row = 0;
  for (const Choice& choice : choices) {
    auto* check = new QCheckBox(QString::fromUtf8(choice.caption), choices_box);
    check->setObjectName(QLatin1String(choice.check));
    QLabel* status = NewPanel(choices_box, choice.status, 110);
    QLabel* time = NewPanel(choices_box, choice.time, 70);
    grid->addWidget(check, row, 0);
    grid->addWidget(status, row, 1);
    grid->addWidget(time, row, 2);
    ++row;
    // A box ticked during a run (picking a taxpayer) is the user's choice
    // at once, not at the next button.
    const auto chosen = choice.chosen;
    QObject::connect(check, &QCheckBox::toggled, &window,
                     [&form, chosen](bool on) { form.*chosen = on; });
    window.OnRefresh([&form, check, status, time, choice] {
      check->setChecked(form.*choice.chosen);
      status->setText(LabelText(form.*choice.status_text));
      time->setText(LabelText(form.*choice.time_text));
      check->setEnabled(!form.working);
    });
    checks.push_back(check);
  }
  grid->setColumnStretch(0, 1);
  window.AddRow(nullptr, choices_box);

  auto* list = new QListWidget(&window);
  list->setObjectName(QStringLiteral("lstTaxpayers"));
  list->setSelectionMode(QAbstractItemView::MultiSelection);
  for (const MaintClientRow& client : form.clients) list->addItem(ToQ(client.client_name));
  window.AddRow(nullptr, list);
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
  window.AddRow(nullptr, progress);

  QPushButton* compress = window.AddButton("btnCompress", QStringLiteral("&Compress"),
                                           [&] { Button_Compress(app, form); });
  QPushButton* repair =
      window.AddButton("btnRepair", QStringLiteral("&Repair"), [&] { Button_Repair(app, form); });
  QPushButton* close = window.AddCancelButton("btnClose", QStringLiteral("C&lose"),
                                              [&] { CompressRepair_Close(app, form); });
  const bool compress_mode = form.caption == kCompressCaption;
  compress->setVisible(compress_mode);
  repair->setVisible(!compress_mode);

  window.OnRefresh([&] {
    window.setWindowTitle(ToQ(form.caption));
    progress->setText(LabelText(form.progress));
    list->setEnabled(!form.working);
    compress->setEnabled(!form.working);
    repair->setEnabled(!form.working);
    close->setEnabled(!form.working);
  });
  // A run shows its progress as it goes.
  form.changed = [&window] { window.Load(); };
  window.Finish(form.caption,
                [&form](std::string_view control) { return HelpText(form, control); });
  window.Exec();
  form.changed = nullptr;
}

void RunDelBackupsWindow(Application& app, DelBackupsForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  QLabel* about = NewLabel(&window, "lblAbout",
                           QStringLiteral("Deletes the backup files (.bak) that the Compress and "
                                          "Repair routines made of the data files."));
  about->setWordWrap(true);
  window.AddRow(nullptr, about);
  QLabel* status = NewPanel(&window, "lblStatus", 280);
  window.AddRow(nullptr, status);
  window.AddButton("btnDelete", QStringLiteral("&Delete"), [&] { DelBackups_Delete(app, form); });
  window.AddButton("btnNotes", QStringLiteral("&Notes"), [&] { DelBackups_Notes(app, form); });
  window.AddCancelButton("btnClose", QStringLiteral("&Close"),
                         [&] { DelBackups_Close(app, form); });
  window.OnRefresh([&] { status->setText(LabelText(form.status)); });
  form.changed = [&window] { window.Load(); };
  window.Finish("Delete Backup Files",
                [&form](std::string_view control) { return HelpText(form, control); });
  window.Exec();
  form.changed = nullptr;
}

void RunBackupNoticeWindow(Application& app, BackupNoticeForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  window.AddRow("Security Symbols File:", NewLabel(&window, "lblSSFFolder", ToQ(form.ssf_folder)))
      ->setObjectName(QStringLiteral("lblSSFCaption"));
  window
      .AddRow("Taxpayer Files:", NewLabel(&window, "lblTaxpayerFolder", ToQ(form.taxpayer_folder)))
      ->setObjectName(QStringLiteral("lblTaxpayerCaption"));
  QLabel* notice = NewLabel(&window, "lblNotice", LabelText(form.notice));
  notice->setWordWrap(true);
  notice->setMinimumWidth(460);
  window.AddRow(nullptr, notice);
  window.AddCancelButton("btnOK", QStringLiteral("OK"), [&] { Backup_OK(app, form); });
  window.Finish("Backup and Restore", nullptr);
  window.Exec();
}

}  // namespace

void RegisterMaintenanceDialogs(DialogRegistry& registry) {
  registry.Register<CompressRepairForm>(RunCompressRepairWindow);
  registry.Register<DelBackupsForm>(RunDelBackupsWindow);
  registry.Register<BackupNoticeForm>(RunBackupNoticeWindow);
}

}  // namespace lotwise::ui
