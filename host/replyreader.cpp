#include "host/replyreader.h"

namespace brimlet {

std::shared_ptr<const ReplyReader::Reading> ReplyReader::read(const QByteArray& body) {
    // Bytes. A longer body is not cached, to save memory.
    constexpr qsizetype kLongestKept = qsizetype{64} * 1024;
    if (m_reading && m_body == body) {
        m_body = body; // shares the bytes with the HTTP client's kept reply, if it has one
        return m_reading;
    }
    auto reading = std::make_shared<Reading>();
    if (const auto json = parseJson(body)) {
        reading->kind = json->is_object() ? ReplyKind::Object : ReplyKind::NotAnObject;
        if (json->is_object()) {
            reading->fields = readFields(*json);
        }
    }
    const bool isKept = body.size() <= kLongestKept;
    m_body = isKept ? body : QByteArray();
    m_reading = isKept ? reading : nullptr;
    return reading;
}

} // namespace brimlet
