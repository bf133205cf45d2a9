#pragma once

#include "Desktop/LastStep.h"
#include "Desktop/SelectionSummary.h"

#include <QString>
#include <QWidget>
#include <functional>
#include <vector>

class ParticleTableModel;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class ThousandthsSlider;

/// The values of the selection as a whole, side by side with the grid: one value where the rows agree, and the range of
/// them where they don't. What is changed here goes to all of them.
class SelectionPanel final : public QWidget
{
public:
    SelectionPanel(ParticleTableModel &model, QWidget *parent);

    /// Shows these source rows.
    void Show_Rows(std::vector<int> selected, int currentRow);
    void Set_Editing_Enabled(bool enabled);
    QPushButton &Get_Convert_Button() { return *convert; }

protected:
    /// The wheel scrolls the panel, and doesn't change what nobody has chosen.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// A value with its slider.
    struct ScaledField
    {
        int valueColumn;
        int sliderColumn;
        QLabel *label;
        ThousandthsSlider *slider;
        QLineEdit *line;
    };

    void Add_Heading(const QString &text);
    void Add_Scaled_Field(const QString &title, const char *property);
    void Add_Level_Field();
    void Add_Lighting_Field();
    void Show_Title();
    void Show_Field(ScaledField &field);
    void Show_Level();
    void Show_Lighting();
    void Write(int column, const QVariant &value, int role);
    void Slider_Moved(const ScaledField &field, int value);
    void Line_Edited(const ScaledField &field);

    ParticleTableModel &model;
    std::vector<int> rows; ///< in the order of the grid
    int current = -1;
    std::vector<ColumnSummary> summaries; ///< of these rows, by column
    LastStep lastStep;
    bool editingEnabled = false;
    QGridLayout *grid;
    QLabel *title;
    QLabel *names;
    std::vector<ScaledField> fields;
    QLabel *levelLabel = nullptr;
    QComboBox *level = nullptr;
    QCheckBox *lighting = nullptr;
    QPushButton *convert = nullptr;
};
