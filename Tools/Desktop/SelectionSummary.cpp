#include "Desktop/SelectionSummary.h"

#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleTableModel.h"

#include <algorithm>
#include <unordered_set>

namespace
{

void Add_Row(ColumnSummary &summary, const ParticleColumn &column, const ParticleData &data, int row, bool isCurrent)
{
    if (!column.Number || !Can_Write(column, data)) return;
    const double number = column.Number(data);
    const bool isFirst = summary.Row < 0;
    summary.Least = isFirst ? number : std::min(summary.Least, number);
    summary.Greatest = isFirst ? number : std::max(summary.Greatest, number);
    if (isFirst || isCurrent) summary.Row = row;
}

} // namespace

/// Row by row, and not column by column: what makes it slow is to get at the layers, of which there may be many.
std::vector<ColumnSummary> Summarize_Columns(const ParticleTableModel &model, const std::vector<int> &rows,
                                             int currentRow)
{
    const std::span<const ParticleColumn> columns = Get_Particle_Columns();
    std::vector<ColumnSummary> summaries(columns.size());
    for (const int row : rows) {
        const ParticleData &data = *model.Get_Row(row);
        for (size_t column = 0; column < columns.size(); ++column)
            Add_Row(summaries[column], columns[column], data, row, row == currentRow);
    }
    for (size_t column = 0; column < columns.size(); ++column) {
        ColumnSummary &summary = summaries[column];
        if (summary.Row < 0) continue;
        summary.IsMixed = summary.Least != summary.Greatest;
        summary.Text = columns[column].Get_Property().Get(*model.Get_Row(summary.Row));
    }
    return summaries;
}

int Count_Effects(const ParticleTableModel &model, const std::vector<int> &rows)
{
    std::unordered_set<const EmitterData *> effects;
    const EmitterData *last = nullptr; // an effect's layers mostly lie together
    for (const int row : rows) {
        const EmitterData *effect = &model.Get_Row(row)->Get_EmitterData();
        if (effect != last) effects.insert(effect);
        last = effect;
    }
    return static_cast<int>(effects.size());
}
