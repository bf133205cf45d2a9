#include "Desktop/DesktopMainForm.h"

#include "Code/IFlareTrimUIManager.h"
#include "Desktop/DesktopApplication.h"
#include "Desktop/HelpMenu.h"
#include "Desktop/ParticleTableModel.h"
#include "Desktop/ParticleTableView.h"
#include "Desktop/SelectionPanel.h"
#include "Desktop/Theme.h"
#include "Desktop/ThemedIcon.h"
#include "Desktop/UserSettings.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{

constexpr const char *COLUMNS_KEY = "columns";
constexpr const char *PANEL_KEY = "selectionPanel";
constexpr const char *SPLITTER_KEY = "splitter";
constexpr int PANEL_WIDTH = 330;

} // namespace

QAction *DesktopMainForm::Add_Action(const QString &text, const QString &icon, const QKeySequence &keys,
                                     void (DesktopMainForm::*run)())
{
    auto *action = new QAction(text, this);
    if (!icon.isEmpty()) action->setIcon(Get_Themed_Icon(icon));
    action->setShortcut(keys);
    // They work from the view window too.
    action->setShortcutContext(Qt::ApplicationShortcut);
    QString tip = QString(text).remove('&').remove("...");
    if (!keys.isEmpty()) tip += QString(" (%1)").arg(keys.toString(QKeySequence::NativeText));
    action->setToolTip(tip);
    if (run) connect(action, &QAction::triggered, this, run);
    addAction(action);
    return action;
}

void DesktopMainForm::Make_Actions()
{
    using Form = DesktopMainForm;
    actions.Browse = Add_Action("&Browse...", "browse", QKeySequence("Ctrl+O"), &Form::Browse);
    actions.Scan = Add_Action("S&can", "scan", QKeySequence("F5"), &Form::Scan);
    actions.Save = Add_Action("&Save", "save", QKeySequence("Ctrl+S"), &Form::Save);
    actions.SaveAll = Add_Action("Save &All", "save-all", QKeySequence("Ctrl+Shift+S"), &Form::Save_All);
    actions.AutoCheckout = Add_Action("Auto Chec&kout", "checkout", {}, nullptr);
    actions.Quit = Add_Action("&Quit", "", QKeySequence("Ctrl+Q"), nullptr);
    actions.SelectAll = Add_Action("Select &All", "", QKeySequence("Ctrl+A"), nullptr);
    actions.SelectEffects = Add_Action("Select Whole &Effects", "", QKeySequence("Ctrl+E"), &Form::Select_Effects);
    actions.Filter = Add_Action("&Filter", "filter", QKeySequence("Ctrl+F"), &Form::Focus_Filter);
    actions.Convert = Add_Action("Convert to &Heat", "heat", QKeySequence("Ctrl+H"), &Form::Convert);
    actions.Preview = Add_Action("&Preview", "preview", QKeySequence("F6"), nullptr);
    actions.Pause = Add_Action("&Pause", "pause", QKeySequence("Space"), &Form::Pause);
    actions.Step = Add_Action("Single &Step", "step", QKeySequence("F10"), &Form::Step);
    actions.ResetAnimation =
        Add_Action("Reset &Animation", "reset-animation", QKeySequence("Ctrl+R"), &Form::Reset_Animation);
    actions.ResetCamera =
        Add_Action("Reset &Camera", "reset-camera", QKeySequence("Ctrl+Shift+R"), &Form::Reset_Camera);
    // A space is also a character, and presses the button that has the focus: the windows look at it last.
    actions.Pause->setShortcutContext(Qt::WidgetShortcut);
    actions.SelectAll->setShortcutContext(Qt::WidgetShortcut);

    actions.AutoCheckout->setCheckable(true);
    actions.AutoCheckout->setToolTip("Check read-only files out of Perforce without asking");
    actions.Preview->setCheckable(true);
    actions.Save->setEnabled(false);
    actions.SaveAll->setEnabled(false);
    actions.Convert->setEnabled(false);
    connect(actions.AutoCheckout, &QAction::triggered, this,
            [this] { Report(&IFlareTrimUIManager::Auto_Checkout_Check_Box_Click); });
    connect(actions.Preview, &QAction::toggled, this, [this] { Report(&IFlareTrimUIManager::Preview_Button_Changed); });
    connect(actions.Quit, &QAction::triggered, this, [this] { close(); });
    connect(actions.SelectAll, &QAction::triggered, this, [this] { table->selectAll(); });
}

void DesktopMainForm::Make_Tool_Bar()
{
    QToolBar *bar = addToolBar("Main");
    bar->setObjectName("mainToolBar");
    bar->setMovable(false);
    bar->setIconSize(QSize(20, 20));
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    pathField = new QLineEdit(bar);
    pathField->setObjectName("pathField");
    pathField->setReadOnly(true);
    pathField->setMinimumWidth(220);
    pathField->setAccessibleName("Working directory");
    bar->addWidget(pathField);
    bar->addAction(actions.Browse);
    bar->addAction(actions.Scan);
    bar->addSeparator();
    bar->addAction(actions.Save);
    bar->addAction(actions.SaveAll);
    bar->addAction(actions.AutoCheckout);
    bar->addSeparator();
    bar->addAction(actions.Convert);
    bar->addSeparator();
    bar->addAction(actions.Preview);
    for (QAction *action : bar->actions())
        if (auto *button = qobject_cast<QToolButton *>(bar->widgetForAction(action)))
            button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

void DesktopMainForm::Make_Centre()
{
    auto *gridSide = new QWidget(this);
    filterField = new QLineEdit(gridSide);
    filterField->setObjectName("filterField");
    filterField->setPlaceholderText("Filter by effect, layer or plugin (Ctrl+F)");
    filterField->setClearButtonEnabled(true);
    filterField->addAction(Get_Themed_Icon("filter"), QLineEdit::LeadingPosition);
    filterField->setEnabled(false);
    table = new ParticleTableView(*model, *filter, gridSide);
    message = new QLabel(table->viewport());
    message->setObjectName("gridMessage");
    message->setAlignment(Qt::AlignCenter);
    message->setWordWrap(true);
    message->setTextFormat(Qt::PlainText);
    message->setForegroundRole(QPalette::PlaceholderText);
    auto *over = new QVBoxLayout(table->viewport());
    over->setContentsMargins(40, 20, 40, 20);
    over->addWidget(message);
    auto *layout = new QVBoxLayout(gridSide);
    layout->setContentsMargins(8, 6, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(filterField);
    layout->addWidget(table);

    panel = new SelectionPanel(*model, this);
    auto *scroll = new QScrollArea(this);
    scroll->setWidget(panel);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setMinimumWidth(PANEL_WIDTH - 50);
    panelFrame = scroll;
    auto *splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName("splitter");
    splitter->addWidget(gridSide);
    splitter->addWidget(scroll);
    splitter->setStretchFactor(0, 1);
    splitter->setCollapsible(0, false);
    splitter->setSizes({width() - PANEL_WIDTH, PANEL_WIDTH});
    setCentralWidget(splitter);
    table->addAction(actions.Pause);
    table->addAction(actions.SelectAll);
}

void DesktopMainForm::Make_Menus()
{
    QMenu *file = menuBar()->addMenu("&File");
    file->addActions({actions.Browse, actions.Scan});
    file->addSeparator();
    file->addActions({actions.Save, actions.SaveAll, actions.AutoCheckout});
    file->addSeparator();
    file->addAction(actions.Quit);

    QMenu *edit = menuBar()->addMenu("&Edit");
    edit->addActions({actions.SelectAll, actions.SelectEffects, actions.Filter});
    edit->addSeparator();
    edit->addAction(actions.Convert);

    QMenu *view = menuBar()->addMenu("&View");
    QMenu *columns = view->addMenu(Get_Themed_Icon("columns"), "&Columns");
    connect(columns, &QMenu::aboutToShow, this, [this, columns] { table->Fill_Column_Menu(*columns); });
    QAction *showPanel = view->addAction(Get_Themed_Icon("panel"), "&Selection Panel");
    showPanel->setObjectName("showPanel");
    showPanel->setCheckable(true);
    showPanel->setChecked(true);
    showPanel->setShortcut(QKeySequence("F4"));
    connect(showPanel, &QAction::toggled, panelFrame, &QWidget::setVisible);
    view->addSeparator();
    Make_Theme_Menu(*view->addMenu("&Theme"));

    Make_Preview_Menu();
    Fill_Help_Menu(*menuBar()->addMenu("&Help"), *this);
}

void DesktopMainForm::Make_Theme_Menu(QMenu &menu)
{
    auto *group = new QActionGroup(this);
    const struct
    {
        const char *text;
        Theme::Mode mode;
    } modes[] = {
        {"As the &Desktop", Theme::Mode::Desktop}, {"&Light", Theme::Mode::Light}, {"Dar&k", Theme::Mode::Dark}};
    for (const auto &[text, mode] : modes) {
        QAction *action = group->addAction(menu.addAction(text));
        action->setCheckable(true);
        action->setChecked(application.Get_Theme().Get_Mode() == mode);
        connect(action, &QAction::triggered, this, [this, mode = mode] { application.Get_Theme().Set_Mode(mode); });
    }
}

void DesktopMainForm::Make_Preview_Menu()
{
    QMenu *preview = menuBar()->addMenu("&Preview");
    preview->addAction(actions.Preview);
    preview->addSeparator();
    preview->addActions({actions.Pause, actions.Step, actions.ResetAnimation});
    preview->addSeparator();
    preview->addAction(actions.ResetCamera);
}

void DesktopMainForm::Make_Status_Bar()
{
    counts = new QLabel(this);
    counts->setObjectName("counts");
    previewState = new QLabel(this);
    previewState->setObjectName("previewState");
    previewState->setForegroundRole(QPalette::PlaceholderText);
    previewState->hide();
    statusBar()->addPermanentWidget(previewState);
    statusBar()->addPermanentWidget(counts);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->setContentsMargins(6, 0, 10, 0);
}

void DesktopMainForm::Keep_Layout() const
{
    QSettings settings = Open_User_Settings();
    settings.setValue(COLUMNS_KEY, table->Save_Columns());
    settings.setValue(PANEL_KEY, panelFrame->isVisibleTo(this));
    settings.setValue(SPLITTER_KEY, static_cast<QSplitter *>(centralWidget())->saveState());
}

void DesktopMainForm::Restore_Layout()
{
    QSettings settings = Open_User_Settings();
    table->Restore_Columns(settings.value(COLUMNS_KEY).toByteArray());
    static_cast<QSplitter *>(centralWidget())->restoreState(settings.value(SPLITTER_KEY).toByteArray());
    if (!settings.value(PANEL_KEY, true).toBool()) menuBar()->findChild<QAction *>("showPanel")->setChecked(false);
}
