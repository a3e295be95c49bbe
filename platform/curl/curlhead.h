#pragma once

#include "platform/curl/validators.h"
#include "platform/httpclient.h"

#include <QByteArrayView>

namespace brimlet {

/// The header lines of one reply that determine its body and its redirect target. Parsed here as
/// well as by libcurl, which accepts contradictory lengths.
class CurlHead final {
public:
    /// Takes one line with its line break; the status line is allowed too. An error means that the
    /// reply must be rejected.
    [[nodiscard]] std::optional<HttpError> add(QByteArrayView line);
    /// Forgets the lines of an interim (1xx) reply, though their bytes still count for the limit.
    void startOver();

    /// Bytes; absent without a Content-Length or when the body is chunked.
    [[nodiscard]] std::optional<qint64> bodyLength() const;
    /// Whether there is a Transfer-Encoding.
    [[nodiscard]] bool hasTransferEncoding() const { return m_hasTransferEncoding; }
    /// The first Location header's value, empty for none.
    [[nodiscard]] const QByteArray& location() const { return m_location; }
    [[nodiscard]] const Validators& validators() const { return m_validators; }

private:
    qsizetype m_bytes = 0;
    std::optional<qint64> m_contentLength;
    bool m_hasTransferEncoding = false;
    QByteArray m_location;
    Validators m_validators;
};

} // namespace brimlet
