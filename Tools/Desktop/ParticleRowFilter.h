#pragma once

#include <QAbstractProxyModel>
#include <QStringList>
#include <vector>

class ParticleTableModel;

/// Shows those rows that hold every word of a filter, ordered by a column or as scanned. The core's list stays as it
/// is.
///
/// It keeps its own table of rows, and not Qt's, which removes rows a run at a time: that takes seconds where the
/// filter leaves every second of 20,000.
class ParticleRowFilter final : public QAbstractProxyModel
{
public:
    explicit ParticleRowFilter(ParticleTableModel &source);

    /// Words apart by blanks, in any case.
    void Set_Filter(const QString &text);
    const QStringList &Get_Words() const { return words; }
    int To_Source(int row) const { return sourceRows[static_cast<size_t>(row)]; }
    /// -1 for a row that the filter hides.
    int From_Source(int row) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &) const override { return {}; }
    QModelIndex sibling(int row, int column, const QModelIndex &) const override { return index(row, column); }
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QModelIndex mapToSource(const QModelIndex &index) const override;
    QModelIndex mapFromSource(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// By the values of a column; -1 goes back to the order of the scan. Later edits don't move rows.
    void sort(int column, Qt::SortOrder order) override;

private:
    void Rebuild();
    void Fill();
    void Order();
    bool Accepts(int row) const;
    void Source_Changed(const QModelIndex &first, const QModelIndex &last);

    ParticleTableModel &rows;
    QStringList words;
    int sortColumn = -1;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    std::vector<int> sourceRows; ///< by shown row
    std::vector<int> shownRows;  ///< by source row, -1 for a hidden one
};
