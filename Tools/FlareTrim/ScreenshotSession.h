#pragma once

#include <string>
#include <utility>
#include <vector>

class DesktopApplication;
class DesktopMainForm;
class QWidget;

/// The tool's main job, done in the real window with mouse and keyboard: scan, find the smoke layers of five effects,
/// lower their far detail at once, look at the difference in the preview if there is one, save. Each station leaves a
/// picture.
class ScreenshotSession
{
public:
    /// The first two must outlive the session.
    ScreenshotSession(DesktopApplication &application, DesktopMainForm &form, std::string directory)
        : application(application), form(form), directory(std::move(directory))
    {
    }

    /// False when a step or a picture failed, which is printed. Closes the form.
    bool Run();

private:
    bool Scan();
    bool Find_Layers();
    bool Edit();
    bool Look();
    bool Save();
    bool Show_Looks();

    void Answer_Boxes();
    /// What the widget has on the screen, or would have on one.
    bool Shoot(QWidget &widget, const char *name);
    bool Check(bool holds, const char *what) const;

    DesktopApplication &application;
    DesktopMainForm &form;
    std::string directory;
    std::vector<int> layers; ///< source rows
    bool hadBox = false;
};
