#pragma once

#include "Code/ProgressDialog.h"

#include <QDialog>

class DesktopApplication;
class QLabel;
class QProgressBar;

/// Can't be closed by the user: the job that it shows can't be stopped.
class DesktopProgressDialog final : public QDialog, public ProgressDialog
{
public:
    DesktopProgressDialog(DesktopApplication &application, QWidget *parent);

    void Set_Title(const std::string &title) override;
    void Set_Step_Count(int count) override;
    void Set_Steps(int done) override;
    void Set_Step_Name(const std::string &name) override;
    void Done(bool success) override;
    DialogResult Show_Dialog() override;

    void reject() override {}

private:
    DesktopApplication &application;
    QLabel *name;
    QLabel *count;
    QProgressBar *bar;
    int stepCount = 0;
};
