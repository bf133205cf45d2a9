#pragma once

#include "Code/BindingSource.h"

#include <QAbstractTableModel>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

/// The rows of the list as a table of their properties, read live from the layers. A row's number is its index in the
/// core's list.
class ParticleTableModel final : public QAbstractTableModel
{
public:
    /// The value was written to the row and its selection; the model has told nobody yet.
    using Edited = std::function<void(int row)>;
    using Refused = std::function<void(const QString &reason)>;

    void Set_Rows(std::shared_ptr<ParticleList> list);
    void Clear_Rows();
    /// Null out of range.
    ParticleData *Get_Row(int row) const;
    std::shared_ptr<ParticleData> Share_Row(int row) const;
    int Get_Count() const { return rows ? static_cast<int>(rows->size()) : 0; }
    /// -1 for one that isn't in the list.
    int Index_Of(const ParticleData *row) const;
    /// What the filter looks through: names of effect, layer and plugins, in lower case.
    const QString &Get_Search_Text(int row) const;

    void Set_Edited(Edited handler) { edited = std::move(handler); }
    void Set_Refused(Refused handler) { refused = std::move(handler); }
    /// The row's values changed. Views hear of it once for any number of rows, when the event loop comes round.
    void Touch_Row(int row);
    void Touch_All();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Takes the text of the value; a check state for a check box.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

private:
    void Tell_Touched();

    std::shared_ptr<ParticleList> rows;
    mutable std::vector<QString> searchTexts; ///< empty until asked for
    Edited edited;
    Refused refused;
    int firstTouched = -1;
    int lastTouched = -1;
};
