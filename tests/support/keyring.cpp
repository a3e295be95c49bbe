#include "tests/support/keyring.h"

#include "tests/support/testpaths.h"

#include <QDir>
#include <QTest>

namespace brimlet {
namespace {

constexpr int kPatience = 10'000;
const QString kPassword = QStringLiteral("brimlet");

QByteArray run(const QString& program, const QStringList& arguments, const QByteArray& input = {}) {
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    return process.waitForFinished(kPatience) && process.exitCode() == 0
               ? process.readAllStandardOutput()
               : QByteArray();
}

QByteArray callSecretService(const QString& path, const QString& method,
                             const QStringList& arguments) {
    return run(QStringLiteral("dbus-send"),
               QStringList{QStringLiteral("--session"), QStringLiteral("--print-reply"),
                           QStringLiteral("--dest=org.freedesktop.secrets"), path, method} +
                   arguments);
}

/// "boolean true" or "boolean false" within; empty while there is no service.
QByteArray lockedProperty() {
    return callSecretService(QStringLiteral("/org/freedesktop/secrets/aliases/default"),
                             QStringLiteral("org.freedesktop.DBus.Properties.Get"),
                             {QStringLiteral("string:org.freedesktop.Secret.Collection"),
                              QStringLiteral("string:Locked")});
}

bool hasOwner(const char* name) {
    return run(QStringLiteral("dbus-send"),
               {QStringLiteral("--session"), QStringLiteral("--print-reply"),
                QStringLiteral("--dest=org.freedesktop.DBus"), QStringLiteral("/"),
                QStringLiteral("org.freedesktop.DBus.GetNameOwner"),
                QStringLiteral("string:%1").arg(QLatin1StringView(name))})
        .contains("string");
}

/// The prompt's window; empty while it is not shown.
QByteArray promptWindow() {
    return run(QStringLiteral("xdotool"),
               {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                QStringLiteral("Unlock Login Keyring")})
        .trimmed();
}

void pressInPrompt(const QString& keys, const QStringList& arguments) {
    QTRY_VERIFY_WITH_TIMEOUT(!promptWindow().isEmpty(), kPatience);
    // A key press may arrive before the dialog has the keyboard; it is then repeated.
    QTRY_VERIFY_WITH_TIMEOUT(
        (run(QStringLiteral("xdotool"), QStringList{keys} + arguments), promptWindow().isEmpty()),
        kPatience);
}

} // namespace

Keyring::Keyring(const QString& service, const QString& account, const QByteArray& value) {
    startUnlocked();
    run(QStringLiteral("secret-tool"),
        {QStringLiteral("store"), QStringLiteral("--label=Token"), QStringLiteral("service"),
         service, QStringLiteral("account"), account},
        value);
    stop();
}

Keyring::~Keyring() {
    stop();
}

void Keyring::start(const QStringList& options, const QByteArray& input) {
    m_daemon.start(
        QStringLiteral("gnome-keyring-daemon"),
        QStringList{QStringLiteral("--foreground"), QStringLiteral("--components=secrets")} +
            options);
    m_daemon.write(input);
    m_daemon.closeWriteChannel();
}

void Keyring::startUnlocked() {
    start({QStringLiteral("--unlock")}, kPassword.toUtf8());
    QTRY_VERIFY_WITH_TIMEOUT(lockedProperty().contains("boolean false"), kPatience);
}

void Keyring::startLocked() {
    start({}, {});
    QTRY_VERIFY_WITH_TIMEOUT(lockedProperty().contains("boolean true"), kPatience);
}

void Keyring::startEmpty() {
    QDir(qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/keyrings")).removeRecursively();
    start({}, {});
    QTRY_VERIFY_WITH_TIMEOUT(hasOwner("org.freedesktop.secrets"), kPatience);
}

void Keyring::stop() {
    m_daemon.terminate();
    m_daemon.waitForFinished(kPatience);
    // Until then the bus refuses the name to the next one.
    QTRY_VERIFY_WITH_TIMEOUT(!hasOwner("org.freedesktop.secrets"), kPatience);
}

void Keyring::unlock() const {
    run(sourcePath(u"tests/support/session/unlock-keyring"), {kPassword});
    QVERIFY(lockedProperty().contains("boolean false"));
}

void Keyring::lock() const {
    callSecretService(QStringLiteral("/org/freedesktop/secrets"),
                      QStringLiteral("org.freedesktop.Secret.Service.Lock"),
                      {QStringLiteral("array:objpath:/org/freedesktop/secrets/collection/login")});
    QVERIFY(lockedProperty().contains("boolean true"));
}

KeyringPrompter::KeyringPrompter() {
    m_prompter.start(QStringLiteral("/usr/libexec/gcr-prompter"), {});
    QTRY_VERIFY_WITH_TIMEOUT(hasOwner("org.gnome.keyring.SystemPrompter"), kPatience);
}

KeyringPrompter::~KeyringPrompter() {
    m_prompter.kill();
    m_prompter.waitForFinished();
}

bool KeyringPrompter::isShown() const {
    return !promptWindow().isEmpty();
}

void KeyringPrompter::giveRightPassword() const {
    pressInPrompt(QStringLiteral("key"),
                  {QStringLiteral("ctrl+a"), QStringLiteral("b"), QStringLiteral("r"),
                   QStringLiteral("i"), QStringLiteral("m"), QStringLiteral("l"),
                   QStringLiteral("e"), QStringLiteral("t"), QStringLiteral("Return")});
}

void KeyringPrompter::dismiss() const {
    pressInPrompt(QStringLiteral("key"), {QStringLiteral("Escape")});
}

} // namespace brimlet
