#pragma once

#include "Code/Event.h"
#include "Code/FormTypes.h"

#include <memory>
#include <vector>

class ParticleData;

/// The rows of the grid, in scan order. A row keeps its emitter alive.
using ParticleList = std::vector<std::shared_ptr<ParticleData>>;

enum class ListChangedType : int
{
    Reset = 0,
    ItemAdded = 1,
    ItemDeleted = 2,
    ItemMoved = 3,
    ItemChanged = 4
};

struct ListChangedEventArgs
{
    ListChangedType Type = ListChangedType::Reset;
    int NewIndex = -1;
};

/// The list behind the grid, with a current row.
class BindingSource
{
public:
    virtual ~BindingSource() = default;

    /// Shows another list; the first row becomes the current one. Null shows none.
    virtual void Set_Data_Source(std::shared_ptr<ParticleList> rows) = 0;
    /// Empties the list itself, and so everybody's who holds it.
    virtual void Clear() = 0;
    /// Index of the current row, -1 when there is none.
    virtual int Get_Position() const = 0;
    virtual std::shared_ptr<ParticleData> Get_Current() const = 0;
    /// -1 for a row that isn't in the list.
    virtual int Index_Of(const ParticleData *row) const = 0;
    /// Tells the grid that the row's values changed: raises ListChanged with ItemChanged.
    virtual void Reset_Item(int index) = 0;

    Event<Sender, const ListChangedEventArgs &> ListChanged;
    Event<Sender, const EventArgs &> CurrentChanged;
};

/// The grid, as far as the core looks at it.
class ParticleGrid
{
public:
    virtual ~ParticleGrid() = default;

    /// In the grid's order; a selected row that is bound to nothing gives null.
    virtual std::vector<std::shared_ptr<ParticleData>> Get_Selected_Rows() const = 0;
    virtual void Refresh() = 0;
};
