#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace brimlet {

/// The headers of one reply by which a later conditional request can check whether the reply is
/// still current: ETag, Last-Modified, Cache-Control and Vary.
class Validators final {
public:
    /// Takes one header; others than these four are ignored.
    void add(QByteArrayView name, const QByteArray& value);

    /// As sent, with the quotes and a weakness mark. Empty when there is none, or when it is
    /// malformed, longer than 256 bytes or given twice.
    [[nodiscard]] const QByteArray& etag() const { return m_etag.value; }
    /// As sent; empty under the same conditions.
    [[nodiscard]] const QByteArray& lastModified() const { return m_lastModified.value; }
    /// True when there is a validator and neither "no-store" nor "Vary: *" forbids keeping.
    [[nodiscard]] bool mayKeep() const;
    /// False when these, of a 304, name another validator than `kept`, which the request was made
    /// with. Weak and strong tags compare equal, as If-None-Match compares them.
    [[nodiscard]] bool agreesWith(const Validators& kept) const;

private:
    /// A value that counts only if it is given once.
    struct Once final {
        bool isSeen = false;
        QByteArray value;
    };
    static void put(Once& into, const QByteArray& value, bool isSound);

    Once m_etag;
    Once m_lastModified;
    bool m_isForbidden = false;
};

} // namespace brimlet
