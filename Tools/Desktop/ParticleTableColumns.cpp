#include "Desktop/ParticleTableView.h"

#include "Desktop/EngineText.h"
#include "Code/ParticleData.h"
#include "Desktop/GroupedHeader.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleTableModel.h"

#include <QDataStream>
#include <QMenu>
#include <QSet>

#include <algorithm>

namespace
{

using Cell = ParticleColumn::Cell;

constexpr int CELL_PADDING = 16;
constexpr int SLIDER_LENGTH = 78;
constexpr int ARROW_WIDTH = 18;
constexpr int WIDEST_TEXT = 320;
constexpr quint32 STATE_VERSION = 1;

int Get_Column_Count()
{
    return static_cast<int>(Get_Particle_Columns().size());
}

} // namespace

int ParticleTableView::Get_Text_Width(int column) const
{
    QSet<QString> texts; // few names stand in many rows
    for (int row = 0; row < rows.Get_Count(); ++row)
        texts.insert(From_Engine(column == Find_Particle_Column("EmitterName")
                                     ? rows.Get_Row(row)->Get_EmitterName()
                                     : rows.Get_Row(row)->Get_ParticleName()));
    int width = 0;
    for (const QString &text : texts) width = std::max(width, fontMetrics().horizontalAdvance(text));
    return std::min(width, WIDEST_TEXT);
}

/// Of the group's heading, where the column stands alone under it; 0 where it shares it.
int ParticleTableView::Get_Group_Width(int column) const
{
    const QString group = Get_Particle_Column(column).Group;
    for (int other = 0; other < Get_Column_Count(); ++other)
        if (other != column && !isColumnHidden(other) && group == Get_Particle_Column(other).Group) return 0;
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    return QFontMetrics(bold).horizontalAdvance(group);
}

void ParticleTableView::Fit_Columns()
{
    isFitting = true;
    for (int column = 0; column < Get_Column_Count(); ++column) {
        if (widthIsTheUsers[static_cast<size_t>(column)]) continue;
        int width = 0;
        switch (Get_Particle_Column(column).Kind) {
        case Cell::Mark: width = fontMetrics().horizontalAdvance(QChar(0x25cf)); break;
        case Cell::Text: width = Get_Text_Width(column); break;
        case Cell::Level: width = fontMetrics().horizontalAdvance("Medium") + ARROW_WIDTH; break;
        case Cell::Number: width = fontMetrics().horizontalAdvance("9999.99"); break;
        case Cell::Slider: width = fontMetrics().horizontalAdvance("0000") + SLIDER_LENGTH; break;
        case Cell::Check:
        case Cell::Flag: width = fontMetrics().horizontalAdvance("yes"); break;
        }
        const int title =
            std::max(fontMetrics().horizontalAdvance(Get_Particle_Column(column).Title), Get_Group_Width(column));
        if (!isColumnHidden(column)) setColumnWidth(column, std::max(width, title) + CELL_PADDING);
    }
    isFitting = false;
}

/// The header reports the old width as a new one then, which isn't the user's.
void ParticleTableView::Hide_Column(int column, bool isHidden)
{
    isFitting = true;
    setColumnHidden(column, isHidden);
    isFitting = false;
}

void ParticleTableView::Show_Default_Columns()
{
    for (int column = 0; column < Get_Column_Count(); ++column) Hide_Column(column, !Get_Particle_Column(column).Shown);
    std::fill(widthIsTheUsers.begin(), widthIsTheUsers.end(), false);
    Fit_Columns();
}

void ParticleTableView::Show_All_Columns()
{
    for (int column = 0; column < Get_Column_Count(); ++column) Hide_Column(column, false);
    Fit_Columns();
}

QByteArray ParticleTableView::Save_Columns() const
{
    QByteArray state;
    QDataStream stream(&state, QIODeviceBase::WriteOnly);
    stream << STATE_VERSION << Get_Column_Count();
    for (int column = 0; column < Get_Column_Count(); ++column)
        stream << isColumnHidden(column) << bool(widthIsTheUsers[static_cast<size_t>(column)]) << columnWidth(column);
    return state;
}

/// What another version wrote, or nobody, leaves the columns as they are.
void ParticleTableView::Restore_Columns(const QByteArray &state)
{
    QDataStream stream(state);
    quint32 version = 0;
    int count = 0;
    stream >> version >> count;
    if (version != STATE_VERSION || count != Get_Column_Count()) return;
    for (int column = 0; column < count && stream.status() == QDataStream::Ok; ++column) {
        bool isHidden = false, isTheUsers = false;
        int width = 0;
        stream >> isHidden >> isTheUsers >> width;
        if (stream.status() != QDataStream::Ok) return;
        Hide_Column(column, isHidden);
        widthIsTheUsers[static_cast<size_t>(column)] = isTheUsers;
        isFitting = true;
        if (isTheUsers && !isHidden) setColumnWidth(column, std::clamp(width, 24, 2000));
        isFitting = false;
    }
    Fit_Columns();
}

void ParticleTableView::Fill_Column_Menu(QMenu &menu)
{
    menu.clear();
    for (int column = 0; column < Get_Column_Count(); ++column) {
        const ParticleColumn &description = Get_Particle_Column(column);
        const QString title = description.Kind == Cell::Mark ? QString("Modified") : QString(description.Title);
        const bool isPlain = QString(description.Group) == title || description.Kind == Cell::Mark;
        QAction *action = menu.addAction(isPlain ? title : QString("%1: %2").arg(description.Group, title));
        action->setCheckable(true);
        action->setChecked(!isColumnHidden(column));
        connect(action, &QAction::toggled, this, [this, column](bool isShown) {
            Hide_Column(column, !isShown);
            Fit_Columns();
        });
    }
    menu.addSeparator();
    connect(menu.addAction("Show All"), &QAction::triggered, this, [this] { Show_All_Columns(); });
    connect(menu.addAction("Back to Default"), &QAction::triggered, this, [this] { Show_Default_Columns(); });
}

void ParticleTableView::Show_Column_Menu(const QPoint &position)
{
    QMenu menu(this);
    Fill_Column_Menu(menu);
    menu.exec(position);
}
