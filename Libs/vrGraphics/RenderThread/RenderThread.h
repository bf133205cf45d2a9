#pragma once

#include <atomic>
#include <cstdint>

/// Which thread is which, for what may happen on the main thread alone or at certain times only.
struct RenderThread
{
    /// While the main thread waits for the work of a frame that runs in parallel; assets must not be asked for then.
    static std::atomic<bool> InParallelSection;
};

/// The main thread is the one that started the program.
bool Is_Main_Thread();

/// Numbers for the log.
uint64_t Get_Current_Thread_Number();
uint64_t Get_Main_Thread_Number();
/// Without a thread of its own, rendering is the main thread's.
uint64_t Get_Render_Thread_Number();
