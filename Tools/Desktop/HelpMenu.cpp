#include "Desktop/HelpMenu.h"

#include "Desktop/ThemedIcon.h"

#include <QAction>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

#include <zlib.h>

namespace
{

/// Beside an installed program, or in the tree that it was built in. Empty when it isn't there.
QString Find_Document(const QString &name)
{
    QDir directory(QCoreApplication::applicationDirPath());
    do {
        for (const char *folder : {"share/flaretrim/docs", "docs"}) {
            const QString path = directory.filePath(QString("%1/%2").arg(folder, name));
            if (QFileInfo::exists(path)) return path;
        }
    } while (directory.cdUp());
    return {};
}

void Show_Document(const QString &title, const QString &path, QWidget &parent)
{
    auto *window = new QDialog(&parent, Qt::Window);
    window->setObjectName("document");
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(title + " - Flare Trim");
    window->resize(900, 760);
    auto *browser = new QTextBrowser(window);
    browser->setFrameShape(QFrame::NoFrame);
    browser->setOpenExternalLinks(true);
    browser->setSource(QUrl::fromLocalFile(path), QTextDocument::MarkdownResource);
    browser->document()->setDocumentMargin(24);
    auto *layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(browser);
    window->show();
}

/// A document that isn't there leaves its entry out.
void Add_Document(QMenu &menu, QWidget &window, const QString &text, const QString &name, const QKeySequence &keys)
{
    const QString path = Find_Document(name);
    if (path.isEmpty()) return;
    QAction *action = menu.addAction(text);
    action->setShortcut(keys);
    const QString title = QString(text).remove('&');
    QObject::connect(action, &QAction::triggered, &window,
                     [&window, title, path] { Show_Document(title, path, window); });
}

void Show_About_Box(QWidget &window)
{
    QMessageBox box(QMessageBox::NoIcon, "About Flare Trim", QString("Flare Trim %1").arg(FLARE_TRIM_VERSION),
                    QMessageBox::Ok, &window);
    box.setObjectName("aboutBox");
    box.setIconPixmap(Get_Program_Icon().pixmap(64));
    box.setInformativeText(QString("Trims the particle effects of a game: level of detail and heat, layer by layer or "
                                   "over many effects at once, with the effect playing beside it.\n\n"
                                   "Qt %1, zlib %2")
                               .arg(qVersion(), zlibVersion()));
    box.exec();
}

} // namespace

void Fill_Help_Menu(QMenu &menu, QWidget &window)
{
    Add_Document(menu, window, "&User Guide", "user-guide.md", QKeySequence("F1"));
    Add_Document(menu, window, "&Plugin Reference", "plugin-reference.md", {});
    Add_Document(menu, window, "Adding a Plugin &Kind", "adding-a-plugin.md", {});
    menu.addSeparator();
    QObject::connect(menu.addAction("&About Flare Trim"), &QAction::triggered, &window,
                     [&window] { Show_About_Box(window); });
}
