#pragma once

class QMenu;
class QWidget;

/// The documents that come with the tool, as far as they are found, and the box that tells what it is.
void Fill_Help_Menu(QMenu &menu, QWidget &window);
