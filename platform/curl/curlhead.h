#pragma once

#include "platform/curl/validators.h"
#include "platform/httpclient.h"

#include <QByteArrayView>

namespace brimlet {

/// The header lines of one reply that decide about its body and where it leads, read alongside
/// libcurl, which is laxer about lengths than is safe.
class CurlHead final {
public:
    /// Takes one line with its line break, the status line included. The error is absent unless the
    /// reply cannot be trusted.
    [[nodiscard]] std::optional<HttpError> add(QByteArrayView line);
    /// Forgets the lines of an interim reply; they go on counting towards the limit.
    void startOver();

    /// Bytes of body promised; absent without a promise or when the body comes in chunks.
    [[nodiscard]] std::optional<qint64> bodyLength() const;
    [[nodiscard]] bool isCoded() const { return m_isCoded; }
    /// The first Location header's value, empty for none.
    [[nodiscard]] const QByteArray& location() const { return m_location; }
    [[nodiscard]] const Validators& validators() const { return m_validators; }

private:
    qsizetype m_bytes = 0;
    std::optional<qint64> m_contentLength;
    bool m_isCoded = false;
    QByteArray m_location;
    Validators m_validators;
};

} // namespace brimlet
