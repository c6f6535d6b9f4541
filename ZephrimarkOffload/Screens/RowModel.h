#pragma once

#include <vector>

#include <QAbstractListModel>
#include <QByteArray>
#include <QStringList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// The rows of one list on a screen, for a view in QML. A row that stays is changed in place, so
/// that it keeps the keyboard focus and nothing flickers. Main thread.
class RowModel final : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  Q_PROPERTY(int count READ count NOTIFY countChanged)

 public:
  /// One role per name, in that order; each is a key of the rows, and what a row lacks is none.
  explicit RowModel(const QStringList& roles);

  /// Shows these rows. Rows are the same when their "key" is; keys are unique. Signals tell views
  /// of what went, what came and what is moved or changed; nothing is told of a row that is as
  /// before.
  void setRows(const std::vector<QVariantMap>& rows);

  /// As of QAbstractListModel; rows have no rows of their own.
  [[nodiscard]] int count() const { return static_cast<int>(rows_.size()); }
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  /// None for a row or a role that is not there.
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override { return names_; }

 Q_SIGNALS:
  /// There are more or fewer rows.
  void countChanged();

 private:
  void removeMissing(const std::vector<QVariantMap>& rows);

  QHash<int, QByteArray> names_;
  std::vector<QVariantMap> rows_;
};

}  // namespace ZephrimarkOffload
