#pragma once

#include <QPersistentModelIndex>

/// What the user's last step on a scale of thousandths wrote, and where. Reading truncates, so that a step up may read
/// as none: the next one starts from what was written, for as long as nothing else was.
class LastStep
{
public:
    void Note(const QModelIndex &index, int value)
    {
        cell = index;
        written = value;
        read = Read(index);
    }
    int Get_Position(const QModelIndex &index) const
    {
        const int value = Read(index);
        return cell == index && value == read ? written : value;
    }

private:
    static int Read(const QModelIndex &index) { return index.data(Qt::EditRole).toInt(); }

    QPersistentModelIndex cell;
    int written = 0;
    int read = 0;
};
