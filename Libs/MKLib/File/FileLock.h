#pragma once

/// The one lock of all file objects, held while one lives; re-entrant on its thread. Whatever else has to be locked
/// together with it is locked after it.
class FileLockClass
{
public:
    FileLockClass();
    FileLockClass(const FileLockClass &) = delete;
    FileLockClass &operator=(const FileLockClass &) = delete;
    ~FileLockClass();

    /// How many times the calling thread holds it.
    static int Get_Depth();
};
