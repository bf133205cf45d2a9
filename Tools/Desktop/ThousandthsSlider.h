#pragma once

#include <QSlider>

/// A slider from 0 to 1000 that looks like those in the grid, and shows a band where several values differ.
class ThousandthsSlider final : public QSlider
{
public:
    explicit ThousandthsSlider(QWidget *parent);

    /// Shows one value without telling anybody.
    void Show_Value(int thousandths);
    /// Shows the band; the thumb comes with the user's first move, which starts at `thousandths`.
    void Show_Band(int least, int greatest, int thousandths);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    /// A page that is scrolled must not change what lies under the mouse.
    void wheelEvent(QWheelEvent *event) override;

private:
    int Get_X(int thousandths) const;
    void Take_Mouse(int x);

    bool hasBand = false;
    int bandLeast = 0;
    int bandGreatest = 0;
};
