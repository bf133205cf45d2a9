#include "Desktop/ParticleTableView.h"

#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Desktop/GroupedHeader.h"
#include "Desktop/ParticleCellDelegate.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleRowFilter.h"
#include "Desktop/ParticleTableModel.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>

#include <algorithm>
#include <set>

namespace
{

using Cell = ParticleColumn::Cell;

constexpr int ROW_PADDING = 9;
constexpr int COARSE_STEP = 25;

} // namespace

ParticleTableView::ParticleTableView(ParticleTableModel &model, ParticleRowFilter &rowFilter, QWidget *parent)
    : QTableView(parent), rows(model), filter(rowFilter), delegate(new ParticleCellDelegate(this)),
      widthIsTheUsers(Get_Particle_Columns().size(), false)
{
    setObjectName("particleGrid");
    auto *header = new GroupedHeader(this);
    setHorizontalHeader(header);
    setModel(&filter);
    setItemDelegate(delegate);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setMouseTracking(true);
    setHorizontalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    Set_Row_Height();
    Set_Editing_Enabled(false);
    Show_Default_Columns();
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, this,
            [this, header](const QPoint &position) { Show_Column_Menu(header->mapToGlobal(position)); });
    connect(header, &QHeaderView::sectionClicked, this, [this](int column) { Cycle_Order(column); });
    connect(header, &QHeaderView::sectionResized, this, [this](int column, int, int width) {
        if (!isFitting && width > 0) widthIsTheUsers[static_cast<size_t>(column)] = true;
    });
    connect(header, &QHeaderView::sectionHandleDoubleClicked, this, [this](int column) {
        widthIsTheUsers[static_cast<size_t>(column)] = false;
        Fit_Columns();
    });
}

void ParticleTableView::Set_Row_Height()
{
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + ROW_PADDING);
}

void ParticleTableView::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange) Set_Row_Height();
}

void ParticleTableView::Set_Editing_Enabled(bool enabled)
{
    editingEnabled = enabled;
    setEditTriggers(enabled ? EditKeyPressed | AnyKeyPressed : NoEditTriggers);
}

std::vector<int> ParticleTableView::Get_Selected_Source_Rows() const
{
    // Ranges, and not Qt's list of rows, which asks each row for each of its columns.
    std::vector<int> selected;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row) selected.push_back(row);
    std::sort(selected.begin(), selected.end());
    selected.erase(std::unique(selected.begin(), selected.end()), selected.end());
    for (int &row : selected) row = filter.To_Source(row);
    return selected;
}

int ParticleTableView::Get_Current_Source_Row() const
{
    return currentIndex().isValid() ? filter.To_Source(currentIndex().row()) : -1;
}

void ParticleTableView::Select_Source_Rows(const std::vector<int> &sourceRows)
{
    std::vector<int> shown;
    for (const int row : sourceRows)
        if (filter.From_Source(row) >= 0) shown.push_back(filter.From_Source(row));
    std::sort(shown.begin(), shown.end());
    QItemSelection selection;
    for (size_t first = 0; first < shown.size();) {
        size_t last = first;
        while (last + 1 < shown.size() && shown[last + 1] <= shown[last] + 1) ++last;
        selection.append({filter.index(shown[first], 0), filter.index(shown[last], filter.columnCount() - 1)});
        first = last + 1;
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (shown.empty()) return;
    const int column = std::max(currentIndex().column(), Find_Particle_Column("EmitterName"));
    selectionModel()->setCurrentIndex(filter.index(shown.front(), column), QItemSelectionModel::NoUpdate);
}

void ParticleTableView::Set_Current_Source_Row(int row)
{
    const QModelIndex index = filter.index(filter.From_Source(row), std::max(currentIndex().column(), 0));
    if (index.isValid()) selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
}

void ParticleTableView::Select_Whole_Effects()
{
    std::set<const EmitterData *> effects;
    for (const int row : Get_Selected_Source_Rows()) effects.insert(&rows.Get_Row(row)->Get_EmitterData());
    std::vector<int> layers;
    for (int row = 0; row < rows.Get_Count(); ++row)
        if (effects.contains(&rows.Get_Row(row)->Get_EmitterData())) layers.push_back(row);
    Select_Source_Rows(layers);
}

/// The rows change places: those that are selected and still shown stay so.
void ParticleTableView::Rearrange(const std::function<void()> &change)
{
    const std::vector<int> selected = Get_Selected_Source_Rows();
    const int current = Get_Current_Source_Row();
    isRearranging = true;
    change();
    Select_Source_Rows(selected);
    if (filter.From_Source(current) >= 0) Set_Current_Source_Row(current);
    isRearranging = false;
    if (currentIndex().isValid()) scrollTo(currentIndex());
    if (currentChangedHandler && Get_Current_Source_Row() != current) currentChangedHandler();
    if (selectionChangedHandler) selectionChangedHandler();
}

void ParticleTableView::Set_Filter(const QString &text)
{
    Rearrange([&] { filter.Set_Filter(text); });
}

void ParticleTableView::Cycle_Order(int column)
{
    auto &header = *static_cast<GroupedHeader *>(horizontalHeader());
    const auto [oldColumn, oldOrder] = std::pair(header.Get_Order_Column(), header.Get_Order());
    const bool isSame = column == oldColumn;
    const int newColumn = isSame && oldOrder == Qt::DescendingOrder ? -1 : column;
    const Qt::SortOrder newOrder = isSame && newColumn >= 0 ? Qt::DescendingOrder : Qt::AscendingOrder;
    header.Set_Order(newColumn, newOrder);
    Rearrange([&] { filter.sort(newColumn, newOrder); });
}

bool ParticleTableView::Is_Writable(const QModelIndex &index) const
{
    return editingEnabled && index.isValid() && index.flags() & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable);
}

bool ParticleTableView::Is_Selected(int row) const
{
    return selectionModel()->isSelected(filter.index(row, 0));
}

/// An edit goes to the selection, so what is edited must be part of it.
void ParticleTableView::Take_Current(const QModelIndex &index)
{
    selectionModel()->setCurrentIndex(index, Is_Selected(index.row())
                                                 ? QItemSelectionModel::NoUpdate
                                                 : QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ParticleTableView::mousePressEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool isPlain = event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier;
    // In a row that isn't selected a click selects, and changes nothing yet.
    swallowsRelease = isPlain && Is_Writable(index) && selectionModel()->isSelected(index);
    if (!swallowsRelease) {
        QTableView::mousePressEvent(event);
        return;
    }
    const int x = event->position().toPoint().x();
    const QRect cell = visualRect(index);
    Take_Current(index);
    setFocus(Qt::MouseFocusReason);
    const Cell kind = Get_Particle_Column(index.column()).Kind;
    if (kind == Cell::Check) Toggle(index);
    const QRect track = ParticleCellDelegate::Get_Track(cell, fontMetrics());
    if (kind == Cell::Slider && x >= track.left() - 6 && x <= track.right() + 6) {
        dragged = index;
        Drag_Slider(x);
    }
    if (kind == Cell::Level && ParticleCellDelegate::Get_Level_Arrow(cell).contains(event->position().toPoint())) {
        edit(index);
        if (auto *box = qobject_cast<QComboBox *>(indexWidget(index))) box->showPopup();
    }
}

void ParticleTableView::mouseMoveEvent(QMouseEvent *event)
{
    if (dragged.isValid()) {
        Drag_Slider(event->position().toPoint().x());
        return;
    }
    if (!swallowsRelease) QTableView::mouseMoveEvent(event);
}

void ParticleTableView::mouseReleaseEvent(QMouseEvent *event)
{
    dragged = QPersistentModelIndex();
    if (!std::exchange(swallowsRelease, false)) QTableView::mouseReleaseEvent(event);
}

void ParticleTableView::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || !Is_Writable(index)) {
        QTableView::mouseDoubleClickEvent(event);
        return;
    }
    Take_Current(index);
    if (Get_Particle_Column(index.column()).Kind == Cell::Check)
        Toggle(index);
    else
        edit(index);
}

void ParticleTableView::Drag_Slider(int x)
{
    const int value = ParticleCellDelegate::Get_Thousandths(visualRect(dragged), fontMetrics(), x);
    if (value != dragged.data(Qt::EditRole).toInt()) filter.setData(dragged, value);
}

void ParticleTableView::Step_Slider(int steps)
{
    const QModelIndex index = currentIndex();
    const int wanted = std::clamp(lastStep.Get_Position(index) + steps, 0, THOUSANDTHS);
    Take_Current(index);
    if (filter.setData(index, wanted)) lastStep.Note(index, wanted);
}

void ParticleTableView::Toggle(const QModelIndex &index)
{
    const bool isSet = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    filter.setData(index, isSet ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

void ParticleTableView::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex index = currentIndex();
    const bool isWritable = Is_Writable(index);
    const Cell kind = index.isValid() ? Get_Particle_Column(index.column()).Kind : Cell::Text;
    const int step = event->modifiers() & Qt::ControlModifier ? COARSE_STEP : 1;
    switch (event->key()) {
    case Qt::Key_Space:
        if (spacePressed) spacePressed();
        return;
    case Qt::Key_Plus:
    case Qt::Key_Minus:
        if (!isWritable || kind != Cell::Slider) break;
        Step_Slider(event->key() == Qt::Key_Plus ? step : -step);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        if (!isWritable || state() == EditingState) break; // an editor lets the key through that ends it
        Take_Current(index);
        if (kind == Cell::Check)
            Toggle(index);
        else
            edit(index);
        return;
    default: break;
    }
    if (isWritable && !event->text().isEmpty() && event->text().front().isPrint()) Take_Current(index);
    QTableView::keyPressEvent(event);
}

/// From cell to cell of a selected row, the selection stays: the next value of it is what the user goes to.
QItemSelectionModel::SelectionFlags ParticleTableView::selectionCommand(const QModelIndex &index,
                                                                        const QEvent *event) const
{
    if (event && event->type() == QEvent::KeyPress && index.isValid() && index.row() == currentIndex().row() &&
        Is_Selected(index.row()))
        return QItemSelectionModel::NoUpdate;
    return QTableView::selectionCommand(index, event);
}

void ParticleTableView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    if (!isRearranging && currentChangedHandler) currentChangedHandler();
}

void ParticleTableView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QTableView::selectionChanged(selected, deselected);
    if (!isRearranging && selectionChangedHandler) selectionChangedHandler();
}

void ParticleTableView::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu menu(this);
    for (QAction *action : actions()) menu.addAction(action);
    menu.exec(event->globalPos());
}
