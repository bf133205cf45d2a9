#pragma once

#include <QObject>
#include <functional>

class QDBusVariant;

/// Whether the desktop's programs look dark, as the desktop tells it on the session bus. Desktops without that service,
/// and machines without a bus, know nothing.
class DesktopColorScheme final : public QObject
{
    Q_OBJECT

public:
    explicit DesktopColorScheme(QObject *parent);

    bool Is_Known() const { return known; }
    bool Is_Dark() const { return dark; }
    /// Called when the user changes it.
    void Set_Listener(std::function<void(bool dark)> value) { listener = std::move(value); }

private Q_SLOTS:
    void Setting_Changed(const QString &group, const QString &key, const QDBusVariant &value);

private:
    std::function<void(bool)> listener;
    bool known = false;
    bool dark = false;
};
