#include "platform/curl/validators.h"

#include <QList>

#include <algorithm>

namespace brimlet {
namespace {

/// Bytes. A validator goes out with every poll, so one that is long saves nothing.
constexpr qsizetype kLongest = 256;

bool isNamed(QByteArrayView name, QByteArrayView wanted) {
    return name.compare(wanted, Qt::CaseInsensitive) == 0;
}

/// True for one entry of a comma-separated list, arguments behind "=" aside.
bool hasWord(const QByteArray& list, QByteArrayView word) {
    const QList<QByteArray> parts = list.split(',');
    return std::any_of(parts.cbegin(), parts.cend(), [word](const QByteArray& part) {
        return isNamed(part.split('=').first().trimmed(), word);
    });
}

bool isPrintable(const QByteArray& text) {
    return std::all_of(text.cbegin(), text.cend(), [](char c) { return c >= ' ' && c <= '~'; });
}

QByteArray withoutMark(const QByteArray& etag) {
    return etag.startsWith("W/") ? etag.sliced(2) : etag;
}

bool isSoundEtag(const QByteArray& etag) {
    const QByteArray quoted = withoutMark(etag);
    return etag.size() <= kLongest && quoted.size() >= 2 && quoted.startsWith('"') &&
           quoted.indexOf('"', 1) == quoted.size() - 1 && isPrintable(quoted) &&
           !quoted.contains(' ');
}

bool isSoundDate(const QByteArray& date) {
    return !date.isEmpty() && date.size() <= kLongest && isPrintable(date);
}

} // namespace

void Validators::add(QByteArrayView name, const QByteArray& value) {
    if (isNamed(name, "ETag")) {
        put(m_etag, value, isSoundEtag(value));
    } else if (isNamed(name, "Last-Modified")) {
        put(m_lastModified, value, isSoundDate(value));
    } else if (isNamed(name, "Cache-Control")) {
        m_isForbidden = m_isForbidden || hasWord(value, "no-store");
    } else if (isNamed(name, "Vary")) {
        m_isForbidden = m_isForbidden || hasWord(value, "*");
    }
}

void Validators::put(Once& into, const QByteArray& value, bool isSound) {
    into.value = isSound && !into.isSeen ? value : QByteArray();
    into.isSeen = true;
}

bool Validators::mayKeep() const {
    return !m_isForbidden && !(etag().isEmpty() && lastModified().isEmpty());
}

bool Validators::agreesWith(const Validators& asked) const {
    if (!asked.etag().isEmpty()) {
        return etag().isEmpty() || withoutMark(etag()) == withoutMark(asked.etag());
    }
    return lastModified().isEmpty() || lastModified() == asked.lastModified();
}

} // namespace brimlet
