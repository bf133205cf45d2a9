#include "Desktop/ThemedIcon.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

namespace
{

/// What the drawings have for their one colour.
constexpr const char *INK = "#000000";

class ThemedIconEngine final : public QIconEngine
{
public:
    explicit ThemedIconEngine(QByteArray source) : Source(std::move(source)) {}

    void paint(QPainter *painter, const QRect &rectangle, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        QByteArray drawing = Source;
        drawing.replace(INK, QApplication::palette().color(group, role).name().toLatin1());
        QSvgRenderer(drawing).render(painter, rectangle);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return result;
    }

    QIconEngine *clone() const override { return new ThemedIconEngine(Source); }

private:
    QByteArray Source;
};

} // namespace

QIcon Get_Themed_Icon(const QString &name)
{
    QFile file(":/icons/" + name + ".svg");
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QIcon(new ThemedIconEngine(file.readAll()));
}

QIcon Get_Program_Icon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        QSvgRenderer(QString(":/icons/flaretrim.svg")).render(&painter);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}
