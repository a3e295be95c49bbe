#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>

namespace brimlet {

// Calls whose reply says, as a boolean, whether the session is locked or its screen saver active.

[[nodiscard]] QDBusMessage lockedHintQuery(); ///< Of logind, on the system bus.
[[nodiscard]] QDBusMessage screenSaverQuery();
[[nodiscard]] QDBusMessage gnomeScreenSaverQuery();

/// Whether one service says that the session is locked. False while it is not running or does not
/// answer.
class LockSource final : public QObject {
    Q_OBJECT

public:
    /// `query` is a call whose reply is the state, as a boolean. It is sent at the start, whenever
    /// the service starts or ends, and at each of its signals of that name whose first arguments
    /// are `arguments`.
    LockSource(const QDBusConnection& bus, const QDBusMessage& query,
               const QString& signalInterface, const QString& signalName,
               const QStringList& arguments = {});

    [[nodiscard]] bool isLocked() const { return m_isLocked; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void read();

private:
    QDBusConnection m_bus;
    QDBusMessage m_query;
    QDBusServiceWatcher m_watcher;
    bool m_isLocked = false;
};

/// Whether the user's session is locked or its screen saver is active, according to logind, the
/// desktop's screen saver, or GNOME's. Unlocked until one of them has answered, and without a bus.
class SessionLock final : public QObject {
    Q_OBJECT

public:
    SessionLock();

    [[nodiscard]] bool isLocked() const;

Q_SIGNALS:
    /// Perhaps to an equal value.
    void changed();

private:
    LockSource m_logind;
    LockSource m_screenSaver;
    LockSource m_gnome;
};

} // namespace brimlet
