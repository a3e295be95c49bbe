#include "tests/support/faultserver/faultserver.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>
#include <QSslCertificate>
#include <QSslKey>

#include <array>
#include <cstdio>

#include <unistd.h>

namespace {

using namespace brimlet;

constexpr int kMisuse = 2;

int complain(const QString& complaint, int exitCode) {
    std::fprintf(stderr, "brimlet-fault-server: %s\n", qUtf8Printable(complaint));
    return exitCode;
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QSslConfiguration identity(const QString& certificate, const QString& key) {
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificate(QSslCertificate::fromPath(certificate).value(0));
    tls.setPrivateKey(QSslKey(contentOf(key), QSsl::Ec));
    return tls;
}

/// Reads scripts from standard input, one per line; the end of the input ends the program.
class Scripts final {
public:
    explicit Scripts(FaultServer& server)
        : m_server(server)
        , m_notifier(STDIN_FILENO, QSocketNotifier::Read) {
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { read(); });
    }

    /// Whether the line was a valid script.
    bool take(const QByteArray& json) {
        auto script = readFaultScript(json);
        if (const auto* const complaint = std::get_if<QString>(&script)) {
            complain(*complaint, kMisuse);
            return false;
        }
        m_server.follow(std::get<FaultScript>(std::move(script)));
        return true;
    }

private:
    void read() {
        std::array<char, 65536> buffer{};
        const auto count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) {
            QCoreApplication::quit();
            return;
        }
        m_pending.append(buffer.data(), count);
        for (qsizetype end = m_pending.indexOf('\n'); end >= 0; end = m_pending.indexOf('\n')) {
            std::puts(take(m_pending.first(end)) ? "ok" : "refused");
            std::fflush(stdout);
            m_pending.remove(0, end + 1);
        }
    }

    FaultServer& m_server;
    QSocketNotifier m_notifier;
    QByteArray m_pending;
};

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral("A server that misbehaves as it is told, for tests. Scripts are JSON "
                       "objects, one a line on\n"
                       "standard input; each is answered by \"ok\" or \"refused\". The end of the "
                       "input ends it."));
    const QCommandLineOption port(QStringLiteral("port"),
                                  QStringLiteral("Port of 127.0.0.1, 0 for any free one."),
                                  QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption log(QStringLiteral("log"),
                                 QStringLiteral("Append all that is received."),
                                 QStringLiteral("FILE"));
    const QCommandLineOption certificate(QStringLiteral("certificate"),
                                         QStringLiteral("Speak TLS, with this certificate (PEM)."),
                                         QStringLiteral("FILE"));
    const QCommandLineOption key(QStringLiteral("key"),
                                 QStringLiteral("The certificate's elliptic key (PEM)."),
                                 QStringLiteral("FILE"));
    options.addOptions({port, log, certificate, key});
    options.addHelpOption();
    options.process(application);

    bool isPort = false;
    FaultServer::Settings settings{.port = options.value(port).toUShort(&isPort),
                                   .log = options.value(log)};
    if (!isPort) {
        return complain(QStringLiteral("--port must be a number from 0 to 65535"), kMisuse);
    }
    if (options.isSet(certificate)) {
        settings.tls = identity(options.value(certificate), options.value(key));
    }
    FaultServer server(settings);
    if (!server.complaint().isEmpty()) {
        return complain(server.complaint(), 1);
    }
    Scripts scripts(server);
    std::printf("Listening on %s\n", qPrintable(server.root()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}
