#pragma once

#include "host/replyreading.h"

#include <memory>

namespace brimlet {

/// What a reply's body is.
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

    /// Never null, and valid as long as it is held. Caches a body of up to 64 KiB.
    [[nodiscard]] std::shared_ptr<const Reading> read(const QByteArray& body);

private:
    QByteArray m_body;
    std::shared_ptr<const Reading> m_reading;
};

} // namespace brimlet
