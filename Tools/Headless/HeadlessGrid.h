#pragma once

#include "Code/BindingSource.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The list behind the grid as a plain object.
class HeadlessBindingSource final : public BindingSource
{
public:
    void Set_Data_Source(std::shared_ptr<ParticleList> rows) override;
    void Clear() override;
    int Get_Position() const override { return position; }
    std::shared_ptr<ParticleData> Get_Current() const override { return Get_Row(position); }
    int Index_Of(const ParticleData *row) const override;
    void Reset_Item(int index) override;

    /// What a click on a row does. Raises CurrentChanged when it is another one; an index out of range does nothing.
    void Set_Position(int index);
    int Get_Count() const { return rows ? static_cast<int>(rows->size()) : 0; }
    /// Null for an index out of range.
    std::shared_ptr<ParticleData> Get_Row(int index) const;

private:
    void Raise_Reset();

    std::shared_ptr<ParticleList> rows;
    int position = -1;
};

/// The grid as a plain object: a selection by row indices, edits by property name, and a text of what it shows.
class HeadlessGrid final : public ParticleGrid
{
public:
    explicit HeadlessGrid(HeadlessBindingSource &source);
    HeadlessGrid(const HeadlessGrid &) = delete;
    HeadlessGrid &operator=(const HeadlessGrid &) = delete;
    ~HeadlessGrid() override;

    std::vector<std::shared_ptr<ParticleData>> Get_Selected_Rows() const override;
    void Refresh() override { ++refreshCount; }

    /// Selects exactly these rows, in the grid's order whatever the order given; those out of range are left out. The
    /// first one becomes the current row.
    void Select_Rows(std::vector<int> indices);
    void Select_All();
    const std::vector<int> &Get_Selection() const { return selection; }
    int Get_Refresh_Count() const { return refreshCount; }

    /// Writes a property of the current row and reports the change, as the bound controls do. False when there is no
    /// current row, or the property is unknown or only read, or the text isn't of its kind.
    bool Edit_Current(std::string_view property, std::string_view text);

    /// The names that `Format` shows when it isn't told: all twenty.
    static std::vector<std::string> All_Columns();
    /// The rows as an aligned table with a line of headings; numbers stand to the right. Selected rows bear a `>`.
    /// Unknown columns are left out.
    std::string Format(const std::vector<std::string> &columns = All_Columns()) const;

private:
    void List_Changed(Sender sender, const ListChangedEventArgs &args);

    HeadlessBindingSource &source;
    std::vector<int> selection;
    int refreshCount = 0;
};
