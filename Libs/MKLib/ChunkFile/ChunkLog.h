#pragma once

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

/// The two loggers of the room; the configuration knows them by these names.
namespace ChunkFile
{

inline constinit MKDebug::Logger ChunkFileLog("ChunkFile");
inline constinit MKDebug::Logger ChunkFileTextLog("_Chunkfile.txt");

using MKDebug::LogLevel;

} // namespace ChunkFile
