#include "platform/curl/curlhead.h"

#include <algorithm>
#include <limits>

namespace brimlet {
namespace {

/// Bytes of all header lines of a reply, including interim replies and trailers.
constexpr qsizetype kHeadLimit = qsizetype{64} * 1024;

bool isNamed(QByteArrayView name, QByteArrayView wanted) {
    return name.compare(wanted, Qt::CaseInsensitive) == 0;
}

/// Digits only: no sign, no list. A number beyond 64 bits counts as the largest.
std::optional<qint64> readLength(const QByteArray& text) {
    const bool isNumber = !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), [](char c) {
        return c >= '0' && c <= '9';
    });
    if (!isNumber) {
        return std::nullopt;
    }
    bool fits = false;
    const qint64 length = text.toLongLong(&fits);
    return fits ? length : std::numeric_limits<qint64>::max();
}

} // namespace

std::optional<HttpError> CurlHead::add(QByteArrayView line) {
    m_bytes += line.size();
    if (m_bytes > kHeadLimit) {
        return HttpError::TooLarge;
    }
    const qsizetype colon = line.indexOf(':');
    if (colon < 0) {
        return std::nullopt;
    }
    const QByteArrayView name = line.first(colon);
    const QByteArray value = line.sliced(colon + 1).toByteArray().trimmed();
    if (isNamed(name, "Content-Length")) {
        if (m_contentLength) {
            return HttpError::Broken; // given twice, even with the same value
        }
        m_contentLength = readLength(value);
        return m_contentLength ? std::nullopt : std::optional(HttpError::Broken);
    }
    if (isNamed(name, "Transfer-Encoding")) {
        // Only chunks. libcurl would also decompress gzip, layer within layer, without a time
        // limit.
        const bool isChunked = !m_hasTransferEncoding && isNamed(value, "chunked");
        m_hasTransferEncoding = true;
        return isChunked ? std::nullopt : std::optional(HttpError::Broken);
    }
    if (isNamed(name, "Location") && m_location.isEmpty()) {
        m_location = value;
    }
    m_validators.add(name, value);
    return std::nullopt;
}

void CurlHead::startOver() {
    m_contentLength.reset();
    m_hasTransferEncoding = false;
    m_location.clear();
    m_validators = Validators();
}

std::optional<qint64> CurlHead::bodyLength() const {
    return m_hasTransferEncoding ? std::nullopt : m_contentLength;
}

} // namespace brimlet
