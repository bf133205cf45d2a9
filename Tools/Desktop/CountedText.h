#pragma once

#include <QString>

/// "1 layer", "2 layers".
inline QString Counted(int count, const QString &one)
{
    return QString("%1 %2%3").arg(count).arg(one, count == 1 ? "" : "s");
}
