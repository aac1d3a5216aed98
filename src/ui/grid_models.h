#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "app/app_state.h"

namespace lotwise::ui {

// Read-only table models over the rows the core keeps in
// Application::window. They hold no copy: each cell is read from the core's
// row when the view paints it, so a security with many thousands of blocks
// opens as fast as its rows are read. After the core has changed its rows,
// Sync() tells the view.
template <typename Row>
class CoreRowsModel : public QAbstractTableModel {
 public:
  explicit CoreRowsModel(const std::vector<Row>& rows, QObject* parent = nullptr)
      : QAbstractTableModel(parent), rows_(rows) {}

  int rowCount(const QModelIndex& parent = QModelIndex()) const override {
    return parent.isValid() ? 0 : static_cast<int>(shown_rows_);
  }

  // Resets the view when the core holds a different row list (a new
  // security, another block); otherwise only repaints the cells, keeping
  // the view's scroll position.
  void Sync() {
    if (rows_.size() != shown_rows_ || rows_.data() != shown_data_) {
      beginResetModel();
      shown_rows_ = rows_.size();
      shown_data_ = rows_.data();
      endResetModel();
    } else if (shown_rows_ > 0) {
      emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
  }

 protected:
  // The row at `index`, or null when the core's list has shrunk since the
  // last Sync (a repaint during a long operation).
  const Row* RowAt(const QModelIndex& index) const {
    if (!index.isValid() || static_cast<size_t>(index.row()) >= rows_.size()) return nullptr;
    return &rows_[static_cast<size_t>(index.row())];
  }

 private:
  const std::vector<Row>& rows_;
  size_t shown_rows_ = 0;
  const Row* shown_data_ = nullptr;
};

// SSdgSecList: the open portfolio's securities.
class SecListModel : public CoreRowsModel<SecurityRow> {
 public:
  enum Column { kSymbol, kColumnCount };
  using CoreRowsModel::CoreRowsModel;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
};

// SSdgBlocks: the open security's blocks, oldest first.
class BlocksModel : public CoreRowsModel<BlockRow> {
 public:
  enum Column { kBlockId, kColumnCount };
  using CoreRowsModel::CoreRowsModel;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
};

// SSdgTransactions: the selected block's transactions under the type filter.
class TransactionsModel : public CoreRowsModel<TransactionRow> {
 public:
  enum Column { kDate, kTransaction, kShares, kCost, kSalePrice, kFee, kNotes, kColumnCount };
  using CoreRowsModel::CoreRowsModel;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
};

// An amount as the grids show it: thousands separators, at least two
// decimals and up to four when the amount has them ("1,234.50",
// "-0.1234").
QString MoneyText(Currency amount);

}  // namespace lotwise::ui
