#pragma once

class FileClass;

/// Writes a campfire as it was saved before groups had a chunk of their own: layers directly in the root, then a group
/// of the first form with a light and a motion, then one of the second form that still has its model attached. Its
/// plugins are of retired kinds where they could be, with retired parameters. False when a write failed.
bool Write_Old_Campfire(FileClass &file);
