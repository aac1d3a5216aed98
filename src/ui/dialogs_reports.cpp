// The windows of the report option dialogs and the about box.
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <functional>
#include <tuple>
#include <vector>

#include "data/application.h"
#include "reports/report_dialogs.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

using Choices = std::vector<std::pair<int, const char*>>;

const Choices kScopeChoices = {
    {0, "this &Taxpayer"}, {1, "this &Portfolio"}, {2, "this &Security"}};

// Option groups side by side on one row, each bound to its field. The
// report dialogs name their options without a separator ("CSoptScope0").
void AddOptionsRow(FormWindow& window,
                   const std::vector<std::tuple<const char*, const char*, Choices, int*>>& groups) {
  auto* row = new QWidget(&window);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  for (const auto& [name, caption, choices, field] : groups) {
    QButtonGroup* group = NewOptions(row, name, caption, choices, "");
    layout->addWidget(static_cast<QWidget*>(group->parent()));
    window.BindOptions(group, *field);
  }
  window.AddRow(nullptr, row);
}

// The part every option dialog shares: `build` puts the form's fields on
// the window; View and Print run the form's procedures, Cancel, Escape and
// the close box cancel.
template <class Form>
void ShowOptions(Application& app, Form& form, QWidget* parent, const std::string& caption,
                 const std::function<void(FormWindow&)>& build, void (*view)(Application&, Form&),
                 void (*print)(Application&, Form&)) {
  FormWindow window(app, form, parent);
  build(window);
  window.AddButton("btnView", QObject::tr("&View"), [&] { view(app, form); });
  window.AddButton("btnPrint", QObject::tr("P&rint"), [&] { print(app, form); });
  window.AddCancelButton("btnCancel", QObject::tr("Cancel"),
                         [&] { ReportOptions_Cancel(app, form); });
  window.Finish(caption, [&form](std::string_view control) { return HelpText(form, control); });
  window.Exec();
}

void RunBasisOptionsWindow(Application& app, BasisOptionsForm& form, QWidget* parent) {
  const bool sched_d = form.caption == BasisOptionsForm::kSchedDCaption;
  auto build = [&form, sched_d](FormWindow& window) {
    window.AddDate("dtYearEnd", BasisOptionsForm::kYearEndLabel, form.year_end);
    AddOptionsRow(window,
                  {{"CSoptScope", BasisOptionsForm::kScopeLabel, kScopeChoices, &form.scope},
                   {"CSoptReportType",
                    BasisOptionsForm::kReportTypeLabel,
                    {{0, "&Detailed"}, {1, "S&ummary"}},
                    &form.report_type}});
    if (sched_d) {
      window.AddCheck("chkElections", BasisOptionsForm::kElectionsCaption, form.elections);
    } else {
      window.AddCheck("chkSchedD", BasisOptionsForm::kIncludeSchedDCaption, form.include_sched_d);
      window.AddCheck("chkRemove0Sec", BasisOptionsForm::kExcludeEmptyCaption, form.exclude_empty);
    }
  };
  ShowOptions<BasisOptionsForm>(app, form, parent, form.caption, build, BasisOptions_View,
                                BasisOptions_Print);
}

void RunTransListOptionsWindow(Application& app, TransListOptionsForm& form, QWidget* parent) {
  auto build = [&form](FormWindow& window) {
    window.AddOptions("CSoptScope", "Report On:", kScopeChoices, form.scope, "");
    window.AddDate("dtBeginDate", "&Beginning Date:", form.begin_date);
    window.AddDate("dtEndDate", "&Ending Date:", form.end_date);
  };
  ShowOptions<TransListOptionsForm>(app, form, parent, TransListOptionsForm::kCaption, build,
                                    TransListOptions_View, TransListOptions_Print);
}

void RunClientListOptionsWindow(Application& app, ClientListOptionsForm& form, QWidget* parent) {
  auto build = [&form](FormWindow& window) {
    window.AddOptions("CSoptSortBy", "Sort By:", {{0, "Taxpayer &Code"}, {1, "Taxpayer &Name"}},
                      form.sort_by, "");
  };
  ShowOptions<ClientListOptionsForm>(app, form, parent, ClientListOptionsForm::kCaption, build,
                                     ClientListOptions_View, ClientListOptions_Print);
}

void RunSecListOptionsWindow(Application& app, SecListOptionsForm& form, QWidget* parent) {
  auto build = [&form](FormWindow& window) {
    window.AddOptions("CSOptListFrom", "List Securities for",
                      {{0, "this &Taxpayer"}, {1, "this &Portfolio"}}, form.list_from, "");
    window.AddOptions("CSoptSortBy", "Sort By:", {{0, "Security &Symbol"}, {1, "Portfolio &Name"}},
                      form.sort_by, "");
  };
  ShowOptions<SecListOptionsForm>(app, form, parent, SecListOptionsForm::kCaption, build,
                                  SecListOptions_View, SecListOptions_Print);
}

void RunAboutWindow(Application& app, AboutForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  auto add_label = [&](const char* name, const char* caption, const std::string& text) {
    auto* label = new QLabel(ToQ(text), &window);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    window.AddRow(caption, label);
    return label;
  };
  QLabel* program = add_label("lblProgram", nullptr, form.program_name);
  QFont big = program->font();
  big.setPointSizeF(big.pointSizeF() * 1.6);
  big.setBold(true);
  program->setFont(big);
  add_label("lblDescription", nullptr,
            "Tax cost basis of stocks and mutual-fund shares, lot by lot.");
  add_label("lblVersion", nullptr, form.version);
  add_label("lblUsage", nullptr, form.usage);
  add_label("lblSsfFolder", "Security Symbols File folder:", form.ssf_folder);
  add_label("lblClientFolder", "Taxpayer Files folder:", form.client_folder);
  add_label("lblProgramFolder", "Program folder:", form.program_folder);
  QPushButton* ok =
      window.AddCancelButton("btnOK", QObject::tr("OK"), [&] { About_OK(app, form); });
  window.Finish(form.caption, nullptr);
  ok->setFocus();
  window.Exec();
}

}  // namespace

void RegisterReportDialogs(DialogRegistry& registry) {
  registry.Register<BasisOptionsForm>(RunBasisOptionsWindow);
  registry.Register<TransListOptionsForm>(RunTransListOptionsWindow);
  registry.Register<ClientListOptionsForm>(RunClientListOptionsWindow);
  registry.Register<SecListOptionsForm>(RunSecListOptionsWindow);
  registry.Register<AboutForm>(RunAboutWindow);
}

}  // namespace lotwise::ui
