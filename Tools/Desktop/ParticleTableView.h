#pragma once

#include "Desktop/LastStep.h"

#include <QTableView>
#include <functional>
#include <vector>

class ParticleCellDelegate;
class ParticleRowFilter;
class ParticleTableModel;
class QMenu;

/// The grid's widget. A click on a value of a selected row edits the selection and keeps it; a click on a name selects
/// that row alone, as in any table.
class ParticleTableView final : public QTableView
{
public:
    using Handler = std::function<void()>;

    ParticleTableView(ParticleTableModel &model, ParticleRowFilter &filter, QWidget *parent);

    /// In the order of the grid.
    std::vector<int> Get_Selected_Source_Rows() const;
    int Get_Current_Source_Row() const; ///< -1 when there is none
    /// Those that the filter hides stay out. The first one becomes the current row.
    void Select_Source_Rows(const std::vector<int> &rows);
    /// Among the selected ones; nothing for one that the filter hides.
    void Set_Current_Source_Row(int row);
    /// All layers of the effects of the selected ones.
    void Select_Whole_Effects();
    /// Shows the rows that hold the words, and keeps what is selected among them.
    void Set_Filter(const QString &text);
    /// A rising order, a falling one, and the scan's again.
    void Cycle_Order(int column);
    /// Widths by what the columns hold, but for those that the user has set.
    void Fit_Columns();
    void Set_Editing_Enabled(bool enabled);

    /// What the user chose of the columns, for the next run.
    QByteArray Save_Columns() const;
    void Restore_Columns(const QByteArray &state);
    void Show_All_Columns();
    /// A check mark for each column.
    void Fill_Column_Menu(QMenu &menu);

    void Set_Current_Changed(Handler handler) { currentChangedHandler = std::move(handler); }
    void Set_Selection_Changed(Handler handler) { selectionChangedHandler = std::move(handler); }
    void Set_Space_Pressed(Handler handler) { spacePressed = std::move(handler); }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index, const QEvent *event) const override;
    void changeEvent(QEvent *event) override;

private:
    void Hide_Column(int column, bool isHidden);
    void Show_Default_Columns();
    void Set_Row_Height();
    bool Is_Writable(const QModelIndex &index) const;
    bool Is_Selected(int row) const;
    void Take_Current(const QModelIndex &index);
    void Drag_Slider(int x);
    void Step_Slider(int steps);
    void Toggle(const QModelIndex &index);
    void Rearrange(const std::function<void()> &change);
    int Get_Text_Width(int column) const;
    int Get_Group_Width(int column) const;
    void Show_Column_Menu(const QPoint &position);

    ParticleTableModel &rows;
    ParticleRowFilter &filter;
    ParticleCellDelegate *delegate;
    Handler currentChangedHandler;
    Handler selectionChangedHandler;
    Handler spacePressed;
    LastStep lastStep;
    QPersistentModelIndex dragged; ///< the slider that the mouse holds
    bool swallowsRelease = false;  ///< of a press that the grid took for itself
    bool editingEnabled = false;
    bool isRearranging = false;
    std::vector<bool> widthIsTheUsers; ///< by column
    bool isFitting = false;
};
