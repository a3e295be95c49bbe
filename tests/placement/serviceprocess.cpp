#include "tests/placement/serviceprocess.h"
#include "tests/support/testpaths.h"

#include <QElapsedTimer>
#include <QFile>

#include <csignal>

namespace brimlet::placementtest {

namespace {

constexpr int patienceMs = 20'000;

QString program() {
    return programPath(u"brimlet-placement");
}

} // namespace

ServiceProcess::ServiceProcess(const QByteArray& scenario) {
    QStringList arguments{QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--log"),
                          m_folder.filePath(QStringLiteral("log"))};
    if (!scenario.isEmpty() && edit(scenario)) {
        arguments << QStringLiteral("--scenario") << m_folder.filePath(QStringLiteral("scenario"));
    }
    m_process.start(program(), arguments);
    const QByteArray announcement = "Listening on http://127.0.0.1:";
    while (m_port == 0 && m_process.waitForReadyRead(patienceMs)) {
        m_output += m_process.readAllStandardOutput();
        const auto at = m_output.indexOf(announcement);
        const auto end = m_output.indexOf('\n', at);
        if (at >= 0 && end >= 0) {
            const auto from = at + announcement.size();
            m_port = m_output.mid(from, end - from).toUShort();
        }
    }
}

ServiceProcess::~ServiceProcess() {
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(patienceMs)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
}

QByteArray ServiceProcess::errors() {
    m_errors += m_process.readAllStandardError();
    return m_errors;
}

QByteArray ServiceProcess::log() const {
    QFile file(m_folder.filePath(QStringLiteral("log")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool ServiceProcess::edit(const QByteArray& scenario) {
    QFile file(m_folder.filePath(QStringLiteral("scenario")));
    return file.open(QIODevice::WriteOnly) && file.write(scenario) == scenario.size();
}

qint64 ServiceProcess::endWith(int signal) {
    QElapsedTimer timer;
    timer.start();
    ::kill(static_cast<pid_t>(m_process.processId()), signal);
    return m_process.waitForFinished(patienceMs) ? timer.elapsed() : -1;
}

ServiceProcess::Outcome ServiceProcess::run(const QStringList& arguments) {
    QProcess process;
    process.start(program(), arguments);
    if (!process.waitForFinished(patienceMs)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace brimlet::placementtest
