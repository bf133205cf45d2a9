#pragma once

/// Assertions of the engine.
///
/// An assertion reports its quoted text and the program goes on: a release run never stops for one. The text is part of
/// the behaviour (in the particle model it often names the fault and not the invariant), so it is given apart from the
/// condition. Reports go to the logger "Assert", and to the installed collector instead when there is one. Any thread.

namespace MKDebug
{

struct AssertReport
{
    const char *text; ///< the quoted text, static
    const char *file; ///< source file of the assertion
    int line;
};

/// Receives every report in place of the log; must be callable from any thread.
using AssertCollector = void (*)(const AssertReport &report, void *context);

/// Installs a collector, or removes it when null. `context` is handed back at each call and stays the caller's.
void Set_Assert_Collector(AssertCollector collector, void *context);

/// Reports one violated assertion. Use the macros.
void Report_Assert(const char *text, const char *file, int line);

inline bool Verify(bool holds, const char *text, const char *file, int line)
{
    if (!holds) [[unlikely]]
        Report_Assert(text, file, line);
    return holds;
}

} // namespace MKDebug

/// Yields whether `condition` holds, and reports `text` when it doesn't.
#define MK_VERIFY(condition, text) (::MKDebug::Verify(static_cast<bool>(condition), text, __FILE__, __LINE__))

/// Reports `text` when `condition` doesn't hold.
#define MK_ASSERT(condition, text) static_cast<void>(MK_VERIFY(condition, text))
