#include "ui/grid_models.h"

#include <array>

#include "ground/number_text.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

QVariant Header(int section, Qt::Orientation orientation, int role, const char* const* captions,
                int count) {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  if (section < 0 || section >= count) return {};
  return QString::fromUtf8(captions[section]);
}

constexpr const char* kSecListCaptions[] = {"Symbol"};
constexpr const char* kBlocksCaptions[] = {"Block ID"};
constexpr const char* kTransactionCaptions[] = {"Date",       "Transaction", "Shares", "Cost",
                                                "Sale Price", "Fee",         "Notes"};

}  // namespace

QString MoneyText(Currency amount) {
  const int64_t units = amount.units();
  const uint64_t abs = units < 0 ? 0 - static_cast<uint64_t>(units) : static_cast<uint64_t>(units);
  QString whole = QString::number(abs / 10000);
  for (qsizetype at = whole.size() - 3; at > 0; at -= 3) whole.insert(at, ',');
  QString fraction = QString::number(abs % 10000).rightJustified(4, '0');
  while (fraction.size() > 2 && fraction.endsWith('0')) fraction.chop(1);
  return (units < 0 ? "-" : "") + whole + "." + fraction;
}

int SecListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QVariant SecListModel::data(const QModelIndex& index, int role) const {
  const SecurityRow* row = RowAt(index);
  if (row == nullptr || role != Qt::DisplayRole) return {};
  return ToQ(row->symbol);
}

QVariant SecListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  return Header(section, orientation, role, kSecListCaptions, kColumnCount);
}

int BlocksModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QVariant BlocksModel::data(const QModelIndex& index, int role) const {
  const BlockRow* row = RowAt(index);
  if (row == nullptr || role != Qt::DisplayRole) return {};
  return ToQ(row->block_id);
}

QVariant BlocksModel::headerData(int section, Qt::Orientation orientation, int role) const {
  return Header(section, orientation, role, kBlocksCaptions, kColumnCount);
}

int TransactionsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QVariant TransactionsModel::data(const QModelIndex& index, int role) const {
  const TransactionRow* row = RowAt(index);
  if (row == nullptr) return {};
  const int column = index.column();
  if (role == Qt::TextAlignmentRole) {
    const bool figure =
        column == kShares || column == kCost || column == kSalePrice || column == kFee;
    return QVariant::fromValue(Qt::AlignVCenter | (figure ? Qt::AlignRight : Qt::AlignLeft));
  }
  if (role != Qt::DisplayRole) return {};
  switch (column) {
    case kDate:
      return ToQ(row->date.ToString());
    case kTransaction:
      return ToQ(row->transaction);
    case kShares:
      return ToQ(NumberText(row->shares));
    case kCost:
      return MoneyText(row->cost);
    case kSalePrice:
      return MoneyText(row->sale_price);
    case kFee:
      return MoneyText(row->fee);
    case kNotes:
      return ToQ(row->notes);
    default:
      return {};
  }
}

QVariant TransactionsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  return Header(section, orientation, role, kTransactionCaptions, kColumnCount);
}

}  // namespace lotwise::ui
