#include "Desktop/DesktopViewPanel.h"

#include "Code/IFlareTrimUIManager.h"
#include "Desktop/DesktopApplication.h"

#include <QMouseEvent>
#include <QPaintEvent>

DesktopViewPanel::DesktopViewPanel(DesktopApplication &owner, IFlareTrimUIManager &uiManager, QWidget *parent)
    : QWidget(parent), application(owner), manager(uiManager)
{
    setObjectName("viewPanel");
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_PaintOnScreen);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(160, 120);
}

void *DesktopViewPanel::Get_Handle() const
{
    return reinterpret_cast<void *>(winId());
}

int DesktopViewPanel::To_Pixels(double length) const
{
    return qRound(length * devicePixelRatioF());
}

Point DesktopViewPanel::Screen_To_Client(Point screen) const
{
    const QPoint position = mapFromGlobal(QPoint(screen.X, screen.Y));
    return {To_Pixels(position.x()), To_Pixels(position.y())};
}

void DesktopViewPanel::paintEvent(QPaintEvent *event)
{
    const QRect clip = event->rect();
    const PaintEventArgs args{{clip.x(), clip.y(), clip.width(), clip.height()}};
    application.Guard([&] { manager.View_Panel_Paint(this, args); });
}

void DesktopViewPanel::resizeEvent(QResizeEvent *)
{
    application.Guard([&] { manager.View_Panel_Resize(this, EventArgs()); });
}

void DesktopViewPanel::Report(MouseOperation operation, const QMouseEvent &event)
{
    MouseEventArgs args;
    if (event.button() == Qt::LeftButton) args.Button = MOUSE_LEFT;
    if (event.button() == Qt::RightButton) args.Button = MOUSE_RIGHT;
    args.X = To_Pixels(event.position().x());
    args.Y = To_Pixels(event.position().y());
    application.Guard([&] { (manager.*operation)(this, args); });
}

void DesktopViewPanel::mousePressEvent(QMouseEvent *event)
{
    Report(&IFlareTrimUIManager::View_Panel_Mouse_Down, *event);
}

void DesktopViewPanel::mouseReleaseEvent(QMouseEvent *event)
{
    Report(&IFlareTrimUIManager::View_Panel_Mouse_Up, *event);
}

void DesktopViewPanel::mouseMoveEvent(QMouseEvent *event)
{
    Report(&IFlareTrimUIManager::View_Panel_Mouse_Move, *event);
}

void DesktopViewPanel::wheelEvent(QWheelEvent *event)
{
    MouseEventArgs args;
    args.X = To_Pixels(event->position().x());
    args.Y = To_Pixels(event->position().y());
    args.Delta = event->angleDelta().y();
    event->accept();
    application.Guard([&] { manager.View_Panel_Mouse_Wheel(this, args); });
}
