#include "platform/curl/validators.h"

#include <QLatin1StringView>
#include <QStringTokenizer>

#include <algorithm>

namespace brimlet {
namespace {

/// Bytes. Every poll sends the validator, so a long one saves nothing.
constexpr qsizetype kLongest = 256;

bool isNamed(QByteArrayView name, QByteArrayView wanted) {
    return name.compare(wanted, Qt::CaseInsensitive) == 0;
}

/// True when a comma-separated list has that entry; what follows "=" in an entry is ignored.
bool hasWord(const QByteArray& list, QByteArrayView word) {
    for (const auto part : QLatin1StringView(list).tokenize(u',')) {
        const qsizetype sign = part.indexOf(u'=');
        const auto name = part.first(sign < 0 ? part.size() : sign).trimmed();
        if (isNamed(QByteArrayView(name.data(), name.size()), word)) {
            return true;
        }
    }
    return false;
}

bool isPrintable(const QByteArray& text) {
    return std::all_of(text.cbegin(), text.cend(), [](char c) { return c >= ' ' && c <= '~'; });
}

QByteArray withoutWeakMark(const QByteArray& etag) {
    return etag.startsWith("W/") ? etag.sliced(2) : etag;
}

bool isValidEtag(const QByteArray& etag) {
    const QByteArray quoted = withoutWeakMark(etag);
    return etag.size() <= kLongest && quoted.size() >= 2 && quoted.startsWith('"') &&
           quoted.indexOf('"', 1) == quoted.size() - 1 && isPrintable(quoted) &&
           !quoted.contains(' ');
}

bool isValidDate(const QByteArray& date) {
    return !date.isEmpty() && date.size() <= kLongest && isPrintable(date);
}

} // namespace

void Validators::add(QByteArrayView name, const QByteArray& value) {
    if (isNamed(name, "ETag")) {
        put(m_etag, value, isValidEtag(value));
    } else if (isNamed(name, "Last-Modified")) {
        put(m_lastModified, value, isValidDate(value));
    } else if (isNamed(name, "Cache-Control")) {
        m_isForbidden = m_isForbidden || hasWord(value, "no-store");
    } else if (isNamed(name, "Vary")) {
        m_isForbidden = m_isForbidden || hasWord(value, "*");
    }
}

void Validators::put(SingleValue& into, const QByteArray& value, bool isValid) {
    into.value = isValid && !into.isSeen ? value : QByteArray();
    into.isSeen = true;
}

bool Validators::mayKeep() const {
    return !m_isForbidden && !(etag().isEmpty() && lastModified().isEmpty());
}

bool Validators::agreesWith(const Validators& kept) const {
    if (!kept.etag().isEmpty()) {
        return etag().isEmpty() || withoutWeakMark(etag()) == withoutWeakMark(kept.etag());
    }
    return lastModified().isEmpty() || lastModified() == kept.lastModified();
}

} // namespace brimlet
