#include "MKLib/File/FileLock.h"

#include "MKPlatform/Threads.h"

namespace
{
FastThreadLockClass GlobalFileLock;
thread_local int LockDepth = 0;
} // namespace

FileLockClass::FileLockClass()
{
    GlobalFileLock.lock();
    ++LockDepth;
}

FileLockClass::~FileLockClass()
{
    --LockDepth;
    GlobalFileLock.unlock();
}

int FileLockClass::Get_Depth()
{
    return LockDepth;
}
