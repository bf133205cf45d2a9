#pragma once

#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"

/// Puts entries into ascending order of their keys; equal keys keep their order, but -0 goes ahead of 0. `room` is
/// memory to work in, kept by the caller between frames. Keys that are no numbers come last or first, by their sign.
void Sort_Entries(std::vector<vrMKPSortEntry> &entries, std::vector<vrMKPSortEntry> &room);
