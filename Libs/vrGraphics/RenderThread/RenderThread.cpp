#include "vrGraphics/RenderThread/RenderThread.h"

#include <functional>
#include <thread>

namespace
{

const std::thread::id mainThread = std::this_thread::get_id(); // statics are initialised by the thread that starts

} // namespace

std::atomic<bool> RenderThread::InParallelSection{false};

bool Is_Main_Thread()
{
    return std::this_thread::get_id() == mainThread;
}

uint64_t Get_Current_Thread_Number()
{
    return std::hash<std::thread::id>()(std::this_thread::get_id());
}

uint64_t Get_Main_Thread_Number()
{
    return std::hash<std::thread::id>()(mainThread);
}

uint64_t Get_Render_Thread_Number()
{
    return Get_Main_Thread_Number();
}
