#pragma once

#include "common/TempFiles.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace ToolTest
{

/// A `p4` of our own on PATH. What it was called with stands in the file `calls`, a line a call.
class FakeP4
{
public:
    FakeP4(const MKTest::TempDirectory &directory, const std::string &body) : log(directory / "calls")
    {
        const std::string script = directory.Write("bin/p4", "#!/bin/sh\nfor word in \"$@\"; do printf '[%s]' \"$word\""
                                                             "; done >> '" +
                                                                 log + "'\necho >> '" + log + "'\n" + body);
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        before = getenv("PATH");
        setenv("PATH", (directory / "bin:" + before).c_str(), 1);
    }
    FakeP4(const FakeP4 &) = delete;
    FakeP4 &operator=(const FakeP4 &) = delete;
    ~FakeP4() { setenv("PATH", before.c_str(), 1); }

    std::string Calls() const { return std::filesystem::exists(log) ? MKTest::Read_Text_File(log) : ""; }

private:
    std::string log;
    std::string before;
};

constexpr const char *MAKE_WRITABLE = "chmod u+w \"$2\"\n";
constexpr const char *REFUSE = "exit 1\n";

} // namespace ToolTest
