#pragma once

#include <QtGlobal>

namespace brimlet {

/// What went over an engine's connections since its beginning. Bytes are HTTP's, heads and bodies;
/// those of TLS around them are not counted.
struct CurlTraffic final {
    qint64 bytesSent = 0;
    qint64 bytesReceived = 0;
    qint64 connections = 0; ///< That were opened and carried a request.
    qint64 notModified = 0; ///< Replies that said that the kept one still holds.

    CurlTraffic& operator+=(const CurlTraffic& other) {
        bytesSent += other.bytesSent;
        bytesReceived += other.bytesReceived;
        connections += other.connections;
        notModified += other.notModified;
        return *this;
    }
};

} // namespace brimlet
