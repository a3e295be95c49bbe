#pragma once

#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace brimlet {

/// The address of docs/service/openapi.yaml in the file system.
[[nodiscard]] QString serviceDocument();
/// The document as JSON; empty when it cannot be read.
[[nodiscard]] QJsonObject serviceDocumentAsJson();

/// Prism, which knows the document and nothing else of the project, as a mock service or as a proxy
/// that judges what passes. On a free port; every request and every deviation is logged.
class PrismProcess final {
public:
    /// The arguments are Prism's: a command, a document and, for a proxy, the service's root.
    explicit PrismProcess(const QStringList& arguments);
    ~PrismProcess();
    PrismProcess(const PrismProcess&) = delete;
    PrismProcess& operator=(const PrismProcess&) = delete;

    /// Why it is not installed; empty when it is.
    [[nodiscard]] const QString& missing() const { return m_missing; }
    /// Empty when it did not start.
    [[nodiscard]] const QString& root() const { return m_root; }

    /// What the log says of the requests until now.
    struct Judgement final {
        QStringList requests;      ///< Each as "METHOD path".
        QStringList deviations;    ///< From the document, of requests and of replies.
        qsizetype conditional = 0; ///< Requests with If-None-Match.
        qsizetype unchanged = 0;   ///< Replies with 304, as a proxy.
    };
    [[nodiscard]] const Judgement& judgement();

    /// The body that it replies to a host's GET of this path and query; empty on any failure.
    [[nodiscard]] QByteArray get(const QByteArray& path) const;

private:
    [[nodiscard]] QString log() const;
    /// Reads on; true once a request has been received whose line contains `end`.
    [[nodiscard]] bool readLog(const QString& end);

    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_missing;
    QString m_root;
    Judgement m_judgement;
    qint64 m_logRead = 0; ///< Bytes.
    int m_marks = 0;
};

} // namespace brimlet
