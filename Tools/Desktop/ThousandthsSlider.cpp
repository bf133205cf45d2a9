#include "Desktop/ThousandthsSlider.h"

#include "Desktop/ParticleColumns.h"

#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>

namespace
{

constexpr int RADIUS = 6;
constexpr int PAGE = 50;

} // namespace

ThousandthsSlider::ThousandthsSlider(QWidget *parent) : QSlider(Qt::Horizontal, parent)
{
    setRange(0, THOUSANDTHS);
    setSingleStep(1);
    setPageStep(PAGE);
    setFocusPolicy(Qt::StrongFocus);
}

void ThousandthsSlider::Show_Value(int thousandths)
{
    const QSignalBlocker blocker(this);
    hasBand = false;
    setValue(thousandths);
    update();
}

void ThousandthsSlider::Show_Band(int least, int greatest, int thousandths)
{
    Show_Value(thousandths);
    hasBand = true;
    bandLeast = std::clamp(least, 0, THOUSANDTHS);
    bandGreatest = std::clamp(greatest, 0, THOUSANDTHS);
}

QSize ThousandthsSlider::sizeHint() const
{
    return {90, 2 * RADIUS + 8};
}

int ThousandthsSlider::Get_X(int thousandths) const
{
    return RADIUS + 2 + (width() - 2 * RADIUS - 4) * thousandths / THOUSANDTHS;
}

void ThousandthsSlider::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double middle = height() / 2.0;
    const auto line = [&](int from, int to, const QColor &color) {
        painter.setPen(QPen(color, 4, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(Get_X(from), middle), QPointF(Get_X(to), middle));
    };
    QColor groove = palette().color(QPalette::Text);
    groove.setAlphaF(isEnabled() ? 0.22f : 0.12f);
    line(0, THOUSANDTHS, groove);
    if (!isEnabled()) return;
    const QColor accent = palette().color(QPalette::Active, QPalette::Link);
    if (hasBand) {
        QColor band = accent;
        band.setAlphaF(0.55f);
        line(bandLeast, bandGreatest, band);
    } else {
        line(0, value(), accent);
        painter.setPen(QPen(palette().color(QPalette::Window), 2));
        painter.setBrush(accent);
        painter.drawEllipse(QPointF(Get_X(value()), middle), RADIUS, RADIUS);
    }
    if (!hasFocus()) return;
    painter.setPen(QPen(accent, 1, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void ThousandthsSlider::Take_Mouse(int x)
{
    const int length = std::max(width() - 2 * RADIUS - 4, 1);
    const int wanted = std::clamp(((x - RADIUS - 2) * THOUSANDTHS + length / 2) / length, 0, THOUSANDTHS);
    // Where values differ, the one that the slider happens to stand at is a choice as well.
    if (hasBand && wanted == value()) Q_EMIT valueChanged(wanted);
    setValue(wanted);
}

void ThousandthsSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) return;
    setSliderDown(true);
    Take_Mouse(event->position().toPoint().x());
}

void ThousandthsSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown()) Take_Mouse(event->position().toPoint().x());
}

void ThousandthsSlider::mouseReleaseEvent(QMouseEvent *)
{
    setSliderDown(false);
}

void ThousandthsSlider::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
