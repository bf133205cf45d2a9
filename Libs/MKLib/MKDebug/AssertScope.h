#pragma once

namespace MKDebug
{

/// While one lives, assertions of its thread report each text once: work that runs in many pieces tells of a fault as if
/// it were done in one. Scopes may stand within each other; the innermost counts.
class AssertScope
{
public:
    AssertScope();
    AssertScope(const AssertScope &) = delete;
    AssertScope &operator=(const AssertScope &) = delete;
    ~AssertScope();

    /// Whether this text hasn't been reported in the innermost scope of the thread; notes it. Always true without one,
    /// and once a scope has noted as many texts as it can.
    static bool Is_New(const char *text);

private:
    static constexpr int MAX_TEXTS = 16;

    const char *Texts[MAX_TEXTS];
    int Count = 0;
    AssertScope *Outer;
};

} // namespace MKDebug
