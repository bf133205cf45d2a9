#include "Desktop/DesktopSceneViewForm.h"

#include "Code/IFlareTrimUIManager.h"
#include "Desktop/DesktopApplication.h"
#include "Desktop/DesktopViewPanel.h"
#include "Desktop/LevelNames.h"
#include "Desktop/ThemedIcon.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QFontDatabase>
#include <QLabel>
#include <QScreen>
#include <QSignalBlocker>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int COUNTER_MILLISECONDS = 100;
constexpr QSize FIRST_SIZE(860, 620);
constexpr float SPEEDS[] = {0.1f, 0.25f, 0.5f, 0.75f, 1.0f, 1.5f, 2.0f, 3.0f, 4.0f};

QString Get_Statistics_Text(const PreviewStatistics &statistics)
{
    const auto line = [](const char *name, const QString &value) {
        return QString("%1 %2").arg(QString(name), -11).arg(value, 9);
    };
    const auto milliseconds = [](float value) { return QString::number(value, 'f', 2) + " ms"; };
    return QStringList{line("simulated", QString::number(statistics.ParticlesSimulated)),
                       line("rendered", QString::number(statistics.ParticlesRendered)),
                       line("vertices", QString::number(statistics.Vertices)),
                       line("draws", QString::number(statistics.Draws)),
                       line("simulate", milliseconds(statistics.SimulateMilliseconds)),
                       line("prepare", milliseconds(statistics.PrepareMilliseconds)),
                       line("draw", milliseconds(statistics.DrawMilliseconds)),
                       line("present", milliseconds(statistics.PresentMilliseconds))}
        .join('\n');
}

void Set_Text_Beside_Icons(QToolBar &bar)
{
    bar.setIconSize(QSize(18, 18));
    for (QAction *action : bar.actions())
        if (auto *button = qobject_cast<QToolButton *>(bar.widgetForAction(action)))
            button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

} // namespace

DesktopSceneViewForm::DesktopSceneViewForm(DesktopApplication &owner, IFlareTrimUIManager &uiManager)
    : application(owner), manager(uiManager), placement(*this), panel(new DesktopViewPanel(owner, uiManager, this)),
      overlay(new QLabel(panel))
{
    setObjectName("viewForm");
    setWindowTitle("Preview - Flare Trim");
    Place_At_First();
    Make_Actions();
    overlay->setObjectName("statistics");
    overlay->setAttribute(Qt::WA_NativeWindow); // it lies on a window that Qt doesn't paint
    overlay->setAutoFillBackground(true);
    QPalette dark = overlay->palette(); // what it lies on is mostly dark, whatever the windows are
    dark.setColor(QPalette::Window, QColor(0x1d, 0x1f, 0x23));
    dark.setColor(QPalette::WindowText, QColor(0xdc, 0xdf, 0xe4));
    overlay->setPalette(dark);
    overlay->setMargin(8);
    overlay->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    overlay->move(10, 10);
    overlay->hide();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Make_Upper_Bar());
    layout->addWidget(panel, 1);
    layout->addWidget(Make_Lower_Bar());
    counterTimer.setSingleShot(true);
    counterTimer.setInterval(COUNTER_MILLISECONDS);
    connect(&counterTimer, &QTimer::timeout, this, [this] { Show_Counters(); });
    panel->setFocus();
    application.viewForm = this;
}

DesktopSceneViewForm::~DesktopSceneViewForm()
{
    application.viewForm = nullptr;
}

/// In the corner where it hides the least of the main window, until the user has put it somewhere.
void DesktopSceneViewForm::Place_At_First()
{
    const QRect available = screen()->availableGeometry();
    constexpr QSize FRAME(12, 44); // nobody knows it before the window shows
    const QRect place(QPoint(), FIRST_SIZE.boundedTo(available.size() - FRAME));
    resize(place.size());
    move(available.bottomRight() - place.bottomRight() - QPoint(FRAME.width(), FRAME.height()));
}

QAction *DesktopSceneViewForm::Add_Action(const QString &text, const QString &icon, const QString &keys,
                                          Operation operation)
{
    auto *action = new QAction(Get_Themed_Icon(icon), text, this);
    if (!keys.isEmpty()) action->setShortcut(QKeySequence(keys));
    const QString name = QString(text).remove("...");
    action->setToolTip(keys.isEmpty() ? name : QString("%1 (%2)").arg(name, keys));
    if (operation) connect(action, &QAction::triggered, this, [this, operation] { Report(operation); });
    addAction(action);
    return action;
}

QAction *DesktopSceneViewForm::Add_Toggle(const QString &text, const QString &icon, const QString &keys,
                                          Operation operation)
{
    QAction *action = Add_Action(text, icon, keys, operation);
    action->setCheckable(true);
    return action;
}

void DesktopSceneViewForm::Make_Actions()
{
    using Manager = IFlareTrimUIManager;
    actions.Axes = Add_Toggle("Axes", "axes", "A", &Manager::Render_Axes_Click);
    actions.Background = Add_Toggle("Background", "background", "B", &Manager::Render_Background_Click);
    actions.Heat = Add_Toggle("Heat", "heat", "H", &Manager::Heat_Click);
    actions.Bloom = Add_Toggle("Bloom", "bloom", "L", &Manager::Bloom_Click);
    actions.Ground = Add_Toggle("Ground", "ground", "G", &Manager::Ground_Plane_Click);
    actions.Target = Add_Toggle("Target", "target", "T", &Manager::Target_Click);
    actions.Statistics = Add_Toggle("Statistics", "statistics", "S", nullptr);
    actions.SetBackground = Add_Action("Set Background...", "set-background", "Ctrl+B", &Manager::Set_Background_Click);
    actions.Pause = Add_Toggle("Pause", "pause", "Space", &Manager::Pause_Click);
    actions.Step = Add_Action("Step", "step", ".", &Manager::Single_Step_Click);
    actions.ResetAnimation = Add_Action("Reset Animation", "reset-animation", "R", &Manager::Reset_Animation_Click);
    actions.ResetCamera = Add_Action("Reset Camera", "reset-camera", "C", &Manager::Reset_Camera_Click);
    actions.Ground->setToolTip("A ground for effects that bounce, splash or lie on the terrain (G)");
    actions.Target->setToolTip("A target for effects that seek or strike one (T)");
    connect(actions.Statistics, &QAction::toggled, this, [this](bool isShown) {
        Show_Counters();
        overlay->setVisible(isShown);
        overlay->raise();
    });
}

QToolBar *DesktopSceneViewForm::Make_Upper_Bar()
{
    auto *bar = new QToolBar(this);
    viewMode = new QComboBox(bar);
    viewMode->setObjectName("viewMode");
    viewMode->addItems(Get_View_Mode_Names());
    viewMode->setToolTip("The quality that the game would play the effect at");
    viewMode->setFocusPolicy(Qt::TabFocus);
    connect(viewMode, &QComboBox::currentIndexChanged, this,
            [this] { Report(&IFlareTrimUIManager::View_Mode_Changed); });
    bar->addWidget(viewMode);
    bar->addSeparator();
    bar->addActions({actions.Axes, actions.Background, actions.Heat, actions.Bloom, actions.Ground, actions.Target});
    bar->addSeparator();
    bar->addAction(actions.SetBackground);
    Set_Text_Beside_Icons(*bar);
    return bar;
}

QToolBar *DesktopSceneViewForm::Make_Lower_Bar()
{
    auto *bar = new QToolBar(this);
    bar->addActions({actions.Pause, actions.Step});
    speed = new QComboBox(bar);
    speed->setObjectName("speed");
    for (const float value : SPEEDS) speed->addItem(QString("%1x").arg(value), value);
    speed->setToolTip("How fast the effect plays");
    speed->setFocusPolicy(Qt::TabFocus);
    Set_Speed(1.0f);
    connect(speed, &QComboBox::currentIndexChanged, this, [this] { Report(&IFlareTrimUIManager::Speed_Changed); });
    bar->addWidget(speed);
    bar->addAction(actions.ResetAnimation);
    bar->addSeparator();
    bar->addActions({actions.ResetCamera, actions.Statistics});
    Set_Text_Beside_Icons(*bar);
    auto *space = new QWidget(bar);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(space);
    counters = new QLabel(bar);
    counters->setObjectName("counters");
    counters->setMargin(6);
    bar->addWidget(counters);
    return bar;
}

void DesktopSceneViewForm::Report(Operation operation)
{
    application.Guard([&] { (manager.*operation)(this, EventArgs()); });
}

ViewPanel &DesktopSceneViewForm::Get_View_Panel()
{
    return *panel;
}

int DesktopSceneViewForm::Get_View_Mode_Index() const
{
    return viewMode->currentIndex();
}

void DesktopSceneViewForm::Set_View_Mode_Index(int index)
{
    const QSignalBlocker blocker(viewMode);
    viewMode->setCurrentIndex(std::clamp(index, 0, viewMode->count() - 1));
}

void DesktopSceneViewForm::Set_Render_Axes(bool enabled)
{
    actions.Axes->setChecked(enabled);
}

void DesktopSceneViewForm::Set_Render_Background(bool enabled)
{
    actions.Background->setChecked(enabled);
}

void DesktopSceneViewForm::Set_Heat(bool enabled)
{
    actions.Heat->setChecked(enabled);
}

void DesktopSceneViewForm::Set_Bloom(bool enabled)
{
    actions.Bloom->setChecked(enabled);
}

void DesktopSceneViewForm::Set_Ground_Plane(bool enabled)
{
    actions.Ground->setChecked(enabled);
}

void DesktopSceneViewForm::Set_Target(bool enabled)
{
    actions.Target->setChecked(enabled);
}

void DesktopSceneViewForm::Set_Paused(bool paused)
{
    actions.Pause->setChecked(paused);
    actions.Pause->setText(paused ? "Play" : "Pause");
    actions.Pause->setIcon(Get_Themed_Icon(paused ? "play" : "pause"));
}

float DesktopSceneViewForm::Get_Speed() const
{
    return speed->currentData().toFloat();
}

void DesktopSceneViewForm::Set_Speed(float value)
{
    const QSignalBlocker blocker(speed);
    int nearest = 0;
    for (int index = 1; index < speed->count(); ++index)
        if (std::abs(SPEEDS[index] - value) < std::abs(SPEEDS[nearest] - value)) nearest = index;
    speed->setCurrentIndex(nearest);
}

void DesktopSceneViewForm::Set_Camera_Distance(int distance)
{
    cameraDistance = distance;
    Show_Counters_Soon();
}

void DesktopSceneViewForm::Set_Particles_Simulated(int count)
{
    particlesSimulated = count;
    Show_Counters_Soon();
}

void DesktopSceneViewForm::Set_Particles_Rendered(int count)
{
    particlesRendered = count;
    Show_Counters_Soon();
}

void DesktopSceneViewForm::Set_Statistics(const PreviewStatistics &value)
{
    statistics = value;
    Show_Counters_Soon();
}

void DesktopSceneViewForm::Show_Counters_Soon()
{
    if (!counterTimer.isActive()) counterTimer.start();
}

void DesktopSceneViewForm::Show_Counters()
{
    counters->setText(QString("Distance %1   Simulated %2   Rendered %3")
                          .arg(cameraDistance)
                          .arg(particlesSimulated)
                          .arg(particlesRendered));
    if (!actions.Statistics->isChecked()) return;
    overlay->setText(Get_Statistics_Text(statistics));
    overlay->adjustSize();
}

void DesktopSceneViewForm::Set_Visible(bool visible)
{
    if (visible && !isVisible()) Report(&IFlareTrimUIManager::View_Form_Activated);
    setVisible(visible);
}

void DesktopSceneViewForm::Bring_To_Front()
{
    if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
}

void DesktopSceneViewForm::closeEvent(QCloseEvent *event)
{
    CancelEventArgs args;
    application.Guard([&] { manager.View_Form_Closing(this, args); });
    event->setAccepted(!args.Cancel);
    if (!args.Cancel) Report(&IFlareTrimUIManager::View_Form_Closed);
}

void DesktopSceneViewForm::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        Report(&IFlareTrimUIManager::View_Form_Activated);
}
