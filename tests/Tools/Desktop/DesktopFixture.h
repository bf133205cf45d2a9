#pragma once

#include "Code/ApplicationCore.h"
#include "Code/NoPreview.h"
#include "Desktop/DesktopApplication.h"
#include "Desktop/DesktopMainForm.h"
#include "Desktop/ParticleColumns.h"
#include "Desktop/ParticleTableModel.h"
#include "Desktop/ParticleTableView.h"
#include "Tools/Code/ToolFixture.h"

#include <QTimer>
#include <memory>
#include <string>
#include <vector>

namespace ToolTest
{

/// The one of the whole test program, off screen, with the interface layer's own settings in a directory that is empty
/// at the start of the program.
DesktopApplication &Get_Desktop();
/// Lets everything that is queued happen.
void Let_Events_Run(int milliseconds = 0);

/// Gives a window the keyboard.
void Activate(QWidget &window);

/// While one lives, message boxes are answered with the button of this text by a click, and recorded.
class BoxAnswers
{
public:
    explicit BoxAnswers(QString button);
    BoxAnswers(const BoxAnswers &) = delete;
    BoxAnswers &operator=(const BoxAnswers &) = delete;

    std::vector<std::string> texts;

private:
    void Look();

    QString button;
    QTimer timer;
};

/// The tool in its real window; see Tool for the headless twin.
class DesktopTool : public Workplace
{
public:
    explicit DesktopTool(std::unique_ptr<PreviewDriver> preview = std::make_unique<NoPreview>());
    ~DesktopTool();
    DesktopTool(const DesktopTool &) = delete;
    DesktopTool &operator=(const DesktopTool &) = delete;

    void Open();
    /// By the key, as a user does it.
    void Scan();

    ParticleData &Row(int index) { return *form->Get_Model().Get_Row(index); }
    ParticleTableView &Table() { return form->Get_Table(); }
    QModelIndex Cell(int shownRow, const char *property);
    QPoint Center(int shownRow, const char *property);
    void Click(int shownRow, const char *property, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Press_Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Type(const QString &text);
    std::vector<std::string> Selected_Names();
    QString Label_Text(const char *name);

    DesktopApplication &application;
    std::unique_ptr<ApplicationCore> core;
    std::unique_ptr<DesktopMainForm> form;
};

} // namespace ToolTest
