#include "Desktop/DesktopColorScheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariant>

namespace
{

constexpr const char *SERVICE = "org.freedesktop.portal.Desktop";
constexpr const char *OBJECT = "/org/freedesktop/portal/desktop";
constexpr const char *SETTINGS = "org.freedesktop.portal.Settings";
constexpr const char *GROUP = "org.freedesktop.appearance";
constexpr const char *KEY = "color-scheme";
constexpr uint PREFERS_DARK = 1;
constexpr int ANSWER_MILLISECONDS = 200; ///< the window doesn't wait longer for a bus that hangs

/// The service wraps the number once or twice.
QVariant Unwrapped(QVariant value)
{
    while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

DesktopColorScheme::DesktopColorScheme(QObject *parent) : QObject(parent)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    QDBusMessage question = QDBusMessage::createMethodCall(SERVICE, OBJECT, SETTINGS, "Read");
    question << QString(GROUP) << QString(KEY);
    const QDBusMessage answer = bus.call(question, QDBus::Block, ANSWER_MILLISECONDS);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return;
    known = true;
    dark = Unwrapped(answer.arguments().constFirst()).toUInt() == PREFERS_DARK;
    bus.connect(SERVICE, OBJECT, SETTINGS, "SettingChanged", this,
                SLOT(Setting_Changed(QString, QString, QDBusVariant)));
}

void DesktopColorScheme::Setting_Changed(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group != GROUP || key != KEY) return;
    dark = Unwrapped(value.variant()).toUInt() == PREFERS_DARK;
    if (listener) listener(dark);
}
