#include "platform/linux/linuxworkspace.h"

#include "platform/linux/buscall.h"
#include "platform/linux/unresponsivebuses.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QProcess>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace brimlet {
namespace {

const QString logindName = QStringLiteral("org.freedesktop.login1");
const QString logindPath = QStringLiteral("/org/freedesktop/login1");
const QString managerInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString mutterName = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString mutterPath = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const QString powerSaveMode = QStringLiteral("PowerSaveMode");

/// The value of a sysfs attribute, trimmed; empty when it cannot be read.
[[nodiscard]] QByteArray attribute(const std::filesystem::path& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

/// The folders of the built-in panels' connectors, in the order of their names. A part of each
/// poll, so without QDir, whose name filters are regular expressions.
[[nodiscard]] std::vector<std::filesystem::path> panelConnectors(const QString& drmFolder) {
    std::vector<std::filesystem::path> connectors;
    std::error_code error;
    std::filesystem::directory_iterator entry(QFile::encodeName(drmFolder).toStdString(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.starts_with("card") && name.find("-eDP-") != std::string::npos) {
            connectors.push_back(entry->path());
        }
    }
    std::sort(connectors.begin(), connectors.end());
    return connectors;
}

/// Whether there is a built-in panel and it is not lit. A laptop with two graphics cards has a
/// panel connector on each; the unused one reports "disconnected" and is skipped.
[[nodiscard]] bool isPanelOff(const QString& drmFolder) {
    bool hasPanel = false;
    for (const auto& connector : panelConnectors(drmFolder)) {
        const QByteArray power = attribute(connector / "dpms");
        const QByteArray status = attribute(connector / "status");
        if (power.isEmpty() || status == "disconnected") {
            continue;
        }
        if (power == "On") {
            return false;
        }
        hasPanel = true;
    }
    return hasPanel;
}

constexpr std::chrono::seconds kLongestDelay(2);

void startBrowser(const QString& address, const QString& activationToken) {
    QProcessEnvironment environment = childEnvironment();
    if (!activationToken.isEmpty()) {
        environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), activationToken);
    }
    QProcess opener;
    opener.setProgram(QStringLiteral("xdg-open"));
    opener.setArguments({address});
    opener.setProcessEnvironment(environment);
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    opener.startDetached();
}

} // namespace

QDBusMessage suspendQuery() {
    return propertyQuery(logindName, logindPath, managerInterface,
                         QStringLiteral("PreparingForSleep"));
}

QDBusMessage powerSaveModeQuery() {
    return propertyQuery(mutterName, mutterPath, mutterName, powerSaveMode);
}

QList<PanelFacts> panelFacts(const QString& drmFolder) {
    QList<PanelFacts> panels;
    for (const auto& connector : panelConnectors(drmFolder)) {
        panels.push_back({QString::fromStdString(connector.filename()),
                          attribute(connector / "status"),
                          attribute(connector / "modes").split('\n').constFirst(),
                          attribute(connector / "dpms")});
    }
    return panels;
}

LinuxWorkspace::LinuxWorkspace(Clock& clock, QString drmFolder)
    : m_clock(clock)
    , m_drmFolder(std::move(drmFolder))
    , m_logindWatcher(logindName, QDBusConnection::systemBus(),
                      QDBusServiceWatcher::WatchForOwnerChange)
    , m_mutterWatcher(mutterName, QDBusConnection::sessionBus(),
                      QDBusServiceWatcher::WatchForRegistration |
                          QDBusServiceWatcher::WatchForUnregistration) {
    QDBusConnection::systemBus().connect(logindName, logindPath, managerInterface,
                                         QStringLiteral("PrepareForSleep"), this,
                                         SLOT(prepareForSleep(bool)));
    QDBusConnection::sessionBus().connect(mutterName, mutterPath, propertiesInterface,
                                          QStringLiteral("PropertiesChanged"), this,
                                          SLOT(mutterChanged(QString, QVariantMap, QStringList)));
    connect(&m_logindWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this] { prepareForSleep(false); });
    connect(&m_mutterWatcher, &QDBusServiceWatcher::serviceRegistered, this,
            &LinuxWorkspace::readMutterMode);
    connect(&m_mutterWatcher, &QDBusServiceWatcher::serviceUnregistered, this,
            [this] { setMutterMode(0); });
    readMutterMode();
    takeInhibitor();
}

ObserverToken LinuxWorkspace::observeScreensDidSleep(std::function<void()> block) {
    return m_sleepObservers.add(std::move(block));
}

ObserverToken LinuxWorkspace::observeScreensDidWake(std::function<void()> block) {
    return m_wakeObservers.add(std::move(block));
}

void LinuxWorkspace::open(const Url& url) {
    const QString& text = url.absoluteString();
    if (!url.scheme() || text.startsWith(u'-')) {
        return;
    }
    if (m_requestToken) {
        m_requestToken([text](const QString& token) { startBrowser(text, token); });
    } else {
        startBrowser(text, {});
    }
}

void LinuxWorkspace::checkPanelPower() {
    m_isPanelOff = isPanelOff(m_drmFolder);
    update();
}

void LinuxWorkspace::prepareForSleep(bool isStarting) {
    m_isMachineAsleep = isStarting;
    update();
    if (!isStarting) {
        endDelay();
        takeInhibitor();
    } else if (m_inhibitor) {
        // From here on only the tasks that the observers started hold it.
        m_delaying = std::exchange(m_inhibitor, nullptr);
        m_delayLimit = m_clock.repeat(kLongestDelay, [this] { endDelay(); });
    }
}

void LinuxWorkspace::endDelay() {
    if (const auto held = m_delaying.lock()) {
        *held = QDBusUnixFileDescriptor();
    }
    m_delayLimit.reset();
}

void LinuxWorkspace::takeInhibitor() {
    auto request = QDBusMessage::createMethodCall(logindName, logindPath, managerInterface,
                                                  QStringLiteral("Inhibit"));
    request.setArguments({QStringLiteral("sleep"), QStringLiteral("Brimlet"),
                          QStringLiteral("Report that no ads are shown during sleep"),
                          QStringLiteral("delay")});
    request.setAutoStartService(false);
    auto* const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(request), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply(*watcher);
        if (reply.isValid() && !m_isMachineAsleep) {
            m_inhibitor = std::make_shared<QDBusUnixFileDescriptor>(reply.value());
        }
        watcher->deleteLater();
    });
}

void LinuxWorkspace::mutterChanged(const QString& interface, const QVariantMap& changed,
                                   const QStringList& invalidated) {
    if (interface != mutterName) {
        return;
    }
    if (changed.contains(powerSaveMode)) {
        setMutterMode(changed.value(powerSaveMode).toInt());
    } else if (invalidated.contains(powerSaveMode)) {
        readMutterMode();
    }
}

void LinuxWorkspace::readMutterMode() {
    auto* const watcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(powerSaveModeQuery()), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply(*watcher);
        if (reply.isValid()) {
            setMutterMode(reply.value().variant().toInt());
        }
        watcher->deleteLater();
    });
}

void LinuxWorkspace::setMutterMode(int mode) {
    // 0 is on, -1 unknown; 1 (standby), 2 (suspend) and 3 (off) are dark.
    m_isMutterSaving = mode > 0;
    update();
}

void LinuxWorkspace::update() {
    const bool isAsleep = m_isMachineAsleep || m_isMutterSaving || m_isPanelOff;
    if (std::exchange(m_isAsleep, isAsleep) != isAsleep) {
        (isAsleep ? m_sleepObservers : m_wakeObservers).notify();
    }
}

} // namespace brimlet
