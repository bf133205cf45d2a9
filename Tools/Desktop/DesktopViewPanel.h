#pragma once

#include "Code/SceneViewForm.h"

#include <QWidget>

class DesktopApplication;
class IFlareTrimUIManager;

/// The panel that the preview's device draws into: a system window of its own, which Qt leaves alone. Positions and
/// sizes are the device's pixels.
class DesktopViewPanel final : public QWidget, public ViewPanel
{
public:
    DesktopViewPanel(DesktopApplication &application, IFlareTrimUIManager &manager, QWidget *parent);

    void *Get_Handle() const override;
    Rectangle Get_Client_Rectangle() const override { return {0, 0, Get_Width(), Get_Height()}; }
    int Get_Width() const override { return To_Pixels(width()); }
    int Get_Height() const override { return To_Pixels(height()); }
    void Invalidate() override { update(); }
    void Focus() override { setFocus(Qt::MouseFocusReason); }
    Point Screen_To_Client(Point screen) const override;

    QPaintEngine *paintEngine() const override { return nullptr; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override { mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    using MouseOperation = void (IFlareTrimUIManager::*)(const void *sender, const MouseEventArgs &args);

    int To_Pixels(double length) const;
    void Report(MouseOperation operation, const QMouseEvent &event);

    DesktopApplication &application;
    IFlareTrimUIManager &manager;
};
