#include "Tools/Desktop/DesktopFixture.h"

#include "Code/ParticleData.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

namespace ToolTest
{

namespace
{

/// Qt's objects go before its statics do.
class Desktop final : public testing::Environment
{
public:
    Desktop()
    {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(settings.Get_Path()));
        application = std::make_unique<DesktopApplication>(count, arguments);
    }
    void TearDown() override { application.reset(); }

    std::unique_ptr<DesktopApplication> application;

private:
    MKTest::TempDirectory settings;
    int count = 1;
    char name[8] = "desktop";
    char *arguments[2] = {name, nullptr};
};

} // namespace

DesktopApplication &Get_Desktop()
{
    static auto *desktop = static_cast<Desktop *>(testing::AddGlobalTestEnvironment(new Desktop));
    return *desktop->application;
}

void Activate(QWidget &window)
{
    window.activateWindow();
    // The off-screen platform doesn't do as it is asked once there is a window inside of a window.
    if (QGuiApplication::platformName() == "offscreen") QApplication::setActiveWindow(&window);
    if (!QTest::qWaitFor([&window] { return window.isActiveWindow(); }))
        throw std::runtime_error("the window doesn't become active");
}

void Let_Events_Run(int milliseconds)
{
    QTest::qWait(milliseconds);
    QCoreApplication::processEvents();
}

BoxAnswers::BoxAnswers(QString text) : button(std::move(text))
{
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { Look(); });
    timer.start(5);
}

void BoxAnswers::Look()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box) return;
    for (QAbstractButton *candidate : box->buttons()) {
        if (candidate->text().remove('&') != button) continue;
        texts.push_back(box->text().toStdString());
        QTest::mouseClick(candidate, Qt::LeftButton);
        return;
    }
}

DesktopTool::DesktopTool(std::unique_ptr<PreviewDriver> preview)
    : application(Get_Desktop()), core(std::make_unique<ApplicationCore>(std::move(preview)))
{
    Bring_Up(*core);
}

DesktopTool::~DesktopTool()
{
    form.reset();
    core.reset();
}

void DesktopTool::Open()
{
    form = std::make_unique<DesktopMainForm>(application, *core);
    form->Open();
    Activate(*form);
}

void DesktopTool::Scan()
{
    Activate(*form);
    QTest::keyClick(form.get(), Qt::Key_F5);
    Let_Events_Run();
}

QModelIndex DesktopTool::Cell(int shownRow, const char *property)
{
    return Table().model()->index(shownRow, Find_Particle_Column(property));
}

QPoint DesktopTool::Center(int shownRow, const char *property)
{
    Table().scrollTo(Cell(shownRow, property));
    return Table().visualRect(Cell(shownRow, property)).center();
}

void DesktopTool::Click(int shownRow, const char *property, Qt::KeyboardModifiers modifiers)
{
    QTest::mouseClick(Table().viewport(), Qt::LeftButton, modifiers, Center(shownRow, property));
    Let_Events_Run();
}

void DesktopTool::Press_Key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QWidget *focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : form.get(), key, modifiers);
    Let_Events_Run();
}

void DesktopTool::Type(const QString &text)
{
    for (const QChar character : text) {
        QWidget *focus = QApplication::focusWidget();
        if (!focus) throw std::runtime_error("nothing has the keyboard");
        if (character == '\r')
            QTest::keyClick(focus, Qt::Key_Return);
        else
            QTest::keyClick(focus, character.toLatin1());
    }
    Let_Events_Run();
}

std::vector<std::string> DesktopTool::Selected_Names()
{
    std::vector<std::string> names;
    for (const auto &row : form->Get_Particle_Grid_View().Get_Selected_Rows()) names.push_back(row->Get_ParticleName());
    return names;
}

QString DesktopTool::Label_Text(const char *name)
{
    return form->findChild<QLabel *>(name)->text();
}

} // namespace ToolTest
