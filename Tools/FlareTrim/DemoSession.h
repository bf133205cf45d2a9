#pragma once

class HeadlessApplication;
class HeadlessMainForm;

/// The tool's main job, done once from scan to save on whatever the working directory holds, with each step printed:
/// what an artist does at the grid, for a machine that has no screen.
class DemoSession
{
public:
    /// Both must outlive the session.
    DemoSession(HeadlessApplication &application, HeadlessMainForm &form) : application(application), form(form) {}

    /// False when a step failed; the message boxes that told so are printed.
    bool Run();

private:
    bool Scan();
    void Edit_Level_Of_Detail();
    void Edit_Heat();
    void Convert_Billboard();
    bool Save();

    HeadlessApplication &application;
    HeadlessMainForm &form;
};
