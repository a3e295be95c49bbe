#include "platform/curl/curladdress.h"

namespace brimlet {
namespace {

/// Keeps dot segments in paths.
constexpr unsigned kAsWritten = CURLU_PATH_AS_IS;

QByteArray part(const CurlUrl& address, CURLUPart which, unsigned flags = 0) {
    char* text = nullptr;
    if (curl_url_get(address.get(), which, &text, flags) != CURLUE_OK) {
        return {};
    }
    const CurlText owner(text);
    return QByteArray(owner.get());
}

QByteArray withoutBrackets(const QByteArray& host) {
    return host.startsWith('[') && host.endsWith(']') ? host.mid(1, host.size() - 2) : host;
}

bool isSameText(const QString& a, const QByteArray& b) {
    return a.compare(QLatin1StringView(b), Qt::CaseInsensitive) == 0;
}

bool isSamePort(const Url& url, const CurlUrl& address) {
    const QByteArray port = part(address, CURLUPART_PORT);
    if (!url.port() || port.isEmpty()) {
        return !url.port() && port.isEmpty();
    }
    bool isNumber = false;
    const uint number = url.port()->toUInt(&isNumber);
    return isNumber && number != 0 && number == port.toUInt();
}

} // namespace

CurlUrl curlAddress(const Url& url) {
    if (!url.scheme() || !url.host()) {
        return nullptr;
    }
    const QByteArray scheme = url.scheme()->toLatin1().toLower();
    if (scheme != "http" && scheme != "https") {
        return nullptr;
    }
    CurlUrl address(curl_url());
    const QByteArray text = url.absoluteString().toLatin1();
    if (!address || curl_url_set(address.get(), CURLUPART_URL, text, kAsWritten) != CURLUE_OK) {
        return nullptr;
    }
    for (const CURLUPart secret : {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_OPTIONS}) {
        if (curl_url_set(address.get(), secret, nullptr, 0) != CURLUE_OK) {
            return nullptr;
        }
    }
    const bool agrees = isSameText(*url.scheme(), part(address, CURLUPART_SCHEME)) &&
                        isSameText(*url.host(), withoutBrackets(part(address, CURLUPART_HOST))) &&
                        part(address, CURLUPART_ZONEID).isEmpty() && isSamePort(url, address);
    return agrees ? std::move(address) : nullptr;
}

std::optional<Url> redirectTarget(const Url& from, const QByteArray& location) {
    const CurlUrl address = curlAddress(from);
    if (!address || location.isEmpty()) {
        return std::nullopt;
    }
    constexpr unsigned kFlags = kAsWritten | CURLU_URLENCODE | CURLU_NON_SUPPORT_SCHEME;
    if (curl_url_set(address.get(), CURLUPART_URL, location, kFlags) != CURLUE_OK) {
        return std::nullopt;
    }
    return Url::fromString(
        QString::fromLatin1(part(address, CURLUPART_URL, CURLU_NON_SUPPORT_SCHEME)));
}

bool isLoopback(const Url& url) {
    const QString host = url.host().value_or(QString());
    return host == u"127.0.0.1" || host == u"::1" ||
           host.compare(u"localhost", Qt::CaseInsensitive) == 0;
}

} // namespace brimlet
