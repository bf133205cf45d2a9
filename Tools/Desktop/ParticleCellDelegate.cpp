#include "Desktop/ParticleCellDelegate.h"

#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"
#include "Desktop/LevelNames.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleRowFilter.h"
#include "Desktop/ParticleTableModel.h"
#include "Desktop/Theme.h"

#include <QApplication>
#include <QComboBox>
#include <QDoubleValidator>
#include <QLineEdit>
#include <QPainter>
#include <QSpinBox>

#include <algorithm>

namespace
{

using Cell = ParticleColumn::Cell;

constexpr int MARGIN = 6;
constexpr int THUMB_RADIUS = 4;
constexpr const char *TOUCHED = "touched";

const ParticleColumn &Get_Column(const QModelIndex &index)
{
    return Get_Particle_Column(index.column());
}

/// The row of an index of the filter.
const ParticleData &Get_Row(const QModelIndex &index, int offset = 0)
{
    const auto &filter = *static_cast<const ParticleRowFilter *>(index.model());
    const auto &model = *static_cast<const ParticleTableModel *>(filter.sourceModel());
    return *model.Get_Row(filter.To_Source(index.row() + offset));
}

bool Is_First_Of_Effect(const QModelIndex &index)
{
    return index.row() > 0 && &Get_Row(index).Get_EmitterData() != &Get_Row(index, -1).Get_EmitterData();
}

QPalette::ColorGroup Get_Group(const QStyleOptionViewItem &option)
{
    if (!(option.state & QStyle::State_Enabled)) return QPalette::Disabled;
    return option.state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive;
}

QColor Get_Text_Color(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const bool selected = option.state & QStyle::State_Selected;
    const ParticleColumn &column = Get_Column(index);
    const bool isRead = column.Is_Writable() && !(index.flags() & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable));
    QColor color = option.palette.color(Get_Group(option), selected ? QPalette::HighlightedText : QPalette::Text);
    const bool marksChanges = column.Kind == Cell::Mark || QLatin1String(column.PropertyName) == "EmitterName";
    if (marksChanges && Get_Row(index).Get_Modified())
        return selected ? color : Theme::Get_Modified_Color(option.palette);
    if (!isRead && column.Kind != Cell::Flag) return color;
    color.setAlphaF(selected ? 0.6f : 0.45f);
    return color;
}

void Paint_Slider(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index, const QColor &text)
{
    const QRect track = ParticleCellDelegate::Get_Track(option.rect, option.fontMetrics);
    const int value = std::clamp(index.data(Qt::EditRole).toInt(), 0, THOUSANDTHS);
    const bool selected = option.state & QStyle::State_Selected;
    const int thumb = track.left() + track.width() * value / THOUSANDTHS;
    QColor groove = text;
    groove.setAlphaF(0.22f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(groove);
    painter.drawRoundedRect(QRectF(track.left(), track.center().y() - 1, track.width(), 3), 1.5, 1.5);
    if (!(index.flags() & Qt::ItemIsEditable)) return;
    const QColor accent = option.palette.color(selected ? QPalette::HighlightedText : QPalette::Link);
    painter.setBrush(accent);
    painter.drawRoundedRect(QRectF(track.left(), track.center().y() - 1, thumb - track.left(), 3), 1.5, 1.5);
    painter.drawEllipse(QPointF(thumb, track.center().y() + 0.5), THUMB_RADIUS, THUMB_RADIUS);
}

void Paint_Check(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    QStyleOptionButton box;
    box.palette = option.palette;
    box.state = index.flags() & Qt::ItemIsUserCheckable ? QStyle::State_Enabled : QStyle::State_None;
    box.state |= index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? QStyle::State_On : QStyle::State_Off;
    const QStyle &style = *QApplication::style();
    const QSize size(style.pixelMetric(QStyle::PM_IndicatorWidth), style.pixelMetric(QStyle::PM_IndicatorHeight));
    box.rect = QStyle::alignedRect(option.direction, Qt::AlignCenter, size, option.rect);
    style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, &painter);
}

void Paint_Arrow(QPainter &painter, const QRect &place, const QColor &color)
{
    const QPointF centre = QRectF(place).center();
    painter.setPen(QPen(color, 1.4));
    painter.drawPolyline(
        QPolygonF({centre + QPointF(-3.5, -1.5), centre + QPointF(0, 2), centre + QPointF(3.5, -1.5)}));
}

/// A spin box that is as quick with the keyboard as a text, and remembers that it was used.
QWidget *Make_Thousandths_Editor(QWidget *parent)
{
    auto *box = new QSpinBox(parent);
    box->setFrame(false);
    box->setRange(0, THOUSANDTHS);
    box->setAlignment(Qt::AlignRight);
    QObject::connect(box, &QSpinBox::textChanged, box, [box] { box->setProperty(TOUCHED, true); });
    return box;
}

QWidget *Make_Number_Editor(QWidget *parent)
{
    auto *line = new QLineEdit(parent);
    line->setFrame(false);
    line->setAlignment(Qt::AlignRight);
    return line;
}

QWidget *Make_Level_Editor(QWidget *parent, const ParticleCellDelegate &delegate)
{
    auto *box = new QComboBox(parent);
    box->setFrame(false);
    box->addItems(Get_Level_Names());
    auto &mutableDelegate = const_cast<ParticleCellDelegate &>(delegate);
    QObject::connect(box, &QComboBox::activated, box, [box, &mutableDelegate] {
        box->setProperty(TOUCHED, true);
        Q_EMIT mutableDelegate.commitData(box);
        Q_EMIT mutableDelegate.closeEditor(box);
    });
    return box;
}

} // namespace

QRect ParticleCellDelegate::Get_Track(const QRect &cell, const QFontMetrics &metrics)
{
    const int number = metrics.horizontalAdvance("0000") + MARGIN;
    return cell.adjusted(MARGIN + THUMB_RADIUS, 0, -number - MARGIN - THUMB_RADIUS, 0);
}

int ParticleCellDelegate::Get_Thousandths(const QRect &cell, const QFontMetrics &metrics, int x)
{
    const QRect track = Get_Track(cell, metrics);
    const int width = std::max(track.width(), 1);
    return std::clamp(((x - track.left()) * THOUSANDTHS + width / 2) / width, 0, THOUSANDTHS);
}

QRect ParticleCellDelegate::Get_Level_Arrow(const QRect &cell)
{
    return cell.adjusted(cell.width() - 20, 0, 0, 0);
}

void ParticleCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &given, const QModelIndex &index) const
{
    QStyleOptionViewItem option = given;
    initStyleOption(&option, index);
    const ParticleColumn &column = Get_Column(index);
    const QColor text = Get_Text_Color(option, index);
    QApplication::style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (column.Kind == Cell::Check) Paint_Check(*painter, option, index);
    if (column.Kind == Cell::Slider) Paint_Slider(*painter, option, index, text);
    if (column.Kind == Cell::Level && index.flags() & Qt::ItemIsEditable)
        Paint_Arrow(*painter, Get_Level_Arrow(option.rect), text);
    painter->setPen(text);
    const QRect place =
        option.rect.adjusted(column.Kind == Cell::Mark ? 0 : MARGIN, 0, column.Kind == Cell::Mark ? 0 : -MARGIN, 0);
    if (!option.text.isEmpty())
        painter->drawText(place, static_cast<int>(option.displayAlignment),
                          option.fontMetrics.elidedText(option.text, Qt::ElideRight, place.width()));
    painter->setRenderHint(QPainter::Antialiasing, false);
    if (Is_First_Of_Effect(index)) {
        painter->setPen(option.palette.color(QPalette::Mid));
        painter->drawLine(option.rect.topLeft(), option.rect.topRight());
    }
    if (option.state & QStyle::State_HasFocus) {
        painter->setPen(option.palette.color(option.state & QStyle::State_Selected ? QPalette::HighlightedText
                                                                                   : QPalette::Highlight));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    }
    painter->restore();
}

QWidget *ParticleCellDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                            const QModelIndex &index) const
{
    QWidget *editor = nullptr;
    switch (Get_Column(index).Kind) {
    case Cell::Level: editor = Make_Level_Editor(parent, *this); break;
    case Cell::Slider: editor = Make_Thousandths_Editor(parent); break;
    case Cell::Number: editor = Make_Number_Editor(parent); break;
    default: return nullptr;
    }
    editor->setAutoFillBackground(true);
    editor->setObjectName("cellEditor");
    return editor;
}

void ParticleCellDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    if (editor->property(TOUCHED).toBool()) return; // a tick of the preview must not undo what is being typed
    const QString text = index.data(Qt::EditRole).toString();
    if (auto *box = qobject_cast<QComboBox *>(editor)) box->setCurrentText(text);
    if (auto *spin = qobject_cast<QSpinBox *>(editor)) {
        const QSignalBlocker blocker(spin);
        spin->setValue(text.toInt());
        spin->selectAll();
    }
    auto *line = qobject_cast<QLineEdit *>(editor);
    if (!line || line->isModified()) return;
    line->setText(text);
    line->selectAll();
}

void ParticleCellDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    if (auto *line = qobject_cast<QLineEdit *>(editor)) {
        if (line->isModified()) model->setData(index, line->text());
        return;
    }
    auto *spin = qobject_cast<QSpinBox *>(editor);
    if (spin) spin->interpretText();
    if (!editor->property(TOUCHED).toBool()) return;
    if (spin) model->setData(index, spin->value());
    if (auto *box = qobject_cast<QComboBox *>(editor)) model->setData(index, box->currentText());
}

void ParticleCellDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                                const QModelIndex &) const
{
    editor->setGeometry(option.rect);
}
