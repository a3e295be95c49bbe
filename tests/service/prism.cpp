#include "tests/service/prism.h"

#include "tests/support/testpaths.h"

#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>

namespace brimlet {
namespace {

constexpr int kPatience = 60'000; // milliseconds; Node takes its time on a busy machine

} // namespace

QString serviceDocument() {
    return sourcePath(u"docs/service/openapi.yaml");
}

QJsonObject serviceDocumentAsJson() {
    QProcess python;
    python.setStandardInputFile(serviceDocument());
    python.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    python.start(
        QStringLiteral("python3"),
        {QStringLiteral("-c"), QStringLiteral("import json, sys, yaml\n"
                                              "json.dump(yaml.safe_load(sys.stdin), sys.stdout)")});
    python.waitForFinished(kPatience);
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
}

PrismProcess::PrismProcess(const QStringList& arguments) {
    // To a file, since a full pipe would stop it.
    m_process.setStandardOutputFile(m_folder.filePath(QStringLiteral("log")));
    m_process.start(sourcePath(u"script/lib/contract"),
                    QStringList{QStringLiteral("prism")} + arguments +
                        QStringList{QStringLiteral("--port"), QStringLiteral("0"),
                                    QStringLiteral("--verboseLevel"), QStringLiteral("debug")});
    static const QRegularExpression greeting(QStringLiteral("Prism is listening on (http://\\S+)"));
    (void)QTest::qWaitFor(
        [this] {
            m_root = greeting.match(log()).captured(1);
            return !m_root.isEmpty() || m_process.state() == QProcess::NotRunning;
        },
        kPatience);
    constexpr int kNotInstalled = 77;
    const QByteArray complaints = m_process.readAllStandardError();
    if (m_process.state() == QProcess::NotRunning && m_process.exitCode() == kNotInstalled) {
        m_missing = QString::fromUtf8(complaints).trimmed();
    } else if (m_root.isEmpty()) {
        qWarning("Prism did not start: %s%s", complaints.constData(), qPrintable(log()));
    }
}

PrismProcess::~PrismProcess() {
    m_process.kill();
    m_process.waitForFinished();
}

const PrismProcess::Judgement& PrismProcess::judgement() {
    // The log is written later than the reply, but in order: this request closes it.
    const QByteArray mark = "/mark-" + QByteArray::number(++m_marks);
    (void)get(mark);
    const QString end = QStringLiteral(" get %1 ").arg(QString::fromLatin1(mark));
    (void)QTest::qWaitFor([&] { return readLog(end); }, kPatience);
    return m_judgement;
}

bool PrismProcess::readLog(const QString& end) {
    static const QRegularExpression request(
        QStringLiteral("\\[HTTP SERVER\\] (\\w+) (\\S+) .*Request received$"));
    static const QSet<QString> documented{
        QStringLiteral("GET /api/display"), QStringLiteral("POST /api/host/heartbeat"),
        QStringLiteral("GET /api/host/me"), QStringLiteral("POST /api/host/agree")};
    QFile file(m_folder.filePath(QStringLiteral("log")));
    if (!file.open(QIODevice::ReadOnly) || !file.seek(m_logRead)) {
        return false;
    }
    for (QByteArray bytes = file.readLine(); bytes.endsWith('\n'); bytes = file.readLine()) {
        m_logRead += bytes.size();
        const QString line = QString::fromUtf8(bytes).trimmed();
        m_judgement.conditional += line.contains(u"\tif-none-match: ") ? 1 : 0;
        m_judgement.unchanged += line.endsWith(u" has returned 304") ? 1 : 0;
        if (line.endsWith(u"Request received")) {
            if (line.contains(end)) {
                return true;
            }
            const auto match = request.match(line);
            const QString asked = match.captured(1).toUpper() + u' ' + match.captured(2);
            m_judgement.requests << asked;
            if (!documented.contains(asked)) {
                m_judgement.deviations << line;
            }
        } else if ((line.contains(u"Violation: ") || line.contains(u"terminated with error")) &&
                   // The marks, and what is a deviation by its address already.
                   !line.contains(u"route not found") && !line.contains(u"Route not resolved")) {
            m_judgement.deviations << line;
        }
    }
    return false;
}

QByteArray PrismProcess::get(const QByteArray& path) const {
    QTcpSocket socket;
    const QStringList address = m_root.section(u'/', 2).split(u':');
    socket.connectToHost(address.value(0), address.value(1).toUShort());
    socket.write("GET " + path +
                 " HTTP/1.1\r\nHost: mock\r\nAuthorization: Bearer token\r\n"
                 "Connection: close\r\n\r\n");
    QByteArray reply;
    while (socket.waitForReadyRead(kPatience)) {
        reply += socket.readAll();
    }
    const qsizetype end = reply.indexOf("\r\n\r\n");
    return reply.startsWith("HTTP/1.1 200 ") && end >= 0 ? reply.mid(end + 4) : QByteArray();
}

QString PrismProcess::log() const {
    QFile file(m_folder.filePath(QStringLiteral("log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace brimlet
