#pragma once

#include <QIcon>

/// One of the drawings in Desktop.qrc by its name, in the text colour of the palette at the time of painting, sharp at
/// every size and scale.
QIcon Get_Themed_Icon(const QString &name);
/// The program's own, in its own colours.
QIcon Get_Program_Icon();
