#include "Headless/HeadlessGrid.h"

#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"

#include <algorithm>

void HeadlessBindingSource::Set_Data_Source(std::shared_ptr<ParticleList> list)
{
    rows = std::move(list);
    Raise_Reset();
}

void HeadlessBindingSource::Clear()
{
    if (rows) rows->clear();
    Raise_Reset();
}

void HeadlessBindingSource::Raise_Reset()
{
    position = Get_Count() > 0 ? 0 : -1;
    ListChanged.Raise(this, {ListChangedType::Reset, -1});
    CurrentChanged.Raise(this, EventArgs());
}

int HeadlessBindingSource::Index_Of(const ParticleData *row) const
{
    for (int index = 0; index < Get_Count(); ++index)
        if ((*rows)[index].get() == row) return index;
    return -1;
}

void HeadlessBindingSource::Reset_Item(int index)
{
    ListChanged.Raise(this, {ListChangedType::ItemChanged, index});
}

void HeadlessBindingSource::Set_Position(int index)
{
    if (index < 0 || index >= Get_Count() || index == position) return;
    position = index;
    CurrentChanged.Raise(this, EventArgs());
}

std::shared_ptr<ParticleData> HeadlessBindingSource::Get_Row(int index) const
{
    return index >= 0 && index < Get_Count() ? (*rows)[index] : nullptr;
}

HeadlessGrid::HeadlessGrid(HeadlessBindingSource &bindingSource) : source(bindingSource)
{
    source.ListChanged.Subscribe<&HeadlessGrid::List_Changed>(this);
}

HeadlessGrid::~HeadlessGrid()
{
    source.ListChanged.Unsubscribe<&HeadlessGrid::List_Changed>(this);
}

void HeadlessGrid::List_Changed(Sender, const ListChangedEventArgs &args)
{
    if (args.Type != ListChangedType::Reset) return;
    selection.clear();
    if (source.Get_Count() > 0) selection.push_back(0);
}

std::vector<std::shared_ptr<ParticleData>> HeadlessGrid::Get_Selected_Rows() const
{
    std::vector<std::shared_ptr<ParticleData>> selected;
    for (const int index : selection) selected.push_back(source.Get_Row(index));
    return selected;
}

void HeadlessGrid::Select_Rows(std::vector<int> indices)
{
    std::erase_if(indices, [this](int index) { return index < 0 || index >= source.Get_Count(); });
    std::sort(indices.begin(), indices.end());
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    selection = std::move(indices);
    if (!selection.empty()) source.Set_Position(selection.front());
}

void HeadlessGrid::Select_All()
{
    std::vector<int> indices(source.Get_Count());
    for (size_t index = 0; index < indices.size(); ++index) indices[index] = static_cast<int>(index);
    Select_Rows(std::move(indices));
}

bool HeadlessGrid::Edit_Current(std::string_view name, std::string_view text)
{
    const std::shared_ptr<ParticleData> row = source.Get_Current();
    const ParticleProperty *property = Find_Particle_Property(name);
    if (!row || !property || !property->Set || !property->Set(*row, text)) return false;
    source.Reset_Item(source.Get_Position());
    return true;
}

std::vector<std::string> HeadlessGrid::All_Columns()
{
    std::vector<std::string> names;
    for (const ParticleProperty &property : Get_Particle_Properties()) names.emplace_back(property.Name);
    return names;
}

namespace
{

/// Characters of a UTF-8 text, as a terminal with one cell a character shows it.
size_t Get_Width(std::string_view text)
{
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

struct Column
{
    const ParticleProperty *property;
    std::vector<std::string> cells; ///< the heading first
    size_t width = 0;

    bool Is_Number() const
    {
        return property->ValueKind == ParticleProperty::Kind::Float ||
               property->ValueKind == ParticleProperty::Kind::Integer;
    }
    void Add(std::string cell)
    {
        width = std::max(width, Get_Width(cell));
        cells.push_back(std::move(cell));
    }
};

void Append_Line(std::string &text, char mark, const std::vector<Column> &columns, size_t line)
{
    text += mark;
    for (const Column &column : columns) {
        const std::string &cell = column.cells[line];
        const std::string padding(column.width - Get_Width(cell), ' ');
        text += column.Is_Number() ? ' ' + padding + cell : ' ' + cell + padding;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text += '\n';
}

} // namespace

std::string HeadlessGrid::Format(const std::vector<std::string> &names) const
{
    std::vector<Column> columns;
    for (const std::string &name : names)
        if (const ParticleProperty *property = Find_Particle_Property(name)) columns.push_back({property, {}});
    for (Column &column : columns) {
        column.Add(column.property->Name);
        for (int index = 0; index < source.Get_Count(); ++index)
            column.Add(column.property->Get(*source.Get_Row(index)));
    }
    std::string text;
    Append_Line(text, ' ', columns, 0);
    for (int index = 0; index < source.Get_Count(); ++index) {
        const bool selected = std::binary_search(selection.begin(), selection.end(), index);
        Append_Line(text, selected ? '>' : ' ', columns, static_cast<size_t>(index) + 1);
    }
    return text;
}
