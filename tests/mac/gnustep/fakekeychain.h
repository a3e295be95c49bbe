#pragma once

#include <QByteArray>
#include <QString>

/// A keychain in memory behind the functions of CoreFoundation and Security that are declared in
/// tests/mac/include. It counts references, and refuses what the real functions refuse. Any thread.
namespace brimlet::fakekeychain {

enum class State {
    Unlocked,
    Locked,           ///< And nobody may be asked to unlock it.
    Cancelled,        ///< Each dialog is cancelled.
    DialogUnanswered, ///< A call blocks until the state changes.
    WrongType,        ///< What is found is no data.
    Broken,           ///< Each call fails in a way of its own.
};

/// Empties and unlocks it.
void reset();
void setState(State state);
/// Unlocks it, and reports that to whoever has registered for it. Main thread only.
void unlock();
/// Whether anybody has.
[[nodiscard]] bool isUnlockObserved();
[[nodiscard]] qsizetype count(const QString& service, const QString& account);
/// Adds an item that the program under test has not written.
void put(const QString& service, const QString& account, const QByteArray& value);

/// The objects of CoreFoundation that have been made and not released.
[[nodiscard]] int liveObjects();

} // namespace brimlet::fakekeychain
