#include "companions/settings/common/valuesmodel.h"

#include "companions/settings/common/commontexts.h"
#include "companions/settings/common/rates.h"
#include "settings/modNameCheck.h"

namespace hourbook {

using namespace Qt::StringLiterals;
namespace texts = commontexts;

namespace {

QString cellText(const CommonValue& value, int column) {
  switch (column) {
    case ValuesModel::Name:
      return value.name;
    case ValuesModel::Category:
      return value.category;
    case ValuesModel::SuperCategory:
      return value.superCategory;
    case ValuesModel::Rate:
      return rateText(value.rate);
    default:
      return value.enabled ? texts::yes : texts::no;
  }
}

QVariant sortKey(const CommonValue& value, int column) {
  if (column == ValuesModel::Rate) return value.rate.tenThousandths();
  if (column == ValuesModel::Enabled) return value.enabled ? 1 : 0;
  return cellText(value, column);
}

}  // namespace

ValuesModel::ValuesModel(CommonBuffer& buffer, int list, QObject* parent)
    : QAbstractTableModel(parent), buffer_(buffer), list_(list) {}

int ValuesModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(values().size());
}

int ValuesModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : ColumnCount;
}

QVariant ValuesModel::data(const QModelIndex& index, int role) const {
  const CommonValue& value = values()[index.row()];
  const int column = index.column();
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:  // of a flag, too: its box alone is hard to see on some backgrounds
      return cellText(value, column);
    case Qt::CheckStateRole:
      return column == Enabled ? QVariant(value.enabled ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::TextAlignmentRole:
      return column == Rate ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
    case Qt::AccessibleTextRole:
      return QString(heading(column) + u": "_s + cellText(value, column));
    case Qt::ToolTipRole: {
      const QString problem = column == Name ? fncNameProblem(value.name) : QString();
      return problem.isEmpty() ? QVariant() : texts::storedName.arg(problem);
    }
    case sortRole:
      return sortKey(value, column);
    default:
      return {};
  }
}

bool ValuesModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!writable_) return false;
  const QString before = values()[index.row()].name;
  if (role == Qt::CheckStateRole && index.column() == Enabled) {
    buffer_.setEnabled(list_, index.row(), value.toInt() == Qt::Checked);
  } else if (role == Qt::EditRole && index.column() != Enabled) {
    const QString text = value.toString();
    if (text == cellText(values()[index.row()], index.column())) return true;
    if (const QString reason = setText(index, text); !reason.isEmpty()) {
      Q_EMIT refused(text, reason);
      return false;
    }
  } else {
    return false;
  }
  const bool isRename = index.column() == Name;
  Q_EMIT dataChanged(index, index);
  Q_EMIT edited();
  if (isRename) Q_EMIT renamed(before);
  return true;
}

QString ValuesModel::setText(const QModelIndex& index, const QString& text) {
  switch (index.column()) {
    case Name:
      return buffer_.renameValue(list_, index.row(), text);
    case Category:
      return buffer_.setCategory(list_, index.row(), text.trimmed());
    case SuperCategory:
      return buffer_.setSuperCategory(list_, index.row(), text.trimmed());
    default:
      return buffer_.setRate(list_, index.row(), text);
  }
}

QString ValuesModel::problem(const QModelIndex& index, const QString& text) const {
  if (index.column() == Name) return buffer_.nameProblem(list_, index.row(), text.trimmed());
  if (index.column() == Rate) return readRate(text).problem;
  return columnProblem(text.trimmed());
}

QString ValuesModel::heading(int column) const {
  const CommonList& list = buffer_.edited.lists[list_];
  switch (column) {
    case Name:
      return texts::columnName;
    case Category:
      return list.categoryCaption.isEmpty() ? texts::columnCategory : list.categoryCaption;
    case SuperCategory:
      return list.superCategoryCaption.isEmpty() ? texts::columnSuperCategory : list.superCategoryCaption;
    case Rate:
      return texts::columnRate;
    default:
      return texts::columnEnabled;
  }
}

QVariant ValuesModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return QAbstractTableModel::headerData(section, orientation, role);
  return role == Qt::DisplayRole ? heading(section) : QVariant();
}

Qt::ItemFlags ValuesModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  if (!index.isValid() || !writable_) return flags;
  return flags | (index.column() == Enabled ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

int ValuesModel::addValue(const QString& name, QString& reason) {
  reason = buffer_.nameProblem(list_, -1, name.trimmed());
  if (!reason.isEmpty()) return -1;
  const int row = rowCount();
  beginInsertRows({}, row, row);
  reason = buffer_.addValue(list_, name);
  endInsertRows();
  Q_EMIT edited();
  return row;
}

void ValuesModel::removeValues(const QList<int>& rows) {
  beginResetModel();
  buffer_.removeValues(list_, rows);
  endResetModel();
  Q_EMIT edited();
}

void ValuesModel::reload() {
  beginResetModel();
  endResetModel();
}

}  // namespace hourbook
