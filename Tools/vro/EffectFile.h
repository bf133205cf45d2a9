#pragma once

#include "MKLib/RefCount.h"

#include <string>
#include <string_view>

class FileClass;
class vrMKParticleEmitter;

namespace vro
{

/// Loads an emitter as the tool does. Null with `error` set when the file isn't there, isn't an emitter's or is damaged.
SmartPtr<vrMKParticleEmitter> Load_Effect(const std::string &path, std::string &error);
/// The same from a file object that is open for reading.
SmartPtr<vrMKParticleEmitter> Load_Effect(FileClass &file, std::string &error);
/// The same from the bytes of a file that would have this name.
SmartPtr<vrMKParticleEmitter> Load_Effect(std::string_view bytes, const std::string &name, std::string &error);

/// The bytes of the emitter's file; `mode` is the chunk writer's. False with `error` set when it can't be written.
bool Save_Effect(vrMKParticleEmitter &emitter, unsigned mode, std::string &bytes, std::string &error);

/// The mode in which the tool saves: zlib, native byte order.
constexpr unsigned TOOL_MODE = 129;

} // namespace vro
