#pragma once

#include <QStyledItemDelegate>

class QPalette;

/// Draws the cells of the grid, sliders with them, and makes their editors.
class ParticleCellDelegate final : public QStyledItemDelegate
{
public:
    explicit ParticleCellDelegate(QObject *parent) : QStyledItemDelegate(parent) {}

    /// Where the slider of a cell runs: its thumb's centre goes from the left edge to the right one.
    static QRect Get_Track(const QRect &cell, const QFontMetrics &metrics);
    /// 0 to 1000, for a mouse at `x`.
    static int Get_Thousandths(const QRect &cell, const QFontMetrics &metrics, int x);
    static QRect Get_Level_Arrow(const QRect &cell);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    /// Only what the user has touched is written.
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
};
