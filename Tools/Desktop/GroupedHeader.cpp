#include "Desktop/GroupedHeader.h"

#include "Desktop/ParticleColumns.h"
#include "Desktop/Theme.h"

#include <QPainter>

#include <cstring>

namespace
{

constexpr int MARGIN = 6;

bool Are_In_One_Group(int first, int second)
{
    return std::strcmp(Get_Particle_Column(first).Group, Get_Particle_Column(second).Group) == 0;
}

} // namespace

GroupedHeader::GroupedHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(true);
    setHighlightSections(false);
    setMinimumSectionSize(24);
    setTextElideMode(Qt::ElideRight);
    // A group's heading runs over its columns, so that a new width of one moves the whole of it.
    connect(this, &QHeaderView::sectionResized, this, [this] { viewport()->update(); });
}

int GroupedHeader::Get_Line_Height() const
{
    return fontMetrics().height() + 6;
}

QSize GroupedHeader::sizeHint() const
{
    return {QHeaderView::sizeHint().width(), 2 * Get_Line_Height() + 1};
}

void GroupedHeader::Set_Order(int column, Qt::SortOrder value)
{
    orderColumn = column;
    order = value;
    viewport()->update();
}

void GroupedHeader::paintSection(QPainter *painter, const QRect &rect, int column) const
{
    const QRect place = rect.adjusted(0, Get_Line_Height(), 0, 0);
    painter->fillRect(rect, palette().color(QPalette::Button));
    painter->setPen(palette().color(QPalette::Mid));
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    painter->drawLine(place.topRight(), place.bottomRight());
    painter->setPen(Theme::Get_Quiet_Color(palette()));
    QString title = Get_Particle_Column(column).Title;
    if (column == orderColumn) title += order == Qt::AscendingOrder ? QString(" \u25b4") : QString(" \u25be");
    painter->drawText(place.adjusted(MARGIN, 0, -MARGIN, 0), Qt::AlignLeft | Qt::AlignVCenter, title);
}

void GroupedHeader::paintEvent(QPaintEvent *event)
{
    QHeaderView::paintEvent(event);
    Paint_Groups();
}

void GroupedHeader::Paint_Groups()
{
    QPainter painter(viewport());
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    painter.setFont(bold);
    for (int first = 0; first < count();) {
        int last = first;
        while (last + 1 < count() && Are_In_One_Group(first, last + 1)) ++last;
        int left = 0, width = 0;
        for (int column = last; column >= first; --column) {
            if (isSectionHidden(column)) continue;
            left = sectionViewportPosition(column);
            width += sectionSize(column);
        }
        if (width > 0) {
            const QRect place(left, 0, width, Get_Line_Height());
            painter.setPen(palette().color(QPalette::Mid));
            painter.drawLine(place.topRight(), place.bottomRight());
            painter.setPen(palette().color(QPalette::ButtonText));
            painter.drawText(
                place.adjusted(MARGIN, 2, -MARGIN, 0), Qt::AlignLeft | Qt::AlignVCenter,
                painter.fontMetrics().elidedText(Get_Particle_Column(first).Group, Qt::ElideRight, width - 2 * MARGIN));
        }
        first = last + 1;
    }
}
