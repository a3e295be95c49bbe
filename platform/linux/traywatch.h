#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>

namespace brimlet {

/// A call whose reply says whether a StatusNotifier host shows icons.
[[nodiscard]] QDBusMessage notifierHostQuery();

/// Waits for a tray of either kind: a StatusNotifier host on the session bus or an XEmbed tray on
/// the X server. Qt chooses between them once, when its first tray icon is made, so no icon may be
/// made before `found`.
class TrayWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayWatch();

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

Q_SIGNALS:
    /// A tray is running. Emitted once, never before the main loop runs.
    void found();

private Q_SLOTS:
    void checkNotifier();

private:
    void checkXEmbed();
    void emitFound();

    QDBusServiceWatcher m_notifierWatcher;
    bool m_isFound = false;
};

} // namespace brimlet
