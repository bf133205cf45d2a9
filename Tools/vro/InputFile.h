#pragma once

#include "MKLib/File/File.h"

#include <memory>
#include <string>

namespace vro
{

/// A file opened for reading by the engine's own file object: a path of the system, or standard input for "-".
class InputFile
{
public:
    /// Null with `error` set when there is nothing to read.
    static std::unique_ptr<InputFile> Open(const std::string &path, std::string &error);

    FileClass &Get_File() { return *File; }

private:
    std::string Content; ///< of standard input
    std::unique_ptr<FileClass> File;
};

} // namespace vro
