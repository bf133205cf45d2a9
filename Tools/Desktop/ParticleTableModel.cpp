#include "Desktop/ParticleTableModel.h"

#include "Desktop/EngineText.h"
#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"
#include "Desktop/ParticleColumns.h"

#include <algorithm>

namespace
{

QString Get_Text(const ParticleColumn &column, const ParticleData &row)
{
    return From_Engine(column.Get_Property().Get(row));
}

bool Is_Number(const ParticleColumn &column)
{
    return column.Kind == ParticleColumn::Cell::Number || column.Kind == ParticleColumn::Cell::Slider;
}

QString Get_Tool_Tip(const ParticleColumn &column, const ParticleData &row)
{
    if (column.Kind != ParticleColumn::Cell::Text) return column.Help;
    QStringList plugins;
    for (const std::string &name : Get_Plugin_Names(row)) plugins << From_Engine(name);
    return QString("%1: %2\n%3\n%4")
        .arg(From_Engine(row.Get_EmitterName()), From_Engine(row.Get_ParticleName()), plugins.join(", "),
             From_Engine(row.Get_EmitterData().Get_Path()));
}

} // namespace

void ParticleTableModel::Set_Rows(std::shared_ptr<ParticleList> list)
{
    beginResetModel();
    rows = std::move(list);
    searchTexts.clear();
    firstTouched = -1;
    endResetModel();
}

void ParticleTableModel::Clear_Rows()
{
    beginResetModel();
    if (rows) rows->clear();
    searchTexts.clear();
    firstTouched = -1;
    endResetModel();
}

ParticleData *ParticleTableModel::Get_Row(int row) const
{
    return row >= 0 && row < Get_Count() ? (*rows)[static_cast<size_t>(row)].get() : nullptr;
}

std::shared_ptr<ParticleData> ParticleTableModel::Share_Row(int row) const
{
    return row >= 0 && row < Get_Count() ? (*rows)[static_cast<size_t>(row)] : nullptr;
}

int ParticleTableModel::Index_Of(const ParticleData *row) const
{
    for (int index = 0; index < Get_Count(); ++index)
        if ((*rows)[static_cast<size_t>(index)].get() == row) return index;
    return -1;
}

const QString &ParticleTableModel::Get_Search_Text(int row) const
{
    searchTexts.resize(static_cast<size_t>(Get_Count()));
    QString &text = searchTexts[static_cast<size_t>(row)];
    if (!text.isEmpty()) return text;
    const ParticleData &data = *Get_Row(row);
    text = From_Engine(data.Get_EmitterName() + '\n' + data.Get_ParticleName());
    for (const std::string &name : Get_Plugin_Names(data)) text += '\n' + From_Engine(name);
    text = text.toLower();
    return text;
}

void ParticleTableModel::Touch_Row(int row)
{
    if (row < 0 || row >= Get_Count()) return;
    if (static_cast<size_t>(row) < searchTexts.size()) searchTexts[static_cast<size_t>(row)].clear();
    if (firstTouched < 0) {
        firstTouched = lastTouched = row;
        QMetaObject::invokeMethod(
            this, [this] { Tell_Touched(); }, Qt::QueuedConnection);
    }
    firstTouched = std::min(firstTouched, row);
    lastTouched = std::max(lastTouched, row);
}

void ParticleTableModel::Touch_All()
{
    if (Get_Count() == 0) return;
    Touch_Row(0);
    Touch_Row(Get_Count() - 1);
}

void ParticleTableModel::Tell_Touched()
{
    if (firstTouched < 0) return;
    const int first = std::exchange(firstTouched, -1);
    Q_EMIT dataChanged(index(first, 0), index(std::min(lastTouched, Get_Count() - 1), columnCount() - 1));
}

int ParticleTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : Get_Count();
}

int ParticleTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(Get_Particle_Columns().size());
}

QVariant ParticleTableModel::data(const QModelIndex &index, int role) const
{
    const ParticleData *row = Get_Row(index.row());
    if (!row) return {};
    const ParticleColumn &column = Get_Particle_Column(index.column());
    using Cell = ParticleColumn::Cell;
    switch (role) {
    case Qt::DisplayRole:
        if (column.Kind == Cell::Mark) return row->Get_Modified() ? QString(QChar(0x25cf)) : QString();
        if (column.Kind == Cell::Flag) return Get_Text(column, *row) == "true" ? "yes" : "no";
        if (column.Kind == Cell::Check) return {};
        return Get_Text(column, *row);
    case Qt::EditRole: return Get_Text(column, *row);
    case Qt::CheckStateRole:
        if (column.Kind != Cell::Check) return {};
        return Get_Text(column, *row) == "true" ? Qt::Checked : Qt::Unchecked;
    case Qt::TextAlignmentRole:
        if (Is_Number(column)) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
        if (column.Kind == Cell::Text || column.Kind == Cell::Level) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        return QVariant(Qt::AlignCenter);
    case Qt::ToolTipRole: return Get_Tool_Tip(column, *row);
    default: return {};
    }
}

QVariant ParticleTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(section + 1)
                                       : QAbstractTableModel::headerData(section, orientation, role);
    const ParticleColumn &column = Get_Particle_Column(section);
    if (role == Qt::DisplayRole) return QString(column.Title);
    if (role == Qt::ToolTipRole) return QString("%1\n%2").arg(column.Help, column.PropertyName);
    return {};
}

Qt::ItemFlags ParticleTableModel::flags(const QModelIndex &index) const
{
    const ParticleData *row = Get_Row(index.row());
    if (!row) return Qt::NoItemFlags;
    const ParticleColumn &column = Get_Particle_Column(index.column());
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (!Can_Write(column, *row)) return flags;
    return flags | (column.Kind == ParticleColumn::Cell::Check ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

bool ParticleTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    ParticleData *row = Get_Row(index.row());
    if (!row || (role != Qt::EditRole && role != Qt::CheckStateRole)) return false;
    const ParticleColumn &column = Get_Particle_Column(index.column());
    const std::string text = role == Qt::CheckStateRole ? (value.toInt() == Qt::Checked ? "true" : "false")
                                                        : value.toString().trimmed().replace(',', '.').toStdString();
    std::string reason;
    if (!Write_Cell(column, *row, text, reason)) {
        if (refused) refused(From_Engine(reason));
        return false;
    }
    if (edited) edited(index.row());
    return true;
}
