#pragma once

#include <QSettings>

/// What the windows remember of a user's choices.
inline QSettings Open_User_Settings()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, "FlareTrim", "FlareTrim");
}
