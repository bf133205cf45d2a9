#pragma once

/// Puts pictures of one size side by side, each with its name below. Each entry is NAME=PICTURE.png. Gives the exit
/// code.
int Make_Sheet(const char *path, int columns, char **entries, int count);
