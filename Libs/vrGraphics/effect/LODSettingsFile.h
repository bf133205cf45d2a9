#pragma once

struct vrLODSettings;

/// Reads a level-of-detail file over the defaults that `settings` has. False, with the reason in the log and `settings`
/// in any state, for a file that isn't there or isn't well. docs/formats/lod-settings.md has the file.
bool Read_LOD_Settings(const char *xmlFilePath, vrLODSettings &settings);
