#pragma once

#include "tests/support/rawserver.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <vector>

namespace brimlet {

/// Steps of a fault server's script.
namespace faults {

[[nodiscard]] QJsonObject send(const QByteArray& bytes);
/// A whole reply with the right length; `headers` are further lines, each with its line break.
[[nodiscard]] QJsonObject reply(int status, const QByteArray& body, const QByteArray& headers = {});
[[nodiscard]] QJsonObject drip(const QByteArray& text, int everyMs, bool isForEver = false);
[[nodiscard]] QJsonObject flood(const QByteArray& text);
[[nodiscard]] QJsonObject wait(int milliseconds);
[[nodiscard]] QJsonObject cut();
[[nodiscard]] QJsonObject reset();

} // namespace faults

/// A process of the fault server, on a free port.
class FaultServerProcess final {
public:
    /// `arguments` besides those for the port and the log.
    explicit FaultServerProcess(const QStringList& arguments = {});
    ~FaultServerProcess();
    FaultServerProcess(const FaultServerProcess&) = delete;
    FaultServerProcess& operator=(const FaultServerProcess&) = delete;

    /// "http://127.0.0.1:port", or https; empty when it did not start.
    [[nodiscard]] const QString& root() const { return m_root; }
    /// Applies to connections and requests that arrive after this returns.
    void follow(const QJsonObject& script);

    /// Every byte of every connection, in the order of arrival.
    [[nodiscard]] QByteArray received() const;
    /// The requests in those bytes from that offset on, in the order of arrival. Each is small
    /// enough to arrive in one piece, so requests of several connections do not mix.
    [[nodiscard]] std::vector<RawRequest> requests(qsizetype from = 0) const;
    /// Stops and continues the whole process.
    void stop() const;
    void resume() const;

private:
    [[nodiscard]] QByteArray nextLine();

    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_root;
};

} // namespace brimlet
