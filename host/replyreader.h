#pragma once

#include "host/replyreading.h"

#include <memory>

namespace brimlet {

/// What the bytes of a reply amount to.
enum class ReplyKind {
    NoJson,
    NotAnObject, ///< Valid JSON with something else at the top.
    Object,
};

/// Reads replies, and remembers the last one: almost every poll brings the same bytes again.
class ReplyReader final {
public:
    struct Reading final {
        ReplyKind kind = ReplyKind::NoJson;
        ReplyFields fields; ///< Of an object.
    };

    /// Never null. A body of up to 64 KiB is kept until the next one.
    [[nodiscard]] std::shared_ptr<const Reading> read(const QByteArray& body);

private:
    QByteArray m_body;
    std::shared_ptr<const Reading> m_reading;
};

} // namespace brimlet
