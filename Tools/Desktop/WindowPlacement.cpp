#include "Desktop/WindowPlacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace
{

/// What of the title must be on a screen.
constexpr int TITLE_HEIGHT = 24;
constexpr int TITLE_WIDTH = 80;
constexpr int SMALLEST = 200;
constexpr int FARTHEST = 1 << 20;

bool Is_Within_Reach(const QRect &title)
{
    const auto screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&title](const QScreen *screen) {
        const QRect seen = screen->availableGeometry().intersected(title);
        return seen.width() >= TITLE_WIDTH && seen.height() >= TITLE_HEIGHT / 2;
    });
}

} // namespace

Point WindowPlacement::Get_Location() const
{
    if (isRestored) return restoredLocation;
    return {window.pos().x(), window.pos().y()};
}

void WindowPlacement::Set_Location(Point location)
{
    isRestored = false;
    // Farther out no desktop has a screen, and sums of coordinates don't overflow.
    window.move(std::clamp(location.X, -FARTHEST, FARTHEST), std::clamp(location.Y, -FARTHEST, FARTHEST));
    Keep_On_Screen();
    givenLocation = {window.pos().x(), window.pos().y()};
}

Size WindowPlacement::Get_Size() const
{
    if (isRestored) return restoredSize;
    return {window.width(), window.height()};
}

void WindowPlacement::Set_Size(Size size)
{
    if (size.Width <= 0 || size.Height <= 0) return;
    isRestored = false;
    window.resize(std::max(size.Width, SMALLEST), std::max(size.Height, SMALLEST));
    Keep_On_Screen();
}

FormWindowState WindowPlacement::Get_State() const
{
    if (window.isMinimized()) return FormWindowState::Minimized;
    return window.isMaximized() ? FormWindowState::Maximized : FormWindowState::Normal;
}

void WindowPlacement::Set_State(FormWindowState state)
{
    if (state == Get_State()) return;
    isRestored = state == FormWindowState::Normal && window.isMaximized();
    if (isRestored) {
        const QRect normal = window.normalGeometry();
        restoredLocation = {normal.x(), normal.y()};
        // Of a window that was maximised from its first showing on, Qt still has what was given, without a frame.
        if (restoredLocation != givenLocation) {
            const QPoint frame = window.geometry().topLeft() - window.pos();
            restoredLocation = {normal.x() - frame.x(), normal.y() - frame.y()};
        }
        restoredSize = {normal.width(), normal.height()};
    }
    const Qt::WindowStates others = window.windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized);
    switch (state) {
    case FormWindowState::Minimized: window.setWindowState(others | Qt::WindowMinimized); break;
    case FormWindowState::Maximized: window.setWindowState(others | Qt::WindowMaximized); break;
    case FormWindowState::Normal: window.setWindowState(others); break;
    }
}

void WindowPlacement::Keep_On_Screen()
{
    const QScreen *screen = QGuiApplication::screenAt(window.geometry().center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    const QRect available = screen->availableGeometry();
    const QSize fitting = window.size().boundedTo(available.size());
    if (fitting != window.size()) window.resize(fitting);
    if (Is_Within_Reach(QRect(window.pos(), QSize(window.width(), TITLE_HEIGHT)))) return;
    const QPoint corner = available.topLeft();
    window.move(std::clamp(window.pos().x(), corner.x(), corner.x() + available.width() - fitting.width()),
                std::clamp(window.pos().y(), corner.y(), corner.y() + available.height() - fitting.height()));
}
