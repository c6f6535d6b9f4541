#pragma once

#include <vector>

#include <QAbstractListModel>
#include <QByteArray>
#include <QStringList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// The rows of one list on a screen. A row that stays is changed in place, so that it keeps the
/// keyboard focus and nothing flickers. Main thread.
class RowModel final : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  Q_PROPERTY(int count READ count NOTIFY countChanged)

 public:
  /// One role per name, each a key of the rows.
  explicit RowModel(const QStringList& roles);

  /// Shows these rows. Rows are the same when their "key" is; keys are unique.
  void setRows(const std::vector<QVariantMap>& rows);

  [[nodiscard]] int count() const { return static_cast<int>(rows_.size()); }
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override { return names_; }

 Q_SIGNALS:
  void countChanged();

 private:
  void removeMissing(const std::vector<QVariantMap>& rows);

  QHash<int, QByteArray> names_;
  std::vector<QVariantMap> rows_;
};

}  // namespace ZephrimarkOffload
