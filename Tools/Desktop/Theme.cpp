#include "Desktop/Theme.h"

#include "Desktop/DesktopColorScheme.h"
#include "Desktop/UserSettings.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace
{

constexpr const char *MODE_KEY = "theme";
constexpr const char *MODE_NAMES[] = {"desktop", "light", "dark"};

struct Shades
{
    QRgb window, base, alternate, text, quiet, disabled, button, highlight, highlighted, link, light, mid, dark, shadow;
};

constexpr Shades LIGHT = {0xfff0f1f4, 0xffffffff, 0xfff6f7f9, 0xff1d2127, 0xff667080, 0xffa2a9b3, 0xfff8f9fb,
                          0xff2a66c9, 0xffffffff, 0xff1f5fc4, 0xffffffff, 0xffc4c9d1, 0xffa9afb9, 0xff6d7480};
constexpr Shades DARK = {0xff282a2f, 0xff1d1f23, 0xff222429, 0xffdcdfe4, 0xff939ba7, 0xff686e78, 0xff34373d,
                         0xff2f63b8, 0xffffffff, 0xff6ea8ff, 0xff44484f, 0xff3a3d44, 0xff17181b, 0xff0c0d0e};

QPalette Make_Palette(const Shades &shades)
{
    const auto color = [](QRgb rgb) { return QColor::fromRgb(rgb); };
    QPalette palette;
    palette.setColor(QPalette::Window, color(shades.window));
    palette.setColor(QPalette::Base, color(shades.base));
    palette.setColor(QPalette::AlternateBase, color(shades.alternate));
    palette.setColor(QPalette::Button, color(shades.button));
    palette.setColor(QPalette::ToolTipBase, color(shades.button));
    palette.setColor(QPalette::PlaceholderText, color(shades.quiet));
    palette.setColor(QPalette::Link, color(shades.link));
    palette.setColor(QPalette::Light, color(shades.light));
    palette.setColor(QPalette::Midlight, color(shades.light).darker(104));
    palette.setColor(QPalette::Mid, color(shades.mid));
    palette.setColor(QPalette::Dark, color(shades.dark));
    palette.setColor(QPalette::Shadow, color(shades.shadow));
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Highlight, color(shades.highlight));
    palette.setColor(QPalette::HighlightedText, color(shades.highlighted));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, color(shades.text));
        palette.setColor(QPalette::Disabled, role, color(shades.disabled));
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, color(shades.mid));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, color(shades.text));
    // A selection stays as plain to see when the other window is in front.
    palette.setColor(QPalette::Inactive, QPalette::Highlight, color(shades.highlight).darker(115));
    return palette;
}

Theme::Mode Get_Kept_Mode()
{
    const QString name = Open_User_Settings().value(MODE_KEY).toString();
    for (int index = 0; index < 3; ++index)
        if (name == MODE_NAMES[index]) return static_cast<Theme::Mode>(index);
    return Theme::Mode::Desktop;
}

} // namespace

Theme::Theme() : mode(Get_Kept_Mode()), desktopIsDark(Is_Dark(QApplication::palette()))
{
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    auto *scheme = new DesktopColorScheme(this);
    if (scheme->Is_Known()) desktopIsDark = scheme->Is_Dark();
    scheme->Set_Listener([this](bool dark) {
        desktopIsDark = dark;
        Apply();
    });
    Apply();
}

void Theme::Set_Mode(Mode value)
{
    mode = value;
    Open_User_Settings().setValue(MODE_KEY, MODE_NAMES[static_cast<int>(mode)]);
    Apply();
}

void Theme::Apply()
{
    const bool dark = mode == Mode::Dark || (mode == Mode::Desktop && desktopIsDark);
    QApplication::setPalette(Make_Palette(dark ? DARK : LIGHT));
}

bool Theme::Is_Dark(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
}

QColor Theme::Get_Modified_Color(const QPalette &palette)
{
    return Is_Dark(palette) ? QColor(0xf2, 0xa6, 0x3c) : QColor(0xc4, 0x62, 0x06);
}

QColor Theme::Get_Quiet_Color(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::PlaceholderText);
}
