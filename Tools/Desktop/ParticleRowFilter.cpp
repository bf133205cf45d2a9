#include "Desktop/ParticleRowFilter.h"

#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleTableModel.h"

#include <algorithm>
#include <string>

namespace
{

/// What rows are ordered by: a number where the column has numbers, the text otherwise.
struct Key
{
    double number;
    std::string text;
    int row;
};

Key Get_Key(const ParticleColumn &column, const ParticleData &data, int row)
{
    if (column.Number) return {column.Number(data), "", row};
    return {0.0, column.Get_Property().Get(data), row};
}

} // namespace

ParticleRowFilter::ParticleRowFilter(ParticleTableModel &source) : rows(source)
{
    setSourceModel(&source);
    connect(&source, &QAbstractItemModel::modelAboutToBeReset, this, [this] { beginResetModel(); });
    connect(&source, &QAbstractItemModel::modelReset, this, [this] {
        Fill();
        endResetModel();
    });
    connect(&source, &QAbstractItemModel::dataChanged, this, &ParticleRowFilter::Source_Changed);
}

void ParticleRowFilter::Set_Filter(const QString &text)
{
    const QStringList wanted = text.toLower().split(' ', Qt::SkipEmptyParts);
    if (wanted == words) return;
    words = wanted;
    Rebuild();
}

void ParticleRowFilter::sort(int column, Qt::SortOrder order)
{
    if (column == sortColumn && order == sortOrder) return;
    sortColumn = column;
    sortOrder = order;
    Rebuild();
}

void ParticleRowFilter::Rebuild()
{
    beginResetModel();
    Fill();
    endResetModel();
}

void ParticleRowFilter::Fill()
{
    sourceRows.clear();
    for (int row = 0; row < rows.Get_Count(); ++row)
        if (Accepts(row)) sourceRows.push_back(row);
    if (sortColumn >= 0) Order();
    shownRows.assign(static_cast<size_t>(rows.Get_Count()), -1);
    for (size_t row = 0; row < sourceRows.size(); ++row)
        shownRows[static_cast<size_t>(sourceRows[row])] = static_cast<int>(row);
}

void ParticleRowFilter::Order()
{
    const ParticleColumn &column = Get_Particle_Column(sortColumn);
    std::vector<Key> keys;
    keys.reserve(sourceRows.size());
    for (const int row : sourceRows) keys.push_back(Get_Key(column, *rows.Get_Row(row), row));
    const bool ascending = sortOrder == Qt::AscendingOrder;
    std::stable_sort(keys.begin(), keys.end(), [ascending](const Key &left, const Key &right) {
        const Key &first = ascending ? left : right, &second = ascending ? right : left;
        return first.number != second.number ? first.number < second.number : first.text < second.text;
    });
    for (size_t row = 0; row < keys.size(); ++row) sourceRows[row] = keys[row].row;
}

bool ParticleRowFilter::Accepts(int row) const
{
    if (words.isEmpty()) return true;
    const QString &text = rows.Get_Search_Text(row);
    return std::all_of(words.begin(), words.end(), [&text](const QString &word) { return text.contains(word); });
}

/// Shown rows lie in another order than the source's, so all of them count as changed.
void ParticleRowFilter::Source_Changed(const QModelIndex &, const QModelIndex &)
{
    if (sourceRows.empty()) return;
    Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

int ParticleRowFilter::From_Source(int row) const
{
    return row >= 0 && static_cast<size_t>(row) < shownRows.size() ? shownRows[static_cast<size_t>(row)] : -1;
}

QModelIndex ParticleRowFilter::index(int row, int column, const QModelIndex &parent) const
{
    const bool isThere = !parent.isValid() && row >= 0 && row < rowCount() && column >= 0 && column < columnCount();
    return isThere ? createIndex(row, column) : QModelIndex();
}

int ParticleRowFilter::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(sourceRows.size());
}

int ParticleRowFilter::columnCount(const QModelIndex &parent) const
{
    return rows.columnCount(parent);
}

QModelIndex ParticleRowFilter::mapToSource(const QModelIndex &index) const
{
    if (!index.isValid() || index.row() >= rowCount()) return {};
    return rows.index(To_Source(index.row()), index.column());
}

QModelIndex ParticleRowFilter::mapFromSource(const QModelIndex &source) const
{
    if (!source.isValid()) return {};
    return index(From_Source(source.row()), source.column());
}

QVariant ParticleRowFilter::headerData(int section, Qt::Orientation orientation, int role) const
{
    return rows.headerData(section, orientation, role);
}
