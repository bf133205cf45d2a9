#pragma once

/// Loads in the background. All loading is done by the thread that asks for it, so that none is ever outstanding.
class vrThreadLoadManager
{
public:
    /// Returns when no load is outstanding any more.
    static void Synchronize() {}
};
