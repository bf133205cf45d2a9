#pragma once

#include "Code/BindingSource.h"

class ParticleTableModel;
class ParticleTableView;

/// The list behind the grid, over the model that the grid shows.
class DesktopBindingSource final : public BindingSource
{
public:
    explicit DesktopBindingSource(ParticleTableModel &model) : model(model) {}

    void Set_Data_Source(std::shared_ptr<ParticleList> rows) override;
    void Clear() override;
    int Get_Position() const override { return position; }
    std::shared_ptr<ParticleData> Get_Current() const override;
    int Index_Of(const ParticleData *row) const override;
    void Reset_Item(int index) override;

    /// The grid's current row is another one; -1 for none. Raises CurrentChanged.
    void Set_Position(int index);
    /// Raises CurrentChanged for the row that is current already, for those who subscribed since it became so.
    void Announce_Current();
    /// A value of the row was edited in the grid.
    void Item_Edited(int index) { Reset_Item(index); }

private:
    ParticleTableModel &model;
    int position = -1;
    bool isResetting = false; ///< the view moves its current row about, which is nobody's business yet
};

/// The grid as the core sees it.
class DesktopGrid final : public ParticleGrid
{
public:
    DesktopGrid(ParticleTableModel &model, ParticleTableView &view) : model(model), view(view) {}

    std::vector<std::shared_ptr<ParticleData>> Get_Selected_Rows() const override;
    void Refresh() override { Refreshed.Raise(); }

    Event<> Refreshed;

private:
    ParticleTableModel &model;
    ParticleTableView &view;
};
