#pragma once

#include <QStringList>

/// The levels of detail by their numbers, 0 to 4, as texts that a cell takes.
QStringList Get_Level_Names();
/// The view modes by their indices: quarters of full detail.
QStringList Get_View_Mode_Names();
