#include "FlareTrim/ScreenshotSession.h"

#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Desktop/DesktopApplication.h"
#include "Desktop/DesktopMainForm.h"
#include "Desktop/DesktopSceneViewForm.h"
#include "Desktop/ParticleTableModel.h"
#include "Desktop/ParticleTableView.h"
#include "Desktop/SelectionPanel.h"
#include "Desktop/Theme.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <cstdio>
#include <set>

namespace
{

constexpr int SETTLE_MILLISECONDS = 300;
constexpr int PLAY_MILLISECONDS = 2500; ///< until an effect looks as it does most of its time
constexpr size_t EDITED_EFFECTS = 5;
constexpr int CLOSE_MODE = 4;
constexpr int FAR_MODE = 0;

/// Lets timers, queued updates and the window system come round.
void Wait(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

void Press(QWidget &widget, int key, const QString &text = QString())
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&widget, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&widget, &release);
}

void Type(QLineEdit &line, const QString &text)
{
    line.setFocus();
    line.selectAll();
    for (const QChar character : text) Press(line, 0, QString(character));
    Press(line, Qt::Key_Return, "\r");
}

} // namespace

/// Nobody is there to answer: a box is a failure, and the session goes on to its end.
void ScreenshotSession::Answer_Boxes()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box) return;
    hadBox = true;
    std::fprintf(stderr, "%s: %s\n", qPrintable(box->windowTitle()), qPrintable(box->text()));
    QAbstractButton *cancel = box->button(QMessageBox::Cancel);
    (cancel ? cancel : box->buttons().constFirst())->click();
}

bool ScreenshotSession::Check(bool holds, const char *what) const
{
    if (!holds) std::fprintf(stderr, "The session failed: %s\n", what);
    return holds;
}

bool ScreenshotSession::Shoot(QWidget &widget, const char *name)
{
    Wait(SETTLE_MILLISECONDS);
    const QString path = QDir(QString::fromStdString(directory)).filePath(QString("%1.png").arg(name));
    const bool hasScreen = QGuiApplication::platformName() == "xcb";
    const QRect place = widget.geometry();
    // What a graphics device draws is on the screen alone.
    const QPixmap picture =
        hasScreen ? widget.screen()->grabWindow(0, place.x(), place.y(), place.width(), place.height()) : widget.grab();
    if (!Check(picture.save(path, "PNG", 0), "a picture can't be written")) return false;
    std::printf("%s\n", qPrintable(path));
    return true;
}

bool ScreenshotSession::Run()
{
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &form, [this] { Answer_Boxes(); });
    watch.start(SETTLE_MILLISECONDS);
    QDir().mkpath(QString::fromStdString(directory));
    form.Set_Location({0, 0});
    form.Set_Size({1500, 860});
    form.Set_Preview(false);
    form.activateWindow();
    const bool succeeded =
        Shoot(form, "start") && Scan() && Find_Layers() && Edit() && Look() && Save() && Show_Looks();
    form.close();
    return succeeded && !hadBox;
}

bool ScreenshotSession::Scan()
{
    form.Get_Actions().Scan->trigger();
    return Check(form.Get_Model().Get_Count() > 0, "the scan found nothing") && Shoot(form, "scanned");
}

/// One smoke layer of each of the first effects that have one.
bool ScreenshotSession::Find_Layers()
{
    Type(form.Get_Filter_Field(), "smoke");
    if (!Shoot(form, "filtered")) return false;
    std::set<const EmitterData *> effects;
    for (int row = 0; row < form.Get_Model().Get_Count() && layers.size() < EDITED_EFFECTS; ++row) {
        const bool isShown = form.Get_Model().Get_Search_Text(row).contains("smoke");
        if (isShown && effects.insert(&form.Get_Model().Get_Row(row)->Get_EmitterData()).second) layers.push_back(row);
    }
    if (!Check(layers.size() == EDITED_EFFECTS, "there are no five effects with smoke")) return false;
    form.Get_Table().Select_Source_Rows(layers);
    form.Get_Table().Set_Current_Source_Row(layers[1]);
    form.Get_Table().setFocus();
    return Shoot(form, "selected");
}

bool ScreenshotSession::Edit()
{
    auto *level = form.Get_Selection_Panel().findChild<QComboBox *>("GlobalLOD");
    auto *least = form.Get_Selection_Panel().findChild<QLineEdit *>("MinimumDynamicLOD");
    auto *farDistance = form.Get_Selection_Panel().findChild<QLineEdit *>("DynamicLODFarDistance");
    Type(*least, "0.1");
    Type(*farDistance, "900");
    level->setFocus();
    level->setCurrentText("High");
    Q_EMIT level->activated(level->currentIndex());
    for (const int row : layers) {
        const ParticleData &data = *form.Get_Model().Get_Row(row);
        if (!Check(data.Get_MinimumDynamicLOD() == 0.1f && data.Get_DynamicLODFarDistance() == 900.0f,
                   "an edit didn't reach the whole selection"))
            return false;
    }
    form.Get_Table().setFocus();
    return Shoot(form, "edited");
}

/// The same effect at full detail and as it plays far away.
bool ScreenshotSession::Look()
{
    if (!form.Get_Actions().Preview->isEnabled()) {
        std::printf("No preview: there is no graphics device\n");
        return true;
    }
    form.Set_Preview(true);
    DesktopSceneViewForm &view = *application.Get_View_Form();
    view.Set_Location({60, 40});
    view.Set_Size({960, 720});
    auto *modes = view.findChild<QComboBox *>("viewMode");
    const struct
    {
        int mode;
        const char *name;
    } stations[] = {{CLOSE_MODE, "preview-close"}, {FAR_MODE, "preview-far"}};
    for (const auto &[mode, name] : stations) {
        modes->setCurrentIndex(mode);
        view.Get_Actions().ResetAnimation->trigger();
        if (!view.Get_Actions().Statistics->isChecked()) view.Get_Actions().Statistics->trigger();
        view.raise();
        Wait(PLAY_MILLISECONDS);
        if (!Shoot(view, name)) return false;
    }
    modes->setCurrentIndex(CLOSE_MODE);
    form.Set_Preview(false);
    return true;
}

bool ScreenshotSession::Save()
{
    form.Get_Filter_Field().clear();
    form.Get_Actions().SaveAll->trigger();
    return Check(!form.isWindowModified() || !form.Get_Actions().SaveAll->isEnabled(), "not all was saved") &&
           Shoot(form, "saved");
}

bool ScreenshotSession::Show_Looks()
{
    Theme &theme = application.Get_Theme();
    const Theme::Mode before = theme.Get_Mode();
    theme.Set_Mode(Theme::Mode::Dark);
    const bool shot = Shoot(form, "dark");
    theme.Set_Mode(before);
    return shot;
}
