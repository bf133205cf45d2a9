#include "Desktop/SelectionPanel.h"

#include "Code/ParticleData.h"
#include "Desktop/CountedText.h"
#include "Desktop/EngineText.h"
#include "Desktop/LevelNames.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleTableModel.h"
#include "Desktop/SelectionSummary.h"
#include "Desktop/Theme.h"
#include "Desktop/ThousandthsSlider.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace
{

constexpr int MAXIMUM_NAMES = 6;
constexpr int VALUE_CHARACTERS = 11;

enum FieldColumn
{
    LABEL,
    SLIDER,
    VALUE
};

QString Get_Short_Number(double value)
{
    return QString::number(value, 'g', 5);
}

} // namespace

SelectionPanel::SelectionPanel(ParticleTableModel &tableModel, QWidget *parent)
    : QWidget(parent), model(tableModel), grid(new QGridLayout), title(new QLabel(this)), names(new QLabel(this))
{
    setObjectName("selectionPanel");
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.15);
    large.setWeight(QFont::DemiBold);
    title->setFont(large);
    title->setObjectName("selectionTitle");
    names->setWordWrap(true);
    names->setTextFormat(Qt::PlainText);
    names->setForegroundRole(QPalette::PlaceholderText);
    names->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    names->setMinimumHeight(names->fontMetrics().height() * 3);
    names->setObjectName("selectionNames");

    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(7);
    grid->setColumnStretch(SLIDER, 1);
    Add_Heading("Level of detail");
    Add_Level_Field();
    Add_Scaled_Field("Le&ast detail", "MinimumDynamicLOD");
    Add_Scaled_Field("&Near distance", "DynamicLODNearDistance");
    Add_Scaled_Field("Fa&r distance", "DynamicLODFarDistance");
    Add_Heading("Heat");
    Add_Scaled_Field("C&utoff", "HeatDistanceCutoff");
    Add_Scaled_Field("&Distortion", "HeatDistortionScale");
    Add_Scaled_Field("Sa&turation", "SaturationScale");
    convert = new QPushButton("Convert to &Heat", this);
    convert->setObjectName("convertButton");
    convert->setEnabled(false);
    grid->addWidget(convert, grid->rowCount(), SLIDER, 1, 2);
    Add_Heading("Lighting");
    Add_Lighting_Field();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->setSpacing(6);
    layout->addWidget(title);
    layout->addWidget(names);
    layout->addLayout(grid);
    layout->addStretch(1);
    Show_Rows({}, -1);
}

void SelectionPanel::Add_Heading(const QString &text)
{
    auto *label = new QLabel(text, this);
    QFont bold = label->font();
    bold.setWeight(QFont::DemiBold);
    label->setFont(bold);
    label->setContentsMargins(0, 10, 0, 0);
    grid->addWidget(label, grid->rowCount(), LABEL, 1, 3);
}

void SelectionPanel::Add_Level_Field()
{
    const int row = grid->rowCount();
    levelLabel = new QLabel("&Level", this);
    level = new QComboBox(this);
    level->setObjectName("GlobalLOD");
    level->setFocusPolicy(Qt::StrongFocus);
    level->installEventFilter(this);
    level->addItems(Get_Level_Names());
    level->setToolTip(Get_Particle_Column(Find_Particle_Column("GlobalLOD")).Help);
    levelLabel->setBuddy(level);
    grid->addWidget(levelLabel, row, LABEL);
    grid->addWidget(level, row, SLIDER, 1, 2);
    connect(level, &QComboBox::activated, this,
            [this] { Write(Find_Particle_Column("GlobalLOD"), level->currentText(), Qt::EditRole); });
}

bool SelectionPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == level && event->type() == QEvent::Wheel && !level->hasFocus()) {
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void SelectionPanel::Add_Lighting_Field()
{
    lighting = new QCheckBox("&Scene lighting adjustments", this);
    lighting->setObjectName("SceneLightingAdjustments");
    grid->addWidget(lighting, grid->rowCount(), LABEL, 1, 3);
    connect(lighting, &QCheckBox::clicked, this, [this] {
        lighting->setTristate(false); // what the rows disagree in is shown, and not chosen
        Write(Find_Particle_Column("SceneLightingAdjustments"), lighting->isChecked() ? Qt::Checked : Qt::Unchecked,
              Qt::CheckStateRole);
    });
}

void SelectionPanel::Add_Scaled_Field(const QString &text, const char *property)
{
    const int row = grid->rowCount();
    const int valueColumn = Find_Particle_Column(property);
    const ParticleColumn &column = Get_Particle_Column(valueColumn);
    ScaledField field{valueColumn, valueColumn + 1, new QLabel(text, this), new ThousandthsSlider(this),
                      new QLineEdit(this)};
    field.slider->setObjectName(QString(property) + "PerThousandth");
    field.slider->setToolTip(column.Help);
    field.line->setObjectName(property);
    field.line->setToolTip(column.Help);
    field.line->setAlignment(Qt::AlignRight);
    field.line->setFixedWidth(field.line->fontMetrics().averageCharWidth() * VALUE_CHARACTERS + 12);
    field.label->setBuddy(field.line);
    grid->addWidget(field.label, row, LABEL);
    grid->addWidget(field.slider, row, SLIDER);
    grid->addWidget(field.line, row, VALUE);
    fields.push_back(field);
    connect(field.slider, &QSlider::valueChanged, this, [this, field](int value) { Slider_Moved(field, value); });
    connect(field.line, &QLineEdit::editingFinished, this, [this, field] { Line_Edited(field); });
}

void SelectionPanel::Slider_Moved(const ScaledField &field, int value)
{
    Write(field.sliderColumn, value, Qt::EditRole);
    lastStep.Note(model.index(summaries[static_cast<size_t>(field.sliderColumn)].Row, field.sliderColumn), value);
}

void SelectionPanel::Line_Edited(const ScaledField &field)
{
    if (!field.line->isModified()) return;
    field.line->setModified(false);
    if (!field.line->text().isEmpty()) Write(field.valueColumn, field.line->text(), Qt::EditRole);
    Show_Rows(rows, current);
}

void SelectionPanel::Write(int column, const QVariant &value, int role)
{
    const int row = summaries[static_cast<size_t>(column)].Row;
    if (row >= 0) model.setData(model.index(row, column), value, role);
}

void SelectionPanel::Show_Rows(std::vector<int> selected, int currentRow)
{
    rows = std::move(selected);
    current = currentRow;
    summaries = Summarize_Columns(model, rows, current);
    Show_Title();
    Show_Level();
    for (ScaledField &field : fields) Show_Field(field);
    Show_Lighting();
}

void SelectionPanel::Set_Editing_Enabled(bool enabled)
{
    editingEnabled = enabled;
    Show_Rows(rows, current);
}

void SelectionPanel::Show_Title()
{
    const int effects = Count_Effects(model, rows);
    if (rows.empty()) {
        title->setText("Nothing selected");
        names->setText("Select layers in the grid: what is changed here goes to all of them.");
        return;
    }
    const ParticleData &first = *model.Get_Row(rows.front());
    QStringList lines;
    if (rows.size() == 1) {
        title->setText(From_Engine(first.Get_ParticleName()));
        for (const std::string &name : Get_Plugin_Names(first)) lines << From_Engine(name);
        names->setText(QString("of %1\n%2").arg(From_Engine(first.Get_EmitterName()), lines.join(", ")));
        return;
    }
    title->setText(Counted(static_cast<int>(rows.size()), "layer") + " of " + Counted(effects, "effect"));
    for (const int row : rows) {
        const QString name = From_Engine(model.Get_Row(row)->Get_EmitterName());
        if (!lines.contains(name)) lines << name;
        if (lines.size() > MAXIMUM_NAMES) break;
    }
    if (lines.size() > MAXIMUM_NAMES) lines.back() = QString("and %1 more").arg(effects - MAXIMUM_NAMES);
    names->setText(lines.join(", "));
}

void SelectionPanel::Show_Field(ScaledField &field)
{
    const ColumnSummary &value = summaries[static_cast<size_t>(field.valueColumn)];
    const bool enabled = editingEnabled && value.Row >= 0;
    field.label->setEnabled(enabled);
    field.slider->setEnabled(enabled);
    field.line->setEnabled(enabled);
    if (!field.line->isModified())
        field.line->setText(value.Row < 0 || value.IsMixed ? QString() : From_Engine(value.Text));
    field.line->setPlaceholderText(
        value.IsMixed ? Get_Short_Number(value.Least) + QChar(0x2013) + Get_Short_Number(value.Greatest) : QString());
    const ColumnSummary &slider = summaries[static_cast<size_t>(field.sliderColumn)];
    const int thousandths = slider.Row < 0 ? 0 : lastStep.Get_Position(model.index(slider.Row, field.sliderColumn));
    if (value.IsMixed)
        field.slider->Show_Band(static_cast<int>(slider.Least), static_cast<int>(slider.Greatest), thousandths);
    else
        field.slider->Show_Value(thousandths);
}

void SelectionPanel::Show_Level()
{
    const ColumnSummary &summary = summaries[static_cast<size_t>(Find_Particle_Column("GlobalLOD"))];
    const bool enabled = editingEnabled && summary.Row >= 0;
    levelLabel->setEnabled(enabled);
    level->setEnabled(enabled);
    level->setPlaceholderText(summary.IsMixed ? QString("mixed") : From_Engine(summary.Text));
    level->setCurrentIndex(
        summary.IsMixed || summary.Row < 0 ? -1 : level->findText(From_Engine(summary.Text), Qt::MatchExactly));
}

void SelectionPanel::Show_Lighting()
{
    const ColumnSummary &summary = summaries[static_cast<size_t>(Find_Particle_Column("SceneLightingAdjustments"))];
    lighting->setEnabled(editingEnabled && summary.Row >= 0);
    lighting->setTristate(summary.IsMixed);
    lighting->setCheckState(summary.IsMixed ? Qt::PartiallyChecked
                                            : (summary.Text == "true" ? Qt::Checked : Qt::Unchecked));
}
