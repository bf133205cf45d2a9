#pragma once

#include <memory>
#include <string>
#include <vector>

class ParticleData;
class ParticleTableModel;

/// What the rows of a selection have in one column.
struct ColumnSummary
{
    int Row = -1;         ///< source row that an edit is made on, from where it goes to the others; -1 when none can
    bool IsMixed = false; ///< the rows that can be written don't agree
    std::string Text;     ///< of that row
    double Least = 0.0;   ///< over all that can be written
    double Greatest = 0.0;
};

/// Of all columns, by their numbers; those of texts have no row. The current row is edited if it can be, else the first
/// of the selection that can.
std::vector<ColumnSummary> Summarize_Columns(const ParticleTableModel &model, const std::vector<int> &rows,
                                             int currentRow);
/// How many different effects the rows belong to.
int Count_Effects(const ParticleTableModel &model, const std::vector<int> &rows);
