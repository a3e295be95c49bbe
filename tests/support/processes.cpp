#include "tests/support/processes.h"
#include "tests/support/emulated.h"
#include "tests/support/testpaths.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

#include <csignal>
#include <cstdio>

#include <unistd.h>

namespace brimlet {
namespace {

constexpr int kPatience = 20'000; // milliseconds

void writeJson(const QString& path, const QJsonObject& object) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(object).toJson()) < 0 ||
        !file.commit()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

/// The next line the process prints; empty when it prints none in time.
QByteArray nextLine(QProcess& process) {
    const QDeadlineTimer deadline(kPatience);
    while (!process.canReadLine()) {
        if (deadline.hasExpired() || process.state() == QProcess::NotRunning) {
            return {};
        }
        process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
    }
    return process.readLine().trimmed();
}

/// The lines that are not of WAYLAND_DEBUG, which are too many for a test's output.
QByteArray withoutProtocol(const QByteArray& complaints) {
    QByteArrayList lines = complaints.split('\n');
    lines.removeIf([](const QByteArray& line) { return line.startsWith('['); });
    return lines.join('\n');
}

void end(QProcess& process) {
    process.terminate();
    if (!process.waitForFinished(kPatience)) {
        process.kill();
        process.waitForFinished();
    }
}

} // namespace

ProcessMeasures measuresOf(qint64 process) {
    const QString folder = QStringLiteral("/proc/%1/").arg(process);
    QFile statm(folder + QStringLiteral("statm"));
    if (process <= 0 || !statm.open(QIODevice::ReadOnly)) {
        return {};
    }
    const auto entries = [&folder](const char* name) {
        return QDir(folder + QString::fromLatin1(name))
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
            .size();
    };
    const QList<QByteArray> pages = statm.readAll().split(' ');
    return {pages.value(1).toLongLong() * ::sysconf(_SC_PAGESIZE), entries("fd"), entries("task")};
}

PlacementProcess::PlacementProcess() {
    setScenario({});
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(programPath(u"brimlet-placement"),
                    {QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--scenario"),
                     m_folder.filePath(QStringLiteral("scenario.json")), QStringLiteral("--log"),
                     m_folder.filePath(QStringLiteral("requests.jsonl"))});
    constexpr QByteArrayView kGreeting("Listening on ");
    for (QByteArray line = nextLine(m_process); !line.isEmpty(); line = nextLine(m_process)) {
        if (line.startsWith(kGreeting)) {
            m_root = QString::fromUtf8(line.mid(kGreeting.size()));
            break;
        }
    }
}

PlacementProcess::~PlacementProcess() {
    end(m_process);
}

void PlacementProcess::setScenario(const QJsonObject& scenario) const {
    writeJson(m_folder.filePath(QStringLiteral("scenario.json")), scenario);
}

QJsonArray PlacementProcess::requests() const {
    QFile file(m_folder.filePath(QStringLiteral("requests.jsonl")));
    QJsonArray requests;
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (!line.isEmpty()) {
                requests.append(QJsonDocument::fromJson(line).object());
            }
        }
    }
    return requests;
}

QStringList PlacementProcess::requestLines() const {
    QStringList lines;
    for (const auto& request : requests()) {
        const QJsonObject object = request.toObject();
        lines << object.value(QStringLiteral("method")).toString() + u' ' +
                     object.value(QStringLiteral("path")).toString();
    }
    return lines;
}

SimulatorProcess::SimulatorProcess(const QJsonObject& machine,
                                   const EnvironmentChanges& environment) {
    QFile file(sourcePath(u"docs/machines/laptop-14.json"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("the 14-inch machine is missing");
    }
    m_machine = QJsonDocument::fromJson(file.readAll()).object();
    edit(machine);
    if (slowness() > 1) {
        const double speed = m_machine.value(QStringLiteral("speed")).toDouble(1);
        edit({{QStringLiteral("speed"), std::max(1.0, speed / slowness())}});
    }
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (auto it = environment.begin(); it != environment.end(); ++it) {
        if (it.value().isNull()) {
            variables.remove(it.key());
        } else {
            variables.insert(it.key(), it.value());
        }
    }
    m_process.setProcessEnvironment(variables);
    m_process.start(programPath(u"brimlet-simulator"),
                    {QStringLiteral("--machine"), m_folder.filePath(QStringLiteral("machine.json")),
                     QStringLiteral("--console")});
}

SimulatorProcess::~SimulatorProcess() {
    if (m_process.state() != QProcess::NotRunning) {
        thaw(); // a stopped process handles no other signal
        end(m_process);
    }
    // With the test's output, so that sanitizer reports appear there.
    m_complaints += m_process.readAllStandardError();
    std::fputs(withoutProtocol(m_complaints).constData(), stderr);
}

void SimulatorProcess::edit(const QJsonObject& machine) {
    for (auto it = machine.begin(); it != machine.end(); ++it) {
        m_machine[it.key()] = it.value();
    }
    writeJson(m_folder.filePath(QStringLiteral("machine.json")), m_machine);
}

QJsonObject SimulatorProcess::ask(const QByteArray& command) {
    m_process.write(command + '\n');
    const QByteArray line = nextLine(m_process);
    m_answers += line + '\n';
    return QJsonDocument::fromJson(line).object();
}

bool SimulatorProcess::isPanelShown() {
    return panel().value(QStringLiteral("shown")).toBool();
}

QString SimulatorProcess::statusLine() {
    return state().value(QStringLiteral("statusLine")).toString();
}

QByteArray SimulatorProcess::complaints() {
    m_complaints += m_process.readAllStandardError();
    return m_complaints;
}

void SimulatorProcess::freeze() const {
    ::kill(static_cast<pid_t>(pid()), SIGSTOP);
}

void SimulatorProcess::thaw() const {
    ::kill(static_cast<pid_t>(pid()), SIGCONT);
}

void SimulatorProcess::kill() {
    m_process.kill();
    m_process.waitForFinished();
}

int SimulatorProcess::endBySignal(int signal) {
    if (pid() > 0) { // 0 would stand for this process and its relatives
        ::kill(static_cast<pid_t>(pid()), signal);
    }
    return exitCode();
}

int SimulatorProcess::startAgain() const {
    return QProcess::execute(
        programPath(u"brimlet-simulator"),
        {QStringLiteral("--machine"), m_folder.filePath(QStringLiteral("machine.json"))});
}

int SimulatorProcess::exitCode() {
    if ((m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(kPatience)) ||
        m_process.exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    return m_process.exitCode();
}

} // namespace brimlet
