#include "ui/main_window.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QTableView>
#include <QTime>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <iterator>
#include <vector>

#include "app/main_window_commands.h"
#include "app/security_commands.h"
#include "app/startup.h"
#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/central_file.h"
#include "ground/field_sizes.h"
#include "ground/program_ended.h"
#include "ground/ui_port.h"
#include "lots/security_display.h"
#include "lots/security_list.h"
#include "lots/sell_shares.h"
#include "ui/form_widgets.h"
#include "ui/grid_models.h"

namespace lotwise::ui {

namespace {

// One entry of a menu: an item (caption with its access key) or, without a
// caption, a separator.
struct MenuEntry {
  const char* name;
  const char* caption = nullptr;
  bool checkable = false;
};

struct MenuDefinition {
  const char* name;
  const char* caption;
  std::vector<MenuEntry> entries;
};

const std::vector<MenuDefinition>& MenuTree() {
  static const std::vector<MenuDefinition> tree = {
      {"mnuFile",
       "&File",
       {{"mnuFileSecSymbol", "&Security Symbols File..."},
        {"mnuFileDash2"},
        {"mnuFilePrintSetup", "&Printer Setup..."},
        {"mnuFileDash3"},
        {"mnuFileCompress", "&Compress Files..."},
        {"mnuFileRepair", "&Repair Files..."},
        {"mnuFileDash4"},
        {"mnuFileLocate", "Designate File Locations..."},
        {"mnuDash5"},
        {"mnuBackupTP", "Backup Taxpayer &To Disk..."},
        {"mnuRestoreTP", "Restore Taxpayer &From Disk..."},
        {"mnuFileDash6"},
        {"mnuFileExit", "E&xit"}}},
      {"mnuTaxpayer",
       "&Taxpayer",
       {{"mnuFileNewClient", "&New Taxpayer File..."},
        {"mnuFileOpenClient", "&Open Taxpayer File..."},
        {"mnuFileCloseClient", "&Close Taxpayer File"},
        {"mnuFileModifyClient", "&Modify Taxpayer Info..."},
        {"mnuTaxpayerDel", "&Delete Taxpayer Info..."}}},
      {"mnuPortfolio",
       "&Portfolio",
       {{"mnuPortfolioNew", "&New Portfolio..."},
        {"mnuPortfolioOpen", "&Open Portfolio..."},
        {"mnuPortfolioClose", "&Close Portfolio"},
        {"mnuPortfolioDelete", "&Delete a Portfolio..."},
        {"mnuPortfolioModify", "&Modify Portfolio Info..."}}},
      {"mnuSecurity",
       "&Security",
       {{"mnuSecurityAdd", "&Add a Security..."},
        {"mnuSecurityDelete", "Delete &Security"},
        {"mnuChangeMethod", "&Change Sell Method..."},
        {"mnuSecurityDash1"},
        {"mnuDeleteBlock", "Delete &Block"},
        {"mnuModifyTrans", "&Modify Transaction..."},
        {"mnuDeleteTrans", "Delete &Transaction"},
        {"mnuSecurityDash2"},
        {"mnuModEntireSell", "Modify &Entire Sell..."},
        {"mnuModEntSplit", "Modify Entire S&plit..."},
        {"mnuModEntSDiv", "Modify Entire &Dividend..."}}},
      {"mnuActions",
       "&Actions",
       {{"mnuBuyShares", "&Buy Shares..."},
        {"mnuReinvest", "&Reinvestment..."},
        {"mnuSellShares", "&Sell Shares..."},
        {"mnuStockSplit", "S&tock Split..."},
        {"mnuStockDividend", "Stock &Dividend..."},
        {"mnuAdjustBlock", "&Adjust Block..."},
        {"mnuRollback", "Rollbac&k..."}}},
      {"mnuReports",
       "&Reports",
       {{"mnuTaxPayerReport", "&Taxpayer Listing..."},
        {"mnuSecListing", "&Security Listing..."},
        {"mnuTransListing", "T&ransaction Listing..."},
        {"mnuBasisAnalysis", "&Basis Analysis..."},
        {"mnuScheduleD", "Schedule &D Attachment..."}}},
      {"mnuOptions",
       "&Options",
       {{"mnuShowToolbar", "Show &Tool Bar", true},
        {"mnuShowToolTips", "Show Tool Ti&ps", true},
        {"mnuHelpBar", "Show &Help Bar", true},
        {"mnuOpenOnlyPort", "&Open Only Portfolio", true},
        {"mnuRecalcShares", "&Auto-Recalculate Shares", true},
        {"mnuDelBackups", "&Delete Backup Files..."}}},
      {"mnuHelp",
       "&Help",
       {{"mnuHelpContents", "&Contents..."},
        {"mnuHelpOnHelp", "&Help on Help..."},
        {"mnuHelpDash1"},
        {"mnuAbout", "&About..."}}},
  };
  return tree;
}

struct ToolKey {
  const char* key;
  const char* caption;
  QStyle::StandardPixmap icon;
};

constexpr ToolKey kToolKeys[] = {
    {"SecSymbol", "Symbols", QStyle::SP_FileDialogDetailedView},
    {"NewTP", "New Taxpayer", QStyle::SP_FileIcon},
    {"OpenTP", "Open Taxpayer", QStyle::SP_DirOpenIcon},
    {"NewPort", "New Portfolio", QStyle::SP_FileDialogNewFolder},
    {"OpenPort", "Open Portfolio", QStyle::SP_DialogOpenButton},
    {"AddSec", "Add Security", QStyle::SP_FileDialogContentsView},
    {"Help", "Help", QStyle::SP_DialogHelpButton},
    {"Exit", "Exit", QStyle::SP_DialogCloseButton},
};

struct PanelButton {
  const char* name;
  const char* caption;
  const char* help;
};

constexpr PanelButton kPanelButtons[] = {
    {"btnBuy", "Buy", "Click here to enter a new purchase of shares for this Security"},
    {"btnReinvest", "Reinvest", "Click here to enter a Reinvestment for this Security"},
    {"btnSell", "Sell", "Click here to enter a Sale of Shares for this Security"},
    {"btnSplit", "Split", "Click here to enter a Stock Split for this Security"},
    {"btnDividend", "Dividend", "Click here to enter Stock Dividend for this Security"},
    {"btnAdjust", "Adjust", "Click here to enter an Adjustment to this Security"},
    {"btnRollback", "Rollback", "Click here to Rollback transactions in this Security"},
};

constexpr const char* kTotalSharesHelp = "This is the total number of shares in this Portfolio";
constexpr const char* kRecalculateHelp = "Click here to recalculate the number of shares";
constexpr const char* kDisplayHelp =
    "This shows the type of Transaction that is listed below, for the current Block";

// The caption panels hold ampersands doubled for a panel that would take a
// single one as an access key; a label shows text as it is.
QString PanelText(const std::string& caption) {
  QString text = ToQ(caption);
  text.replace("&&", "&");
  return text;
}

QTableView* NewGrid(QWidget* parent, const char* name) {
  auto* grid = new QTableView(parent);
  grid->setObjectName(name);
  grid->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid->setSelectionMode(QAbstractItemView::SingleSelection);
  grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid->setAlternatingRowColors(true);
  grid->setTabKeyNavigation(false);
  grid->setWordWrap(false);
  grid->verticalHeader()->hide();
  // Fixed row heights: the view never measures its rows, so ten thousand
  // of them cost no more than a screenful.
  grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 6);
  grid->horizontalHeader()->setHighlightSections(false);
  return grid;
}

QLabel* NewPanel(QWidget* parent, const char* name) {
  auto* panel = new QLabel(parent);
  panel->setObjectName(name);
  panel->setFrameShape(QFrame::Panel);
  panel->setFrameShadow(QFrame::Sunken);
  panel->setTextFormat(Qt::PlainText);
  return panel;
}

void SetTextIfChanged(QLineEdit* field, const QString& text) {
  if (field->text() != text) field->setText(text);
}

// Puts the grid's current row on `row` (none when -1) and keeps it in view.
void SelectRow(QTableView* grid, int row) {
  QItemSelectionModel* selection = grid->selectionModel();
  const QModelIndex index = grid->model()->index(row, 0);
  if (!index.isValid()) {
    selection->clear();
    return;
  }
  if (selection->currentIndex().row() != row || !selection->isRowSelected(row, QModelIndex())) {
    selection->setCurrentIndex(index,
                               QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  }
  grid->scrollTo(index);
}

}  // namespace

MainWindow::MainWindow(Application& app, QWidget* parent) : QMainWindow(parent), app_(app) {
  setObjectName("frmMain");
  setWindowTitle("Lotwise");
  setMinimumSize(200, 150);

  auto* central = new QWidget(this);
  central->setObjectName("pnlClientArea");
  auto* layout = new QVBoxLayout(central);
  layout->setContentsMargins(4, 2, 4, 2);
  layout->setSpacing(4);

  BuildMenus();
  BuildToolBar(central);
  layout->addWidget(tool_bar_panel_);

  auto* body = new QHBoxLayout;
  sec_list_ = NewGrid(central, "SSdgSecList");
  sec_list_model_ = new SecListModel(app_.window.securities, this);
  sec_list_->setModel(sec_list_model_);
  sec_list_->horizontalHeader()->setStretchLastSection(true);
  sec_list_->setFixedWidth(150);
  AddHelp(sec_list_, "Click on a Security Symbol to view that Security");
  body->addWidget(sec_list_);
  body->addWidget(BuildSecurityPanel(central), 1);
  body->addStretch(0);
  layout->addLayout(body, 1);
  layout->addWidget(BuildHelpBar(central));
  setCentralWidget(central);

  ConnectGrids();

  command_refresh_ = new QTimer(this);
  command_refresh_->setInterval(300);
  connect(command_refresh_, &QTimer::timeout, this, [this] { Refresh(); });

  help_bar_->setText("Welcome to Lotwise!");
  resize(1000, 680);
  Refresh();
}

MainWindow::~MainWindow() = default;

void MainWindow::BuildMenus() {
  for (const MenuDefinition& definition : MenuTree()) {
    QMenu* menu = menuBar()->addMenu(QString::fromUtf8(definition.caption));
    menu->setObjectName(definition.name);
    menu->menuAction()->setObjectName(QString::fromUtf8(definition.name) + "Title");
    menus_[definition.name] = menu;
    for (const MenuEntry& entry : definition.entries) {
      if (entry.caption == nullptr) {
        menu->addSeparator()->setObjectName(entry.name);
        continue;
      }
      QAction* action = menu->addAction(QString::fromUtf8(entry.caption));
      action->setObjectName(entry.name);
      action->setCheckable(entry.checkable);
      const std::string name = entry.name;
      connect(action, &QAction::triggered, this, [this, name] { RunCommand(name); });
      actions_[name] = action;
    }
  }
}

void MainWindow::BuildToolBar(QWidget* parent) {
  tool_bar_panel_ = new QFrame(parent);
  tool_bar_panel_->setObjectName("pnlToolbar");
  tool_bar_panel_->setFrameShape(QFrame::StyledPanel);
  auto* layout = new QHBoxLayout(tool_bar_panel_);
  layout->setContentsMargins(2, 2, 2, 2);
  tool_bar_ = new QToolBar(tool_bar_panel_);
  tool_bar_->setObjectName("tbMain");
  tool_bar_->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  tool_bar_->setIconSize(QSize(24, 24));
  for (const ToolKey& key : kToolKeys) {
    QAction* action =
        tool_bar_->addAction(style()->standardIcon(key.icon), QString::fromUtf8(key.caption));
    action->setObjectName(key.key);
    const std::string name = key.key;
    connect(action, &QAction::triggered, this, [this, name] { RunCommand(name); });
    actions_[name] = action;
    // Tool tips follow their menu option.
    if (QWidget* button = tool_bar_->widgetForAction(action)) button->installEventFilter(this);
  }
  layout->addWidget(tool_bar_);
  layout->addStretch();
  AddHelp(tool_bar_panel_, "Use the Tool Bar to access menu items quickly.");
}

QWidget* MainWindow::BuildSecurityPanel(QWidget* parent) {
  sec_display_ = new QFrame(parent);
  sec_display_->setObjectName("pnlSecDisplay");
  sec_display_->setFrameShape(QFrame::StyledPanel);
  auto* layout = new QVBoxLayout(sec_display_);
  layout->addLayout(BuildSecurityFields());
  auto* grids = new QHBoxLayout;
  grids->addLayout(BuildBlocksColumn());
  grids->addLayout(BuildTransactionsColumn(), 1);
  layout->addLayout(grids, 1);
  layout->addLayout(BuildTotalShares());
  layout->addWidget(BuildPanelButtons());
  return sec_display_;
}

// Name, CUSIP and second line, stored when left; the sell method beside
// them.
QLayout* MainWindow::BuildSecurityFields() {
  auto* fields = new QGridLayout;
  auto add_field = [&](int row, const char* label_name, const char* caption, const char* field_name,
                       const char* help) {
    auto* label = new QLabel(QString::fromUtf8(caption), sec_display_);
    label->setObjectName(label_name);
    auto* field = new QLineEdit(sec_display_);
    field->setObjectName(field_name);
    label->setBuddy(field);
    fields->addWidget(label, row, 0);
    fields->addWidget(field, row, 1);
    AddHelp(field, help);
    EnterMovesFocus(field);
    OnLeave(field, [this, field] { StoreSecurityField(field); });
    return field;
  };
  sec_name_ =
      add_field(0, "lblSecName", "Name:", "txtSecName", "The Name of the Security you are viewing");
  sec_cusip_ = add_field(1, "lblSecCusip", "CUSIP:", "txtSecCusip",
                         "The CUSIP of the Security you are viewing");
  second_line_ =
      add_field(2, "lblOptLine", "2nd Line:", "txt2ndLine",
                "Use this for any extra information you want to keep about the Security");
  sec_name_->setMaxLength(DefinedTextSize("Securities", "Sec Name"));
  sec_cusip_->setMaxLength(DefinedTextSize("Securities", "CUSIP"));
  second_line_->setMaxLength(DefinedTextSize("Security", "2nd Line"));
  sell_method_ = new QLabel(sec_display_);
  sell_method_->setObjectName("lblSellMethod");
  fields->addWidget(sell_method_, 1, 2);
  fields->setColumnStretch(1, 1);

  return fields;
}

QLayout* MainWindow::BuildBlocksColumn() {
  auto* blocks_column = new QVBoxLayout;
  auto* blocks_label = new QLabel("Blocks", sec_display_);
  blocks_label->setObjectName("lblBlocks");
  blocks_column->addWidget(blocks_label);
  blocks_ = NewGrid(sec_display_, "SSdgBlocks");
  blocks_model_ = new BlocksModel(app_.window.display.blocks, this);
  blocks_->setModel(blocks_model_);
  blocks_->horizontalHeader()->setStretchLastSection(true);
  blocks_->setFixedWidth(150);
  AddHelp(blocks_, "Click on a Block to view the Transactions for that Block");
  blocks_column->addWidget(blocks_, 1);

  return blocks_column;
}

// The transactions grid under its caption, with the type filter that the
// "Select Type..." button shows and hides.
QLayout* MainWindow::BuildTransactionsColumn() {
  auto* trans_column = new QVBoxLayout;
  auto* trans_head = new QHBoxLayout;
  auto* display_label = new QLabel("Display:", sec_display_);
  display_label->setObjectName("lblDisplay");
  display_trans_ = new QLabel(sec_display_);
  display_trans_->setObjectName("lblDisplayTrans");
  AddHelp(display_label, kDisplayHelp);
  AddHelp(display_trans_, kDisplayHelp);
  auto* select = new QPushButton("Select Type...", sec_display_);
  select->setObjectName("btnTransSelect");
  select->setAutoDefault(false);
  AddHelp(select, "Click here to select the type of Transaction to display");
  transactions_caption_ = new QLabel(sec_display_);
  transactions_caption_->setObjectName("lblTransList");
  trans_head->addWidget(display_label);
  trans_head->addWidget(display_trans_);
  trans_head->addWidget(select);
  trans_head->addStretch();
  trans_head->addWidget(transactions_caption_);
  trans_column->addLayout(trans_head);

  trans_filter_ = new QFrame(sec_display_);
  trans_filter_->setObjectName("CSoptDisplayTrans");
  trans_filter_->setFrameShape(QFrame::StyledPanel);
  auto* filter_row = new QHBoxLayout(trans_filter_);
  filter_row->setContentsMargins(4, 2, 4, 2);
  trans_filter_group_ = new QButtonGroup(this);
  for (int i = 0; i < static_cast<int>(std::size(kTransFilterCaptions)); ++i) {
    auto* option = new QRadioButton(QString::fromUtf8(kTransFilterCaptions[i]), trans_filter_);
    option->setObjectName(QString("optDisplayTrans%1").arg(i));
    trans_filter_group_->addButton(option, i);
    filter_row->addWidget(option);
  }
  filter_row->addStretch();
  AddHelp(trans_filter_, "Click on the Type of Transaction you would like displayed");
  trans_filter_->hide();
  trans_column->addWidget(trans_filter_);
  connect(select, &QPushButton::clicked, this,
          [this] { trans_filter_->setVisible(!trans_filter_->isVisible()); });
  connect(trans_filter_group_, &QButtonGroup::idClicked, this, [this](int id) {
    if (mirroring_) return;
    trans_filter_->hide();
    RunCore([id](Application& app) {
      app.window.display.trans_filter = static_cast<int16_t>(id);
      SetDisplayTrans(app);
    });
  });

  transactions_ = NewGrid(sec_display_, "SSdgTransactions");
  transactions_model_ = new TransactionsModel(app_.window.display.transactions, this);
  transactions_->setModel(transactions_model_);
  transactions_->horizontalHeader()->setStretchLastSection(true);
  constexpr int kColumnWidths[] = {84, 140, 76, 90, 90, 60};
  for (int column = 0; column < static_cast<int>(std::size(kColumnWidths)); ++column) {
    transactions_->setColumnWidth(column, kColumnWidths[column]);
  }
  AddHelp(transactions_, "This shows all the transactions for the Block selected to the left");
  trans_column->addWidget(transactions_, 1);
  return trans_column;
}

// The total, computed on a click when recalculation is off.
QLayout* MainWindow::BuildTotalShares() {
  auto* totals = new QHBoxLayout;
  auto* total_label = new QLabel("Total Shares:", sec_display_);
  total_label->setObjectName("lblTotalShares");
  total_shares_ = NewPanel(sec_display_, "pnlTotalShares");
  total_shares_->setMinimumWidth(140);
  total_shares_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  total_shares_->setCursor(Qt::PointingHandCursor);
  total_shares_->installEventFilter(this);
  OnHelp(
      total_shares_,
      [this] {
        return std::string(app_.window.display.total_shares == "Recalculate" ? kRecalculateHelp
                                                                             : kTotalSharesHelp);
      },
      app_.ui());
  totals->addWidget(total_label);
  totals->addWidget(total_shares_);
  totals->addStretch();

  return totals;
}

QWidget* MainWindow::BuildPanelButtons() {
  auto* buttons_panel = new QFrame(sec_display_);
  buttons_panel->setObjectName("pnlSecButtons");
  auto* buttons = new QHBoxLayout(buttons_panel);
  buttons->setContentsMargins(0, 0, 0, 0);
  for (const PanelButton& definition : kPanelButtons) {
    auto* button = new QPushButton(QString::fromUtf8(definition.caption), buttons_panel);
    button->setObjectName(definition.name);
    button->setAutoDefault(false);
    AddHelp(button, definition.help);
    const std::string name = definition.name;
    connect(button, &QPushButton::clicked, this, [this, name] { RunCommand(name); });
    panel_buttons_[name] = button;
    buttons->addWidget(button);
  }
  return buttons_panel;
}

QWidget* MainWindow::BuildHelpBar(QWidget* parent) {
  help_bar_row_ = new QFrame(parent);
  help_bar_row_->setObjectName("fraHelpBar");
  auto* row = new QHBoxLayout(help_bar_row_);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(2);

  help_bar_ = NewPanel(help_bar_row_, "pnlHelpBar");
  help_bar_->setMinimumWidth(100);
  AddHelp(help_bar_, "This is the Help Bar");
  row->addWidget(help_bar_, 1);

  gauge_panel_ = new QFrame(help_bar_row_);
  gauge_panel_->setObjectName("pnlStatus2");
  gauge_panel_->setFrameShape(QFrame::Panel);
  gauge_panel_->setFrameShadow(QFrame::Sunken);
  auto* gauge_layout = new QHBoxLayout(gauge_panel_);
  gauge_layout->setContentsMargins(1, 1, 1, 1);
  gauge_ = new QProgressBar(gauge_panel_);
  gauge_->setObjectName("gaugeHelpBar");
  gauge_->setRange(0, 100);
  gauge_->setFixedWidth(120);
  gauge_->hide();
  gauge_layout->addWidget(gauge_);
  gauge_panel_->setMinimumWidth(124);
  row->addWidget(gauge_panel_);

  client_panel_ = NewPanel(help_bar_row_, "pnlClient");
  client_panel_->setMinimumWidth(160);
  AddHelp(client_panel_, "This shows the name of the Taxpayer you are currently working on");
  row->addWidget(client_panel_);
  portfolio_panel_ = NewPanel(help_bar_row_, "pnlPortfolio");
  portfolio_panel_->setMinimumWidth(120);
  AddHelp(portfolio_panel_, "This shows the name of the Portfolio you are currently working on");
  row->addWidget(portfolio_panel_);

  clock_ = NewPanel(help_bar_row_, "CurrTime");
  clock_->setText(QTime::currentTime().toString("h:mm AP"));
  auto* ticker = new QTimer(this);
  connect(ticker, &QTimer::timeout, this,
          [this] { clock_->setText(QTime::currentTime().toString("h:mm AP")); });
  ticker->start(10000);
  row->addWidget(clock_);
  return help_bar_row_;
}

void MainWindow::AddHelp(QWidget* control, const char* text) {
  OnHelp(
      control, [text] { return std::string(text); }, app_.ui());
}

void MainWindow::ConnectGrids() {
  connect(sec_list_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& current) {
            if (mirroring_ || !current.isValid()) return;
            const int row = current.row();
            if (row == app_.window.selected_security && app_.window.display.visible) return;
            RunCore([row](Application& app) { SecList_Select(app, row); });
          });
  // A click on the row already chosen opens it when no security is shown.
  connect(sec_list_, &QTableView::clicked, this, [this](const QModelIndex& index) {
    if (mirroring_ || app_.window.display.visible) return;
    const int row = index.row();
    RunCore([row](Application& app) { SecList_Select(app, row); });
  });
  connect(blocks_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& current) {
            if (mirroring_ || !current.isValid()) return;
            const int row = current.row();
            if (row == app_.window.display.selected_block) return;
            RunCore([row](Application& app) { SelectBlock(app, row); });
          });
  connect(transactions_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& current) {
            if (mirroring_ || !current.isValid()) return;
            // The Modify Entire commands act on the chosen row.
            app_.window.display.selected_transaction = current.row();
          });
  connect(transactions_, &QTableView::doubleClicked, this,
          [this](const QModelIndex&) { RunCommand("mnuModifyTrans"); });
}

template <typename Procedure>
void MainWindow::RunCore(Procedure procedure) {
  if (command_running_) {
    Refresh();
    return;
  }
  command_running_ = true;
  EndsHere([&] { procedure(app_); });
  command_running_ = false;
  Refresh();
  if (program_ended_) close();
}

bool MainWindow::RunCommand(std::string_view name) {
  if (command_running_ || program_ended_) {
    Refresh();
    return false;
  }
  command_running_ = true;
  command_refresh_->start();
  bool ran = true;
  EndsHere([&] { ran = RunMenuCommand(app_, name); });
  command_refresh_->stop();
  command_running_ = false;
  Refresh();
  if (program_ended_) close();
  return ran;
}

void MainWindow::EndsHere(const std::function<void()>& body) {
  try {
    body();
  } catch (const ProgramEnded&) {
    EndProgram(app_);
    program_ended_ = true;
  }
}

void MainWindow::Refresh() {
  if (mirroring_) return;
  mirroring_ = true;
  const MainWindowState& window = app_.window;
  for (const auto& [name, menu] : menus_) menu->menuAction()->setVisible(window.IsVisible(name));
  for (const auto& [name, action] : actions_) action->setEnabled(window.IsEnabled(name));
  for (const auto& [name, button] : panel_buttons_) button->setEnabled(window.IsEnabled(name));

  const OptionMarks& options = window.options;
  actions_.at("mnuShowToolbar")->setChecked(options.show_tool_bar);
  actions_.at("mnuShowToolTips")->setChecked(options.show_tool_tips);
  actions_.at("mnuHelpBar")->setChecked(options.show_help_bar);
  actions_.at("mnuOpenOnlyPort")->setChecked(options.open_only_port);
  actions_.at("mnuRecalcShares")->setChecked(options.recalc_shares);
  tool_bar_panel_->setVisible(window.tool_bar_visible);
  help_bar_row_->setVisible(window.help_bar_visible);

  client_panel_->setText(PanelText(window.client_panel));
  portfolio_panel_->setText(PanelText(window.portfolio_panel));

  sec_list_model_->Sync();
  SelectRow(sec_list_, window.selected_security);
  sec_list_->setVisible(window.sec_list_visible);
  RefreshSecurityPanel();
  mirroring_ = false;
}

void MainWindow::RefreshSecurityPanel() {
  const SecurityDisplay& display = app_.window.display;
  sec_display_->setVisible(display.visible);
  // A field being typed in keeps its text until it is left and stored.
  if (!sec_name_->hasFocus()) SetTextIfChanged(sec_name_, ToQ(display.sec_name));
  if (!sec_cusip_->hasFocus()) SetTextIfChanged(sec_cusip_, ToQ(display.sec_cusip));
  if (!second_line_->hasFocus()) {
    SetTextIfChanged(second_line_, ToQ(display.second_line).trimmed());
  }
  if (display.visible) {
    sell_method_->setText("Sell Method: " + ToQ(GetSellName(app_, display.sell_method)));
  }

  blocks_model_->Sync();
  SelectRow(blocks_, display.selected_block);
  transactions_model_->Sync();
  SelectRow(transactions_, display.selected_transaction);
  transactions_caption_->setText(ToQ(display.transactions_caption));
  display_trans_->setText(ToQ(display.trans_filter_caption));
  if (QAbstractButton* option = trans_filter_group_->button(display.trans_filter)) {
    option->setChecked(true);
  }
  total_shares_->setText(ToQ(display.total_shares));
}

void MainWindow::StoreSecurityField(QLineEdit* field) {
  if (mirroring_ || command_running_ || !app_.window.display.visible) return;
  const SecurityDisplay& display = app_.window.display;
  const std::string text = FromQ(field->text());
  const std::string symbol = app_.current.sec_symbol;
  if (field == second_line_) {
    if (StoredSecondLine(text) == StoredSecondLine(display.second_line)) return;
    RunCore([&](Application& app) { UpdateSec2ndLine(app, symbol, text); });
    return;
  }
  const bool is_name = field == sec_name_;
  if (text == (is_name ? display.sec_name : display.sec_cusip)) return;
  RunCore([&](Application& app) {
    if (is_name) {
      UpdateSecName(app, symbol, text);
    } else {
      UpdateSecCusip(app, symbol, text);
    }
    // Shows what the Security Symbols File now holds: the new text, or the
    // old one when the user kept it.
    const std::string name = GetSecInfoFromCDB(app, symbol, "[Sec Name]");
    const std::string cusip = GetSecInfoFromCDB(app, symbol, "CUSIP");
    ModifySecDisplay(app, symbol, name, cusip);
  });
  // The field lost the focus, so Refresh may now write the stored text.
  const QString shown = ToQ(is_name ? app_.window.display.sec_name : app_.window.display.sec_cusip);
  SetTextIfChanged(field, shown);
}

void MainWindow::SetHelpBarText(const QString& text) { help_bar_->setText(text); }

void MainWindow::ShowGauge(int percent) {
  gauge_->setValue(percent);
  gauge_->show();
}

void MainWindow::HideGauge() {
  gauge_->hide();
  gauge_->setValue(0);
}

void MainWindow::RecordGoodSize() { last_good_size_ = size(); }

void MainWindow::closeEvent(QCloseEvent* event) {
  if (!program_ended_ && !command_running_) EndsHere([this] { CloseMainWindow(app_); });
  if (!program_ended_) {
    // A command is still running (a dialog is open): the window stays.
    event->ignore();
    return;
  }
  event->accept();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (isMinimized()) return;
  const QSize now = size();
  if (now.width() >= kMinimumSize.width() && now.height() >= kMinimumSize.height()) {
    last_good_size_ = now;
    return;
  }
  if (size_check_pending_ || !last_good_size_.isValid()) return;
  // The message waits until the resize in progress has finished.
  size_check_pending_ = true;
  QTimer::singleShot(0, this, [this] { RestoreGoodSize(); });
}

void MainWindow::RestoreGoodSize() {
  const QSize now = size();
  if (now.width() < kMinimumSize.width() || now.height() < kMinimumSize.height()) {
    app_.ui().MessageBox(kTooSmallText, kTooSmallTitle, Icon::kExclamation, Buttons::kOk);
    resize(last_good_size_);
  }
  size_check_pending_ = false;
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == total_shares_ && event->type() == QEvent::MouseButtonRelease) {
    if (!mirroring_ && app_.window.display.visible) RunCore(RecalculateShares);
    return true;
  }
  if (event->type() == QEvent::ToolTip && !app_.window.options.show_tool_tips) return true;
  return QMainWindow::eventFilter(watched, event);
}

}  // namespace lotwise::ui
