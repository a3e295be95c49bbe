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

    /// As sent, including the quotes and any "W/". Empty when there is none, or when it is
    /// malformed, longer than 256 bytes or given twice.
    [[nodiscard]] const QByteArray& etag() const { return m_etag.value; }
    /// As sent; empty under the same conditions.
    [[nodiscard]] const QByteArray& lastModified() const { return m_lastModified.value; }
    /// True when there is a validator and neither "no-store" nor "Vary: *" forbids keeping.
    [[nodiscard]] bool mayKeep() const;
    /// Call on the validators of a 304, with those the request was made with: false if they name a
    /// different one. Ignores "W/", like If-None-Match.
    [[nodiscard]] bool agreesWith(const Validators& kept) const;

private:
    /// A value that counts only if it is given once.
    struct SingleValue final {
        bool isSeen = false;
        QByteArray value;
    };
    static void put(SingleValue& into, const QByteArray& value, bool isValid);

    SingleValue m_etag;
    SingleValue m_lastModified;
    bool m_isForbidden = false;
};

} // namespace brimlet
