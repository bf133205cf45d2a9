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
    double Least = 0.0;   ///< over all that can be written, where the column has numbers
    double Greatest = 0.0;
};

/// The current row is edited if it can be, else the first of the selection that can.
ColumnSummary Summarize_Column(const ParticleTableModel &model, const std::vector<int> &rows, int currentRow,
                               int column);
/// How many different effects the rows belong to. Rows in the order of the scan.
int Count_Effects(const ParticleTableModel &model, const std::vector<int> &rows);
