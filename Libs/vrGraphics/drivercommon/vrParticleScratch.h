#pragma once

#include "vrGraphics/drivercommon/vrVertices.h"

#include <cstddef>

/// The memory that particle vertices live in between their building and their draw: one area for the process, given
/// out piece by piece and taken back as a whole at the end of each frame. Its size is what bounds a frame: 4 MiB hold
/// 29,127 lit quads. Any thread allocates; start, shutdown, resize and reset are the main thread's alone.
namespace ParticleScratch
{

constexpr size_t DEFAULT_BYTES = 0x400000;

/// Made when the driver starts, unless it is there already; another size is for benchmarks. What was given out before
/// is gone. False when there is no memory.
bool Start(size_t bytes = DEFAULT_BYTES);
void Shutdown();
bool Is_Started();

/// Room for vertices, packed behind what was given out before (4-byte aligned); null, with nothing taken, when it
/// doesn't fit or nothing was started. A negative count asserts, and gets null.
void *Allocate(int items_count, vrPrimVertexType type);
void Reset();
size_t Get_Used_Bytes();

} // namespace ParticleScratch
