#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>
#include <QObject>

namespace brimlet {

/// Waits for a bar that shows status items, of either kind: a StatusNotifier host on the session
/// bus or an XEmbed tray on the X server. Qt looks for them at the first use of its tray icon and
/// never again, so that has to wait until this has found one.
class TrayWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayWatch();
    ~TrayWatch() override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

Q_SIGNALS:
    /// There is a bar. Once, and never before the main loop runs.
    void found();

private Q_SLOTS:
    void askNotifier();

private:
    void askTray();
    void tell();

    QDBusServiceWatcher m_notifierWatcher;
    bool m_isTold = false;
};

} // namespace brimlet
