#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace brimlet {

/// A web address. Replies, rules, the browser and the HTTP client all use this type, so that the
/// address a rule allowed is exactly the one that is fetched or opened.
///
/// Parsed according to RFC 3986, after percent-encoding the characters that are not allowed where
/// they occur. Scheme and host keep their letter case, except that a host with non-ASCII letters is
/// converted to its lower-case "xn--" (IDNA) form.
class Url final {
public:
    /// Absent for an empty or malformed text. A relative reference ("/path") is well formed.
    [[nodiscard]] static std::optional<Url> fromString(QStringView text);

    /// The whole address, ASCII only.
    [[nodiscard]] const QString& absoluteString() const { return m_text; }
    /// As written, e.g. "https" or "HTTPS"; absent in a relative reference.
    [[nodiscard]] const std::optional<QString>& scheme() const { return m_scheme; }
    /// As written, without the brackets of an IPv6 address ("::1"); absent when the address has no
    /// host or an empty one.
    [[nodiscard]] const std::optional<QString>& host() const { return m_host; }
    /// As written; absent when missing or empty. Digits, perhaps beyond 65535.
    [[nodiscard]] const std::optional<QString>& port() const { return m_port; }

    bool operator==(const Url& other) const { return m_text == other.m_text; }

private:
    Url() = default;

    QString m_text;
    std::optional<QString> m_scheme;
    std::optional<QString> m_host;
    std::optional<QString> m_port;
};

} // namespace brimlet
