#include "Desktop/DesktopApplication.h"

#include "Desktop/DesktopMainForm.h"
#include "Desktop/DesktopProgressDialog.h"
#include "Desktop/DesktopSceneViewForm.h"
#include "Desktop/DesktopTimer.h"
#include "Desktop/DesktopWorker.h"
#include "Desktop/Theme.h"
#include "Desktop/ThemedIcon.h"
#include "MKPlatform/Files.h"

#include <QApplication>
#include <QCursor>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <qguiapplication_platform.h>

/// A static library's drawings are linked when they are asked for.
static void Load_Resources()
{
    Q_INIT_RESOURCE(Desktop);
}

namespace
{

QMessageBox::StandardButtons Get_Buttons(MessageBoxButtons buttons)
{
    switch (buttons) {
    case MessageBoxButtons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case MessageBoxButtons::RetryCancel: return QMessageBox::Retry | QMessageBox::Cancel;
    case MessageBoxButtons::OK: break;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon Get_Icon(MessageBoxIcon icon)
{
    switch (icon) {
    case MessageBoxIcon::Error: return QMessageBox::Critical;
    case MessageBoxIcon::Question: return QMessageBox::Question;
    case MessageBoxIcon::None: break;
    }
    return QMessageBox::NoIcon;
}

/// A box that ended without a button gives what changes nothing.
DialogResult Get_Result(int button, MessageBoxButtons buttons)
{
    switch (button) {
    case QMessageBox::Yes: return DialogResult::Yes;
    case QMessageBox::No: return DialogResult::No;
    case QMessageBox::Retry: return DialogResult::Retry;
    case QMessageBox::Cancel: return DialogResult::Cancel;
    case QMessageBox::Ok: return DialogResult::OK;
    default: break;
    }
    switch (buttons) {
    case MessageBoxButtons::YesNo: return DialogResult::No;
    case MessageBoxButtons::RetryCancel: return DialogResult::Cancel;
    case MessageBoxButtons::OK: break;
    }
    return DialogResult::OK;
}

/// From "label|*.a;*.b|label|*.c", as the core has it, to Qt's "label (*.a *.b);;label (*.c)".
QString Get_Name_Filter(const std::string &filter)
{
    const QStringList parts = QString::fromStdString(filter).split('|');
    QStringList filters;
    for (qsizetype index = 0; index + 1 < parts.size(); index += 2) {
        const QString label = parts[index].section('(', 0, 0).trimmed();
        filters << label + " (" + QString(parts[index + 1]).replace(';', ' ') + ")";
    }
    return filters.join(";;");
}

QString To_Dialog_Path(const std::string &path)
{
    return QString::fromStdString(MKPlatform::To_System_Path(path));
}

} // namespace

DesktopApplication::DesktopApplication(int &argc, char **argv)
{
    QApplication::setApplicationName("FlareTrim");
    QApplication::setOrganizationName("FlareTrim");
    // No display name: desktops put it behind every title, and captions stand as they are.
    QApplication::setDesktopFileName("flaretrim");
    // The preview draws into a window of X11, which desktops of the other kind have too.
    if (qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    qt = std::make_unique<QApplication>(argc, argv);
    // Numbers in files and commands have a point, whatever the desktop's language.
    setlocale(LC_NUMERIC, "C");
    QLocale::setDefault(QLocale::c());
    QApplication::setQuitOnLastWindowClosed(false);
    Load_Resources();
    theme = std::make_unique<Theme>();
    QApplication::setWindowIcon(Get_Program_Icon());
}

DesktopApplication::~DesktopApplication() = default;

void *DesktopApplication::Get_X_Display() const
{
    const auto *x = qt->nativeInterface<QNativeInterface::QX11Application>();
    return x ? x->display() : nullptr;
}

void DesktopApplication::Fail(std::exception_ptr exception)
{
    if (!failure) failure = exception;
    Leave();
    // Ahead of the main loop, a dialog has the only one.
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (!isRunning && dialog) dialog->done(QDialog::Rejected);
}

void DesktopApplication::Leave()
{
    // Without a loop, Qt would end the next one that starts.
    if (isRunning) QCoreApplication::exit();
}

void DesktopApplication::Rethrow()
{
    if (failure) std::rethrow_exception(std::exchange(failure, nullptr));
}

QWidget *DesktopApplication::Get_Dialog_Parent() const
{
    if (QWidget *modal = QApplication::activeModalWidget()) return modal;
    QWidget *active = QApplication::activeWindow();
    return active && active->isVisible() ? active : mainForm;
}

DialogResult DesktopApplication::Show_Message_Box(const std::string &text, const std::string &caption,
                                                  MessageBoxButtons buttons, MessageBoxIcon icon)
{
    QWidget *parent = Get_Dialog_Parent();
    QMessageBox box(Get_Icon(icon), QString::fromStdString(caption), QString::fromStdString(text), Get_Buttons(buttons),
                    parent);
    box.setTextFormat(Qt::PlainText);
    box.setObjectName("messageBox");
    // Enter does nothing that can't be taken back.
    if (buttons == MessageBoxButtons::YesNo) box.setDefaultButton(QMessageBox::No);
    for (QAbstractButton *button : box.buttons()) button->setIcon(QIcon()); // some styles have icons for some of them
    const DialogResult result = Get_Result(box.exec(), buttons);
    // Not every desktop gives the keyboard back to the window below.
    if (parent) parent->window()->activateWindow();
    return result;
}

DialogResult DesktopApplication::Show_Folder_Picker(FolderPicker &picker)
{
    const QString folder = QFileDialog::getExistingDirectory(Get_Dialog_Parent(), "Choose the working directory",
                                                             To_Dialog_Path(picker.SelectedPath));
    if (folder.isEmpty()) return DialogResult::Cancel;
    picker.SelectedPath = folder.toStdString();
    return DialogResult::OK;
}

DialogResult DesktopApplication::Show_File_Picker(FilePicker &picker)
{
    QFileDialog dialog(Get_Dialog_Parent(), "Choose a picture", To_Dialog_Path(picker.InitialDirectory),
                       Get_Name_Filter(picker.Filter));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(QString::fromStdString(picker.DefaultExt));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return DialogResult::Cancel;
    picker.FileName = dialog.selectedFiles().constFirst().toStdString();
    return DialogResult::OK;
}

std::unique_ptr<UITimer> DesktopApplication::Create_Timer()
{
    return std::make_unique<DesktopTimer>(*this);
}

std::unique_ptr<BackgroundWorker> DesktopApplication::Create_Background_Worker()
{
    return std::make_unique<DesktopWorker>(*this);
}

std::unique_ptr<ProgressDialog> DesktopApplication::Create_Progress_Dialog()
{
    return std::make_unique<DesktopProgressDialog>(*this, Get_Dialog_Parent());
}

std::unique_ptr<SceneViewForm> DesktopApplication::Create_Scene_View_Form(IFlareTrimUIManager &manager)
{
    return std::make_unique<DesktopSceneViewForm>(*this, manager);
}

void DesktopApplication::Begin_Wait(const std::string &what)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    if (mainForm) mainForm->Show_Wait(QString::fromStdString(what));
}

void DesktopApplication::End_Wait()
{
    QApplication::restoreOverrideCursor();
    if (mainForm) mainForm->Show_Wait(QString());
}

void DesktopApplication::Do_Events()
{
    QCoreApplication::processEvents();
    Rethrow();
}

void DesktopApplication::Run(IFlareTrimUIManager &manager)
{
    DesktopMainForm form(*this, manager);
    form.Open();
    if (session) QTimer::singleShot(0, &form, [this, &form] { Guard([&] { session(form); }); });
    isRunning = true;
    QApplication::exec();
    isRunning = false;
    Rethrow();
}

Point DesktopApplication::Get_Cursor_Position() const
{
    const QPoint position = QCursor::pos();
    return {position.x(), position.y()};
}

int DesktopApplication::Get_Mouse_Buttons() const
{
    const Qt::MouseButtons held = QGuiApplication::mouseButtons();
    return (held & Qt::LeftButton ? MOUSE_LEFT : MOUSE_NONE) | (held & Qt::RightButton ? MOUSE_RIGHT : MOUSE_NONE) |
           (held & ~(Qt::LeftButton | Qt::RightButton) ? MOUSE_OTHER : MOUSE_NONE);
}
