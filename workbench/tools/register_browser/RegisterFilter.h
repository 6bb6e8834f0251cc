#pragma once

#include <QSet>
#include <QSortFilterProxyModel>
#include <QString>
#include <QVector>

#include <optional>

/// Lets those registers through that are asked for, and of them the ones whose name, description or
/// address holds the search text, in either case.
class RegisterFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    /// Nothing lets all registers through.
    void setWanted(const std::optional<QSet<unsigned int>> &addresses);

    void setSearchText(const QString &text);

    /// The rows of the source model that are let through, ascending.
    QVector<int> sourceRows() const;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    std::optional<QSet<unsigned int>> wanted;
    QString searched;
};
