#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace brimlet {

/// What the header lines of one reply say about asking later whether it still holds.
class Validators final {
public:
    /// Takes one header; others than the four it knows change nothing.
    void add(QByteArrayView name, const QByteArray& value);

    /// As sent, quotes and weakness mark included; empty for none, or for one that is malformed,
    /// longer than 256 bytes or given twice.
    [[nodiscard]] const QByteArray& etag() const { return m_etag.value; }
    /// As sent; empty under the same conditions.
    [[nodiscard]] const QByteArray& lastModified() const { return m_lastModified.value; }
    /// True when the reply can be asked about and the service has not forbidden to keep it.
    [[nodiscard]] bool mayKeep() const;
    /// False when a 304 names a validator other than the one it was asked about, which `asked` is.
    /// Weak and strong are no difference, as in the service's own comparison.
    [[nodiscard]] bool agreesWith(const Validators& asked) const;

private:
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
