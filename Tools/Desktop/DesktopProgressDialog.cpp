#include "Desktop/DesktopProgressDialog.h"

#include "Code/Application.h"
#include "Desktop/DesktopApplication.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>

DesktopProgressDialog::DesktopProgressDialog(DesktopApplication &owner, QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint), application(owner),
      name(new QLabel("Looking for files", this)), count(new QLabel(this)), bar(new QProgressBar(this))
{
    setObjectName("progressDialog");
    count->setObjectName("progressCount");
    name->setTextFormat(Qt::PlainText);
    name->setMinimumWidth(name->fontMetrics().averageCharWidth() * 48);
    count->setAlignment(Qt::AlignRight);
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    auto *line = new QHBoxLayout;
    line->addWidget(name, 1);
    line->addWidget(count);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 16, 18, 18);
    layout->setSpacing(10);
    layout->addLayout(line);
    layout->addWidget(bar);
}

void DesktopProgressDialog::Set_Title(const std::string &title)
{
    setWindowTitle(QString::fromStdString(title));
}

void DesktopProgressDialog::Set_Step_Count(int steps)
{
    stepCount = steps;
    bar->setRange(0, std::max(steps, 1));
}

void DesktopProgressDialog::Set_Steps(int done)
{
    bar->setValue(done);
    count->setText(QString("%1 of %2").arg(std::min(done + 1, stepCount)).arg(stepCount));
}

void DesktopProgressDialog::Set_Step_Name(const std::string &text)
{
    if (text.empty()) return;
    const int width = std::max(name->width(), name->minimumWidth());
    name->setText(name->fontMetrics().elidedText(QString::fromStdString(text), Qt::ElideMiddle, width));
}

void DesktopProgressDialog::Done(bool success)
{
    done(success ? Accepted : Rejected);
}

DialogResult DesktopProgressDialog::Show_Dialog()
{
    const int code = exec();
    // Not every desktop gives the keyboard back to the window below.
    if (parentWidget()) parentWidget()->window()->activateWindow();
    application.Rethrow();
    return code == Accepted ? DialogResult::OK : DialogResult::Cancel;
}
