#pragma once

#include <QColor>
#include <QObject>

class QPalette;

/// The looks of all windows: Fusion with a palette of our own, light or dark. The choice is kept.
class Theme final : public QObject
{
public:
    enum class Mode
    {
        Desktop, ///< as the desktop's own programs look
        Light,
        Dark
    };

    /// Applies the kept choice. Expects a QApplication.
    Theme();

    Mode Get_Mode() const { return mode; }
    void Set_Mode(Mode value);

    static bool Is_Dark(const QPalette &palette);
    /// Of what has unsaved changes.
    static QColor Get_Modified_Color(const QPalette &palette);
    /// Of texts that only inform: between the text's and the ground's.
    static QColor Get_Quiet_Color(const QPalette &palette);

private:
    void Apply();

    Mode mode;
    bool desktopIsDark;
};
