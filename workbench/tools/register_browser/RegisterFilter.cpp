#include "RegisterFilter.h"

#include "RegisterTableModel.h"

void RegisterFilter::setWanted(const std::optional<QSet<unsigned int>> &addresses)
{
    wanted = addresses;
    invalidateFilter();
}

void RegisterFilter::setSearchText(const QString &text)
{
    searched = text.trimmed();
    invalidateFilter();
}

QVector<int> RegisterFilter::sourceRows() const
{
    QVector<int> rows;
    for (int row = 0; row < rowCount(); ++row)
        rows.append(mapToSource(index(row, 0)).row());
    return rows;
}

bool RegisterFilter::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    const auto *const registers = qobject_cast<RegisterTableModel *>(sourceModel());
    if (!registers || (wanted && !wanted->contains(registers->addressAt(sourceRow))))
        return false;
    for (const int column : {RegisterTableModel::NameColumn, RegisterTableModel::DescriptionColumn,
                             RegisterTableModel::AddressColumn}) {
        const QModelIndex cell = registers->index(sourceRow, column, sourceParent);
        if (cell.data().toString().contains(searched, Qt::CaseInsensitive))
            return true;
    }
    return false;
}
