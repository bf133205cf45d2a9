#include "Desktop/SelectionSummary.h"

#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleTableModel.h"

#include <algorithm>
#include <charconv>
#include <unordered_set>

ColumnSummary Summarize_Column(const ParticleTableModel &model, const std::vector<int> &rows, int currentRow,
                               int columnIndex)
{
    const ParticleColumn &column = Get_Particle_Columns()[static_cast<size_t>(columnIndex)];
    ColumnSummary summary;
    for (const int row : rows) {
        const ParticleData &data = *model.Get_Row(row);
        if (!Can_Write(column, data)) continue;
        std::string text = column.Get_Property().Get(data);
        double number = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        const bool isFirst = summary.Row < 0;
        summary.Least = isFirst ? number : std::min(summary.Least, number);
        summary.Greatest = isFirst ? number : std::max(summary.Greatest, number);
        if (!isFirst && text != summary.Text) summary.IsMixed = true;
        if (!isFirst && row != currentRow) continue;
        summary.Row = row;
        summary.Text = std::move(text);
    }
    return summary;
}

int Count_Effects(const ParticleTableModel &model, const std::vector<int> &rows)
{
    std::unordered_set<const EmitterData *> effects;
    for (const int row : rows) effects.insert(&model.Get_Row(row)->Get_EmitterData());
    return static_cast<int>(effects.size());
}
