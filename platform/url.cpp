#include "platform/url.h"

#include <QUrl>

#include <uriparser/Uri.h>

#include <string>
#include <string_view>

namespace brimlet {
namespace {

// RFC 3986: the characters that need no encoding in any component, besides letters and digits.
constexpr std::string_view kUnreserved = "-._~";
constexpr std::string_view kSubDelims = "!$&'()*+,;=";

bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool mayStand(char c, std::string_view extra) {
    return isAsciiLetter(c) || isDigit(c) || kUnreserved.find(c) != std::string_view::npos ||
           kSubDelims.find(c) != std::string_view::npos || extra.find(c) != std::string_view::npos;
}

/// Percent-encodes the characters that are not allowed in a component; `extra` are the component's
/// own. An encoded triplet stays as it is; a percent sign that begins none is encoded.
std::string encoded(std::string_view component, std::string_view extra) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string out;
    out.reserve(component.size());
    for (std::size_t i = 0; i < component.size(); ++i) {
        const char c = component[i];
        const bool isTriplet = c == '%' && i + 2 < component.size() &&
                               isHexDigit(component[i + 1]) && isHexDigit(component[i + 2]);
        if (isTriplet || mayStand(c, extra)) {
            out += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            out += '%';
            out += kHex[byte >> 4U];
            out += kHex[byte & 0x0FU];
        }
    }
    return out;
}

/// The five components of a reference according to RFC 3986. Absent means without its delimiter.
struct Components {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> authority;
    std::string_view path;
    std::optional<std::string_view> query;
    std::optional<std::string_view> fragment;
};

Components split(std::string_view text) {
    Components parts;
    if (const auto hash = text.find('#'); hash != std::string_view::npos) {
        parts.fragment = text.substr(hash + 1);
        text = text.substr(0, hash);
    }
    if (const auto mark = text.find('?'); mark != std::string_view::npos) {
        parts.query = text.substr(mark + 1);
        text = text.substr(0, mark);
    }
    const auto colon = text.find(':');
    if (colon != std::string_view::npos && colon < text.find('/')) {
        parts.scheme = text.substr(0, colon);
        text = text.substr(colon + 1);
    }
    if (text.starts_with("//")) {
        text = text.substr(2);
        const auto slash = text.find('/');
        parts.authority = text.substr(0, slash);
        text = slash == std::string_view::npos ? std::string_view{} : text.substr(slash);
    }
    parts.path = text;
    return parts;
}

bool isAscii(std::string_view text) {
    for (const char c : text) {
        if (static_cast<unsigned char>(c) > 0x7F) {
            return false;
        }
    }
    return true;
}

/// A host with non-ASCII letters takes its "xn--" form, which a resolver uses and which cannot look
/// like another name. A host that IDNA would map to plain ASCII, or cannot map, is percent-encoded
/// as it was written.
std::string encodedHost(std::string_view host) {
    if (host.starts_with('[')) {
        return std::string(host);
    }
    if (!isAscii(host)) {
        const QByteArray ace =
            QUrl::toAce(QString::fromUtf8(host.data(), static_cast<qsizetype>(host.size())), {});
        if (ace.contains("xn--")) {
            return ace.toStdString();
        }
    }
    // Colons and brackets stay, so that the parser rejects them.
    return encoded(host, ":[]");
}

std::string encodedAuthority(std::string_view authority) {
    std::string out;
    if (const auto at = authority.rfind('@'); at != std::string_view::npos) {
        out = encoded(authority.substr(0, at), ":") + '@';
        authority = authority.substr(at + 1);
    }
    // The port begins after the last colon, unless that is inside the brackets of an IPv6 address.
    const auto colon = authority.rfind(':');
    const bool hasPort =
        colon != std::string_view::npos && authority.find(']', colon) == std::string_view::npos;
    out += encodedHost(authority.substr(0, hasPort ? colon : std::string_view::npos));
    if (hasPort) {
        out += authority.substr(colon);
    }
    return out;
}

std::string encodedReference(std::string_view text) {
    const Components parts = split(text);
    std::string out;
    if (parts.scheme) {
        out += *parts.scheme;
        out += ':';
    }
    if (parts.authority) {
        out += "//" + encodedAuthority(*parts.authority);
    }
    out += encoded(parts.path, ":@/");
    if (parts.query) {
        out += '?' + encoded(*parts.query, ":@/?");
    }
    if (parts.fragment) {
        out += '#' + encoded(*parts.fragment, ":@/?");
    }
    return out;
}

/// Owns a parsed reference, which points into `text`.
class ParsedUri final {
public:
    explicit ParsedUri(const std::string& text)
        : m_isValid(uriParseSingleUriExA(&m_uri, text.data(), text.data() + text.size(), nullptr) ==
                    URI_SUCCESS) {}
    ~ParsedUri() {
        if (m_isValid) {
            uriFreeUriMembersA(&m_uri);
        }
    }
    ParsedUri(const ParsedUri&) = delete;
    ParsedUri& operator=(const ParsedUri&) = delete;

    [[nodiscard]] bool isValid() const { return m_isValid; }
    [[nodiscard]] const UriUriA& get() const { return m_uri; }

private:
    UriUriA m_uri{};
    bool m_isValid;
};

std::optional<QString> textOf(const UriTextRangeA& range) {
    if (range.first == nullptr || range.first == range.afterLast) {
        return std::nullopt;
    }
    return QString::fromLatin1(range.first, range.afterLast - range.first);
}

} // namespace

std::optional<Url> Url::fromString(QStringView text) {
    if (text.isEmpty() || !text.isValidUtf16()) {
        return std::nullopt;
    }
    const std::string reference = encodedReference(text.toUtf8().toStdString());
    const ParsedUri parsed(reference);
    if (!parsed.isValid()) {
        return std::nullopt;
    }
    Url url;
    url.m_text = QString::fromStdString(reference);
    url.m_scheme = textOf(parsed.get().scheme);
    url.m_host = textOf(parsed.get().hostText);
    url.m_port = textOf(parsed.get().portText);
    return url;
}

} // namespace brimlet
