#include "tests/support/faultserverprocess.h"
#include "tests/support/testpaths.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonDocument>

#include <csignal>

namespace brimlet {
namespace {

constexpr int kPatience = 20'000; // milliseconds

QString logPath(const QTemporaryDir& folder) {
    return folder.filePath(QStringLiteral("received"));
}

} // namespace

namespace faults {

QJsonObject send(const QByteArray& bytes) {
    return {{QStringLiteral("base64"), QString::fromLatin1(bytes.toBase64())}};
}

QJsonObject reply(int status, const QByteArray& body, const QByteArray& headers) {
    return send(rawReply(status, body, headers));
}

QJsonObject drip(const QByteArray& text, int everyMs, bool isForEver) {
    return {{QStringLiteral("drip"), QString::fromUtf8(text)},
            {QStringLiteral("everyMs"), everyMs},
            {QStringLiteral("isForEver"), isForEver}};
}

QJsonObject flood(const QByteArray& text) {
    return {{QStringLiteral("flood"), QString::fromUtf8(text)}};
}

QJsonObject wait(int milliseconds) {
    return {{QStringLiteral("waitMs"), milliseconds}};
}

QJsonObject cut() {
    return {{QStringLiteral("end"), QStringLiteral("cut")}};
}

QJsonObject reset() {
    return {{QStringLiteral("end"), QStringLiteral("reset")}};
}

} // namespace faults

FaultServerProcess::FaultServerProcess(const QStringList& arguments) {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(programPath(u"brimlet-fault-server"),
                    QStringList{QStringLiteral("--log"), logPath(m_folder)} + arguments);
    constexpr QByteArrayView kGreeting("Listening on ");
    if (const QByteArray line = nextLine(); line.startsWith(kGreeting)) {
        m_root = QString::fromLatin1(line.mid(kGreeting.size()));
    }
}

FaultServerProcess::~FaultServerProcess() {
    resume();
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(kPatience)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void FaultServerProcess::follow(const QJsonObject& script) {
    m_process.write(QJsonDocument(script).toJson(QJsonDocument::Compact) + '\n');
    if (const QByteArray answer = nextLine(); answer != "ok") {
        qFatal("the fault server did not take its script");
    }
}

QByteArray FaultServerProcess::received() const {
    QFile file(logPath(m_folder));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::vector<RawRequest> FaultServerProcess::requests(qsizetype from) const {
    QByteArray bytes = received().mid(from);
    std::vector<RawRequest> requests;
    while (const auto request = RawRequest::take(bytes)) {
        requests.push_back(*request);
    }
    return requests;
}

void FaultServerProcess::stop() const {
    ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP);
}

void FaultServerProcess::resume() const {
    ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT);
}

QByteArray FaultServerProcess::nextLine() {
    const QDeadlineTimer deadline(kPatience);
    while (!m_process.canReadLine()) {
        if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning) {
            return {};
        }
        m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
    }
    return m_process.readLine().trimmed();
}

} // namespace brimlet
