// The windows of a sale: the sale itself, the sell-method choice, the
// specific-identification selection and its number prompt.
#include <QAbstractTableModel>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringList>
#include <QTableView>

#include "data/application.h"
#include "ground/number_text.h"
#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "lots/sell_specific.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

constexpr int kNotesLength = 255;

class SellSharesWindow : public FormWindow {
 public:
  SellSharesWindow(Application& app, SellSharesForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    AddPanel("lblSecurity", "lblSecurity", "Security:", [&form] { return form.security; });
    OnLeaveField(AddDate("dtDate", "Date:", form.date), [&] { CheckDateSS(app_, form); });
    QLineEdit* shares = AddNumber("DblNumShares", "Number of Shares:", form.num_shares);
    OnLeaveField(shares, [&] { CheckNumSharesSS(app_, form); });
    // Under the methods that pick blocks by hand, a click on the shares
    // opens the selection that fills them.
    HookEvents(shares, this, [this, &form](QObject*, QEvent* event) {
      if (event->type() == QEvent::MouseButtonRelease) Run([&] { NumSharesSS_Click(app_, form); });
      return false;
    });
    OnLeaveField(AddMoney("CurrSalePrice", "Sale Price:", form.sale_price),
                 [&] { CheckSalePriceSS(app_, form); });
    OnLeaveField(AddMoney("CurrFee", "Fee:", form.fee), [&] { CheckFeeSS(app_, form); });
    AddMoneyDisplay("CurrTotalSale", "Total Sale:", form.total_sale);

    auto* method_row = new QWidget(this);
    auto* method_layout = new QHBoxLayout(method_row);
    method_layout->setContentsMargins(0, 0, 0, 0);
    auto* methods = new QComboBox(method_row);
    methods->setObjectName("SScboSellMethod");
    for (const std::string& name : form.sell_methods) methods->addItem(ToQ(name));
    methods->setPlaceholderText(ToQ(GetSellName(app, SellMethod::kNotSelected)));
    auto* select = new QPushButton("&Select", method_row);
    select->setObjectName("btnSelect");
    select->setAutoDefault(false);
    method_layout->addWidget(methods, 1);
    method_layout->addWidget(select);
    AddRow("Sell Method:", method_row);
    Bind(
        [methods, &form] {
          if (methods->currentIndex() >= 0) form.sell_method = FromQ(methods->currentText());
        },
        [methods, select, shares, &form] {
          methods->setCurrentIndex(methods->findText(ToQ(form.sell_method), Qt::MatchExactly));
          select->setEnabled(form.select_enabled);
          shares->setReadOnly(form.num_shares_locked);
        });
    connect(methods, &QComboBox::activated, this,
            [this, &form] { Run([&] { SellMethodChange(app_, form); }); });
    connect(select, &QPushButton::clicked, this,
            [this, &form] { Run([&] { ShowSellSpecific(app_, form); }); });

    AddText("txtNotes", "Notes:", form.notes, kNotesLength);
    AddButton("btnOK", "OK",
              [&] { SellShares_OK(app_, form, form.caption != kSellSharesCaption); });
    AddCancelButton("btnCancel", "Cancel", [&] { SellShares_Cancel(app_, form); });
    Finish(form.caption, [&form](std::string_view control) { return HelpText(form, control); });
  }
};

class MethodWindow : public FormWindow {
 public:
  MethodWindow(Application& app, MethodForm& form, QWidget* parent)
      : FormWindow(app, form, parent), form_(form) {
    QLabel* message = AddPanel("lblMessageLine", "lblMessageLine", nullptr,
                               [&form] { return form.message_line; });
    message->setFrameStyle(QFrame::NoFrame);
    message->setWordWrap(true);
    message->setVisible(form.message_visible);
    // The option group works on an int, the form on a method: the copy is
    // taken before the group shows it and written back after the group has
    // been read.
    Bind([] {}, [this, &form] { method_ = CodeOf(form.method); });
    // The group's value is the method's code; each name carries the
    // method's access key.
    QButtonGroup* group =
        AddOptions("CSoptMethod", "Sell Method",
                   {{CodeOf(SellMethod::kSpecificId), "S&pecific Identification"},
                    {CodeOf(SellMethod::kFifo), "&FIFO"},
                    {CodeOf(SellMethod::kAvgSingle), "Average Cost - &Single Cat."},
                    {CodeOf(SellMethod::kAvgDouble), "Average Cost - &Double Cat."}},
                   method_);
    static_cast<QWidget*>(group->parent())->setObjectName("fraMethod");
    Bind([this,
          &form] { form.method = SellMethodFromCode(method_).value_or(SellMethod::kNotSelected); },
         [] {});
    QCheckBox* option = AddCheck("chkOption1", form.option_caption.c_str(), form.option1);
    option->setVisible(form.option_visible);
    AddButton("btnOK", "OK", [&] { Method_OK(app_, form); });
    AddCancelButton("btnCancel", "Cancel", [&] { Method_Cancel(app_, form); });
    Finish("Sell Method", [&form](std::string_view control) { return HelpText(form, control); });
  }

 protected:
  // P, F, S and D choose a method without Alt, wherever the focus is.
  void keyPressEvent(QKeyEvent* event) override {
    const QString text = event->text().toUpper();
    const bool plain =
        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (plain && text.size() == 1 && QStringLiteral("PFSD").contains(text)) {
      Run([&] { Method_KeyPress(form_, static_cast<char>(text.at(0).toLatin1())); });
      return;
    }
    FormWindow::keyPressEvent(event);
  }

 private:
  MethodForm& form_;
  // The option group works on an int; the form keeps a method.
  int method_ = CodeOf(SellMethod::kNotSelected);
};

// A list of the selection dialog: rows "block id", Tab, shares, Tab, block
// number, as the core fills them.
class ShareRowsModel : public QAbstractTableModel {
 public:
  enum Column { kBlockId, kShares, kBlockNo, kColumnCount };

  ShareRowsModel(const std::vector<std::string>& rows, QObject* parent)
      : QAbstractTableModel(parent), rows_(rows) {}

  int rowCount(const QModelIndex& parent = QModelIndex()) const override {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
  }
  int columnCount(const QModelIndex& parent = QModelIndex()) const override {
    return parent.isValid() ? 0 : kColumnCount;
  }
  QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid() || index.row() >= static_cast<int>(shown_.size())) return {};
    if (role == Qt::TextAlignmentRole && index.column() != kBlockId) {
      return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) return {};
    const QStringList& cells = shown_[static_cast<size_t>(index.row())];
    return index.column() < cells.size() ? cells.at(index.column()) : QString();
  }
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* const kHeaders[kColumnCount] = {"Block", "Shares", "Block No"};
    return section >= 0 && section < kColumnCount ? QString::fromUtf8(kHeaders[section])
                                                  : QVariant();
  }
  // Shows the core's rows as they are now.
  void Sync() {
    beginResetModel();
    shown_.clear();
    shown_.reserve(rows_.size());
    for (const std::string& row : rows_) shown_.push_back(ToQ(row).split(QChar('\t')));
    endResetModel();
  }

 private:
  const std::vector<std::string>& rows_;
  std::vector<QStringList> shown_;
};

QTableView* ShareGrid(const char* name, ShareRowsModel* model, QWidget* parent) {
  auto* view = new QTableView(parent);
  view->setObjectName(name);
  view->setModel(model);
  view->setSelectionBehavior(QAbstractItemView::SelectRows);
  view->setSelectionMode(QAbstractItemView::SingleSelection);
  view->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view->verticalHeader()->hide();
  // The block number is how the program finds the block, not what the
  // user reads.
  view->setColumnHidden(ShareRowsModel::kBlockNo, true);
  view->horizontalHeader()->setStretchLastSection(true);
  return view;
}

void ShowCurrentRow(QTableView* view, int row) {
  if (row >= 0 && row < view->model()->rowCount()) {
    view->setCurrentIndex(view->model()->index(row, ShareRowsModel::kBlockId));
  }
}

class SellSpecificWindow : public FormWindow {
 public:
  SellSpecificWindow(Application& app, SellSpecificForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    AddPanel("pnlSecurity", "lblSecurity", "Security:", [&form] { return form.security; });
    auto* lists = new QWidget(this);
    auto* grid = new QGridLayout(lists);
    grid->setContentsMargins(0, 0, 0, 0);
    auto* left_model = new ShareRowsModel(form.shares_left_rows, this);
    auto* sold_model = new ShareRowsModel(form.shares_sold_rows, this);
    QTableView* left = ShareGrid("SSdgSharesLeft", left_model, lists);
    QTableView* sold = ShareGrid("SSdgSharesSold", sold_model, lists);
    auto* left_total = new QLabel(lists);
    left_total->setObjectName("pnlSharesLeft");
    auto* sold_total = new QLabel(lists);
    sold_total->setObjectName("pnlSharesSold");
    for (QLabel* total : {left_total, sold_total}) {
      total->setFrameStyle(QFrame::Panel | QFrame::Sunken);
      total->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    grid->addWidget(new QLabel("Shares that can be sold:", lists), 0, 0);
    grid->addWidget(new QLabel("Shares selected for sale:", lists), 0, 1);
    grid->addWidget(left, 1, 0);
    grid->addWidget(sold, 1, 1);
    grid->addWidget(left_total, 2, 0);
    grid->addWidget(sold_total, 2, 1);
    AddRow(nullptr, lists);
    Bind(
        [left, sold, &form] {
          if (left->currentIndex().isValid()) form.left_row = left->currentIndex().row();
          if (sold->currentIndex().isValid()) form.sold_row = sold->currentIndex().row();
        },
        [=, &form] {
          left_model->Sync();
          sold_model->Sync();
          ShowCurrentRow(left, form.left_row);
          ShowCurrentRow(sold, form.sold_row);
          left_total->setText(ToQ(NumberText(form.shares_left_total)));
          sold_total->setText(ToQ(NumberText(form.shares_sold_total)));
        });
    connect(left, &QTableView::doubleClicked, this,
            [this, &form] { Run([&] { SellSpecific_Add(app_, form); }); });
    connect(sold, &QTableView::doubleClicked, this,
            [this, &form] { Run([&] { SellSpecific_Remove(app_, form); }); });

    AddButton("btnAdd", "&Add", [&] { SellSpecific_Add(app_, form); });
    AddButton("btnRemove", "&Remove", [&] { SellSpecific_Remove(app_, form); });
    AddButton("btnReset", "R&eset", [&] { ResetShareLists(app_, form); });
    AddButton("btnOK", "OK", [&] { SellSpecific_OK(app_, form); });
    AddCancelButton("btnCancel", "Cancel", [&] { SellSpecific_Cancel(app_, form); });
    Finish("Select Shares", [&form](std::string_view control) { return HelpText(form, control); });

    // Enter or Space on a row of the left list adds from its block. Hooked
    // on the application after Enter's move to the next field, so that this
    // hook sees the key first.
    HookEvents(qApp, left, [this, left, &form](QObject* watched, QEvent* event) {
      if (watched != left || event->type() != QEvent::KeyPress) return false;
      const int key = static_cast<QKeyEvent*>(event)->key();
      if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Space) return false;
      Run([&] { SellSpecific_Add(app_, form); });
      return true;
    });
  }
};

class NumSharesWindow : public FormWindow {
 public:
  NumSharesWindow(Application& app, NumSharesForm& form, QWidget* parent)
      : FormWindow(app, form, parent) {
    QLabel* note = AddPanel("lblNote", "lblNote", nullptr, [&form] { return form.note; });
    note->setFrameStyle(QFrame::NoFrame);
    QLineEdit* shares = AddNumber("DblNumShares", "Number of Shares:", form.num_shares);
    // Shares are moved, never negative: the minus key does nothing here.
    HookEvents(shares, this, [](QObject*, QEvent* event) {
      return event->type() == QEvent::KeyPress &&
             static_cast<QKeyEvent*>(event)->text() == QStringLiteral("-");
    });
    AddPanel("lblMaxShares", "lblMaxShares",
             "Maximum:", [&form] { return NumberText(form.max_shares); });
    AddButton("btnOK", "OK", [&] { NumShares_OK(app_, form); });
    AddCancelButton("btnCancel", "Cancel", [&] { NumShares_Cancel(app_, form); });
    Finish(form.caption, [&form](std::string_view control) { return HelpText(form, control); });
    // Typing replaces the preset number.
    shares->setFocus(Qt::OtherFocusReason);
    shares->selectAll();
  }
};

}  // namespace

void RegisterSaleDialogs(DialogRegistry& registry) {
  registry.Register<SellSharesForm>(ShowWindow<SellSharesWindow, SellSharesForm>);
  registry.Register<MethodForm>(ShowWindow<MethodWindow, MethodForm>);
  registry.Register<SellSpecificForm>(ShowWindow<SellSpecificWindow, SellSpecificForm>);
  registry.Register<NumSharesForm>(ShowWindow<NumSharesWindow, NumSharesForm>);
}

}  // namespace lotwise::ui
