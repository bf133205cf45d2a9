#pragma once

#include <string>
#include <vector>

namespace vro
{

/// The files that the arguments of a command mean: a file itself, and for a directory all `*.vro` below it that hold no
/// other asset than an emitter, in the order of their paths. False with `error` set, and in `failed` the argument, for a
/// directory that can't be read or has none.
bool Expand_Paths(const std::vector<std::string> &paths, std::vector<std::string> &files, std::string &failed,
                  std::string &error);

} // namespace vro
