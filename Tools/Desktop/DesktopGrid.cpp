#include "Desktop/DesktopGrid.h"

#include "Desktop/ParticleTableModel.h"
#include "Desktop/ParticleTableView.h"

void DesktopBindingSource::Set_Data_Source(std::shared_ptr<ParticleList> rows)
{
    isResetting = true;
    model.Set_Rows(std::move(rows));
    isResetting = false;
    position = model.Get_Count() > 0 ? 0 : -1;
    ListChanged.Raise(this, {ListChangedType::Reset, -1});
    CurrentChanged.Raise(this, EventArgs());
}

void DesktopBindingSource::Clear()
{
    isResetting = true;
    model.Clear_Rows();
    isResetting = false;
    position = -1;
    ListChanged.Raise(this, {ListChangedType::Reset, -1});
    CurrentChanged.Raise(this, EventArgs());
}

std::shared_ptr<ParticleData> DesktopBindingSource::Get_Current() const
{
    return model.Share_Row(position);
}

int DesktopBindingSource::Index_Of(const ParticleData *row) const
{
    return model.Index_Of(row);
}

void DesktopBindingSource::Reset_Item(int index)
{
    model.Touch_Row(index);
    ListChanged.Raise(this, {ListChangedType::ItemChanged, index});
}

void DesktopBindingSource::Set_Position(int index)
{
    if (isResetting || index == position) return;
    position = index;
    CurrentChanged.Raise(this, EventArgs());
}

void DesktopBindingSource::Announce_Current()
{
    if (position >= 0) CurrentChanged.Raise(this, EventArgs());
}

std::vector<std::shared_ptr<ParticleData>> DesktopGrid::Get_Selected_Rows() const
{
    std::vector<std::shared_ptr<ParticleData>> selected;
    const std::vector<int> rows = view.Get_Selected_Source_Rows();
    selected.reserve(rows.size());
    for (const int row : rows) selected.push_back(model.Share_Row(row));
    return selected;
}
