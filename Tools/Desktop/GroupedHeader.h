#pragma once

#include <QHeaderView>

/// The heading of the grid in two lines: above, the group that neighbouring columns share, below, each column's own.
class GroupedHeader final : public QHeaderView
{
public:
    explicit GroupedHeader(QWidget *parent);

    QSize sizeHint() const override;
    /// The column that the rows are ordered by; -1 for none.
    void Set_Order(int column, Qt::SortOrder order);
    int Get_Order_Column() const { return orderColumn; }
    Qt::SortOrder Get_Order() const { return order; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void paintSection(QPainter *painter, const QRect &rect, int column) const override;

private:
    int Get_Line_Height() const;
    void Paint_Groups();

    int orderColumn = -1;
    Qt::SortOrder order = Qt::AscendingOrder;
};
