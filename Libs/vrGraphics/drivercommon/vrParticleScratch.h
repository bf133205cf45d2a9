#pragma once

#include "vrGraphics/drivercommon/vrVertices.h"

#include <cstddef>

/// The memory that particle vertices live in between their building and their draw: one area for the process, given
/// out piece by piece and taken back as a whole at the end of each frame. Its size is what bounds a frame: 4 MiB hold
/// 29,127 lit quads. Any thread allocates; start, shutdown, resize and reset are the main thread's alone.
namespace ParticleScratch
{

constexpr size_t DEFAULT_BYTES = 0x400000;

/// Made when the driver starts; another size is for benchmarks.
bool Start(size_t bytes = DEFAULT_BYTES);
void Shutdown();
bool Is_Started();

/// Room for vertices, 16-byte aligned no more than their size allows; null, with nothing taken, when it doesn't fit or
/// nothing was started. A negative count asserts.
void *Allocate(int items_count, vrPrimVertexType type);
void Reset();
size_t Get_Used_Bytes();

} // namespace ParticleScratch
