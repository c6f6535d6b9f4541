#include "ZephrimarkOffload/Screens/RowModel.h"

#include <algorithm>

namespace ZephrimarkOffload {
namespace {

bool isSame(const QVariantMap& one, const QVariantMap& other) {
  return one.value("key") == other.value("key");
}

}  // namespace

RowModel::RowModel(const QStringList& roles) {
  for (const QString& role : roles) {
    names_[Qt::UserRole + static_cast<int>(names_.size())] = role.toUtf8();
  }
}

int RowModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count();
}

QVariant RowModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  return rows_[static_cast<std::size_t>(index.row())].value(names_.value(role));
}

void RowModel::removeMissing(const std::vector<QVariantMap>& rows) {
  for (int i = count(); i-- > 0;) {
    const auto at = rows_.begin() + i;
    if (std::any_of(rows.begin(), rows.end(),
                    [&](const QVariantMap& row) { return isSame(row, *at); })) {
      continue;
    }
    beginRemoveRows({}, i, i);
    rows_.erase(at);
    endRemoveRows();
  }
}

void RowModel::setRows(const std::vector<QVariantMap>& rows) {
  const int before = count();
  removeMissing(rows);
  for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
    const QVariantMap& row = rows[static_cast<std::size_t>(i)];
    const auto found = std::find_if(rows_.begin() + i, rows_.end(),
                                    [&](const QVariantMap& old) { return isSame(old, row); });
    if (found == rows_.end()) {
      beginInsertRows({}, i, i);
      rows_.insert(rows_.begin() + i, row);
      endInsertRows();
      continue;
    }
    const int from = static_cast<int>(found - rows_.begin());
    if (from != i) {
      beginMoveRows({}, from, from, {}, i);
      std::rotate(rows_.begin() + i, found, found + 1);
      endMoveRows();
    }
    QVariantMap& old = rows_[static_cast<std::size_t>(i)];
    if (old == row) continue;
    old = row;
    emit dataChanged(index(i), index(i));
  }
  if (count() != before) emit countChanged();
}

}  // namespace ZephrimarkOffload
