#include "tests/fuzz/urlcheck.h"

#include "host/linkrule.h"
#include "platform/curl/curladdress.h"

#include <QUrl>

#include <algorithm>

namespace brimlet {
namespace {

QByteArray part(const CurlUrl& address, CURLUPart which, unsigned flags = 0) {
    char* text = nullptr;
    if (curl_url_get(address.get(), which, &text, flags) != CURLUE_OK) {
        return {};
    }
    const CurlText owner(text);
    return owner.get();
}

/// Lower-cased, without the brackets of an IPv6 address.
QByteArray plainHost(QByteArray host) {
    if (host.startsWith('[') && host.endsWith(']')) {
        host = host.sliced(1, host.size() - 2);
    }
    return host.toLower();
}

QByteArray plainHost(const Url& url) {
    return plainHost(url.host().value_or(QString()).toLatin1());
}

bool isPrintable(const QString& text) {
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c.unicode() > 0x20 && c.unicode() < 0x7F; });
}

bool readsTheSameAgain(const Url& url) {
    const auto again = Url::fromString(url.absoluteString());
    return again && *again == url && again->scheme() == url.scheme() &&
           again->host() == url.host() && again->port() == url.port();
}

/// Whether libcurl reads the text the same, without the options that curlAddress sets.
bool isSameToCurl(const Url& url) {
    const CurlUrl address(curl_url());
    const QByteArray text = url.absoluteString().toLatin1();
    if (curl_url_set(address.get(), CURLUPART_URL, text, 0) != CURLUE_OK) {
        return false;
    }
    const uint ourPort = url.port() ? url.port()->toUInt() : 0;
    return part(address, CURLUPART_SCHEME) ==
               url.scheme().value_or(QString()).toLatin1().toLower() &&
           plainHost(part(address, CURLUPART_HOST)) == plainHost(url) &&
           part(address, CURLUPART_PORT).toUInt() == ourPort;
}

/// Whether libcurl would request the same address, without user info.
bool isFetchedAsRead(const Url& url) {
    const CurlUrl address = curlAddress(url);
    if (!address) {
        return true; // nothing is fetched
    }
    const QByteArray whole = part(address, CURLUPART_URL);
    const auto fetched = Url::fromString(QString::fromLatin1(whole));
    return isSameToCurl(url) && part(address, CURLUPART_USER).isEmpty() &&
           part(address, CURLUPART_PASSWORD).isEmpty() && fetched &&
           plainHost(*fetched) == plainHost(url) &&
           (isAllowedLink(*fetched) || !isAllowedLink(url));
}

bool isLocalHost(const QByteArray& host) {
    return host == "127.0.0.1" || host == "localhost" || host == "::1";
}

/// Hosts that Qt writes differently although they mean the same: IPv4 addresses in other notations,
/// IPv6 addresses, encoded letters.
bool isNormalisedByQt(const QByteArray& host) {
    return host.contains(':') || host.contains('%') ||
           std::all_of(host.begin(), host.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || c == '.' || c == 'x';
           });
}

/// Whether the opener cannot take the text for an option and goes to the host that the link rule
/// allowed: without encryption to this machine only.
bool isOpenedAsRead(const Url& url) {
    const QString& text = url.absoluteString();
    const QUrl opened(text, QUrl::StrictMode);
    const QByteArray host = opened.host(QUrl::FullyEncoded).toLatin1();
    if (text.startsWith(QLatin1StringView("https:"))) {
        const bool isFetchable = curlAddress(url) != nullptr;
        return !isFetchable || !opened.isValid() ||
               (opened.scheme() == QLatin1StringView("https") &&
                (plainHost(host) == plainHost(url) || isNormalisedByQt(plainHost(url))));
    }
    return text.startsWith(QLatin1StringView("http://")) && isLoopback(url) &&
           (!opened.isValid() ||
            (opened.scheme() == QLatin1StringView("http") && isLocalHost(host)));
}

QByteArray checkAddress(const Url& url) {
    if (!isPrintable(url.absoluteString())) {
        return "an address is more than printable ASCII";
    }
    if (!readsTheSameAgain(url)) {
        return "read again it is another address";
    }
    if (!isFetchedAsRead(url)) {
        return "libcurl reads another address";
    }
    if (isAllowedLink(url) && !isOpenedAsRead(url)) {
        return "the opener reads another address";
    }
    return {};
}

} // namespace

QByteArray checkUrl(const QByteArray& input) {
    const qsizetype end = input.contains('\n') ? input.indexOf('\n') : input.size();
    const auto url = Url::fromString(QString::fromUtf8(input.first(end)));
    if (!url) {
        return {};
    }
    const QByteArray wrong = checkAddress(*url);
    const QByteArray location = input.sliced(std::min(end + 1, input.size()));
    const auto target = redirectTarget(*url, location);
    return wrong.isEmpty() && target ? checkAddress(*target) : wrong;
}

} // namespace brimlet
