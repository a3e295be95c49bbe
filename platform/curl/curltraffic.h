#pragma once

#include <QtGlobal>

namespace brimlet {

/// What a client has sent and received. Bytes are those of HTTP heads and bodies, without TLS.
struct CurlTraffic final {
    qint64 bytesSent = 0;
    qint64 bytesReceived = 0;
    qint64 connections = 0; ///< Opened ones that carried a request.
    qint64 notModified = 0; ///< 304 replies that confirmed a kept reply.

    CurlTraffic& operator+=(const CurlTraffic& other) {
        bytesSent += other.bytesSent;
        bytesReceived += other.bytesReceived;
        connections += other.connections;
        notModified += other.notModified;
        return *this;
    }
};

} // namespace brimlet
