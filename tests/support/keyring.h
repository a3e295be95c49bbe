#pragma once

#include <QByteArray>
#include <QProcess>

namespace brimlet {

/// The session's gnome-keyring with one collection, "login", for sessions that start none.
/// Every wait fails the test after ten seconds.
class Keyring final {
public:
    /// Creates the collection with one item in it, and ends the service again.
    Keyring(const QString& service, const QString& account, const QByteArray& value);
    ~Keyring();
    Keyring(const Keyring&) = delete;
    Keyring& operator=(const Keyring&) = delete;

    void startUnlocked();
    void startLocked();
    /// Without the collection, which is deleted.
    void startEmpty();
    void stop();
    /// Without a prompt.
    void unlock() const;
    void lock() const;

private:
    void start(const QStringList& options, const QByteArray& input);

    QProcess m_daemon;
};

/// The desktop's dialog that asks for a keyring's password, answered by key presses.
class KeyringPrompter final {
public:
    KeyringPrompter();
    ~KeyringPrompter();
    KeyringPrompter(const KeyringPrompter&) = delete;
    KeyringPrompter& operator=(const KeyringPrompter&) = delete;

    [[nodiscard]] bool isShown() const;
    /// Both wait until the dialog is shown, and then until it is gone.
    void giveRightPassword() const;
    void dismiss() const;

private:
    QProcess m_prompter;
};

} // namespace brimlet
