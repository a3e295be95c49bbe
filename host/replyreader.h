#pragma once

#include "host/replyreading.h"

#include <memory>

namespace brimlet {

/// The kind of a reply's body.
enum class ReplyKind {
    NoJson,
    NotAnObject, ///< JSON whose top level is something else.
    Object,
};

/// Reads replies and caches the last one, since most polls get the same bytes again.
class ReplyReader final {
public:
    struct Reading final {
        ReplyKind kind = ReplyKind::NoJson;
        ReplyFields fields; ///< All absent unless the kind is Object.
    };

    /// Parses the body, or returns the cached result if the bytes are the same as last time. Never
    /// null. Bodies over 64 KiB are not cached.
    [[nodiscard]] std::shared_ptr<const Reading> read(const QByteArray& body);

private:
    QByteArray m_body;
    std::shared_ptr<const Reading> m_reading;
};

} // namespace brimlet
