#include "platform/curl/curltransfer.h"

#include <openssl/ssl.h>

#include <utility>

namespace brimlet {
namespace {

/// How many bytes of an unwanted body are read so that the connection can be used again.
constexpr qint64 kDrainLimit = qint64{16} * 1024;

/// Bytes of all unfinished bodies of one client together. Without a limit, servers that send large
/// bodies and never end them could fill the memory.
constexpr qsizetype kUnfinishedLimit = qsizetype{16} * 1024 * 1024;
/// A body up to this many bytes is received even beyond that limit, so that pictures cannot block
/// a poll.
constexpr qsizetype kSmallBody = qsizetype{256} * 1024;

/// Limit on bytes on the wire per byte of a chunked body. Chunks of one byte need six; more means
/// that chunk extensions pad the transfer endlessly.
constexpr qint64 kMaxWireBytesPerByte = 8;

HttpError errorOf(CURLcode code) {
    // CURLE_TOO_LARGE: libcurl's result for an endless head since its version 8.6.
    constexpr int kTooLarge = 100;
    if (code == kTooLarge) {
        return HttpError::TooLarge;
    }
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
        return HttpError::TimedOut;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_INTERFACE_FAILED:
    case CURLE_PROXY:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ISSUER_ERROR:
        return HttpError::Unreachable;
    case CURLE_OUT_OF_MEMORY: // the same in older versions
    case CURLE_FILESIZE_EXCEEDED:
        return HttpError::TooLarge;
    default:
        return HttpError::Broken;
    }
}

/// True when the TLS library has buffered bytes of this connection that libcurl has not read, such
/// as the rest of a record whose first part ended a body. The socket does not show them.
bool hasUnreadRecord(CURL* easy) {
    const curl_tlssessioninfo* session = nullptr;
    if (curl_easy_getinfo(easy, CURLINFO_TLS_SSL_PTR, &session) != CURLE_OK ||
        session->internals == nullptr) {
        return false; // no TLS
    }
    // Other libraries cannot be asked, so their connections are never used twice.
    return session->backend != CURLSSLBACKEND_OPENSSL ||
           SSL_has_pending(static_cast<const SSL*>(session->internals)) != 0;
}

QByteArrayView viewOf(const char* data, std::size_t size) {
    return {data, static_cast<qsizetype>(size)};
}

} // namespace

void CurlTransfer::setCallbacks() {
    set(CURLOPT_PRIVATE, static_cast<void*>(this));
    set(CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    set(CURLOPT_SOCKOPTFUNCTION, &CurlTransfer::onSocket);
    set(CURLOPT_SOCKOPTDATA, static_cast<void*>(this));
    set(CURLOPT_PREREQFUNCTION, &CurlTransfer::onConnected);
    set(CURLOPT_PREREQDATA, static_cast<void*>(this));
    // Prints nothing. Only the debug callback sees the body before libcurl decodes the chunks.
    set(CURLOPT_DEBUGFUNCTION, &CurlTransfer::onDebug);
    set(CURLOPT_DEBUGDATA, static_cast<void*>(this));
    set(CURLOPT_VERBOSE, 1L);
}

bool CurlTransfer::hasResult() const {
    return m_failure || m_curlResult || (m_status != 0 && !m_wantsBody);
}

HttpResult CurlTransfer::takeResult() {
    if (m_failure) {
        return *m_failure;
    }
    if (m_status != 0 && !m_wantsBody) {
        if (m_status == 407 && m_isProxied) {
            return HttpError::Unreachable; // the proxy replied, not the service
        }
        return HttpReply{m_status, {}};
    }
    if (const CURLcode code = m_curlResult.value_or(CURLE_OK); code != CURLE_OK) {
        return errorOf(code);
    }
    if (m_status == 0) {
        return HttpError::Broken; // closed before the head was complete
    }
    m_client->bodyBytes -= m_body.size();
    return HttpReply{m_status, std::exchange(m_body, {})};
}

bool CurlTransfer::fail(HttpError error) {
    if (!m_failure) {
        m_failure = error;
    }
    return false;
}

bool CurlTransfer::addHeadLine(QByteArrayView line) {
    if (const auto error = m_head.add(line)) {
        m_isDrained = true;
        return hasResult() ? false : fail(*error); // a bad trailer does not change a known result
    }
    const bool isEndOfHead = line == "\r\n" || line == "\n";
    return m_status == 0 && isEndOfHead ? endHead() : true;
}

bool CurlTransfer::endHead() {
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    if (status < 100 || status > 999) {
        return fail(HttpError::Broken);
    }
    if (status < 200 && status != 101) {
        m_head.startOver();
        return true;
    }
    m_status = static_cast<int>(status);
    m_wantsBody = status >= 200 && status <= m_lastStatusWithBody;
    const qint64 length = m_head.bodyLength().value_or(0);
    if (m_wantsBody) {
        return length > m_bodyLimit ? fail(HttpError::TooLarge) : true;
    }
    // A 204 or 304 has no body, even if it names a length.
    const bool hasNoBody = status == 204 || status == 304;
    m_isDrained = status == 101 || (length > kDrainLimit && !hasNoBody);
    return !m_isDrained;
}

bool CurlTransfer::addBody(QByteArrayView bytes) {
    if (!m_wantsBody) {
        return !m_isDrained;
    }
    if (bytes.size() > m_bodyLimit - m_body.size()) {
        return fail(HttpError::TooLarge);
    }
    if (bytes.size() > kUnfinishedLimit - m_client->bodyBytes &&
        m_body.size() + bytes.size() > kSmallBody) {
        return fail(HttpError::TooLarge);
    }
    m_client->bodyBytes += bytes.size();
    m_body += bytes;
    return true;
}

void CurlTransfer::countBodyOnWire(qsizetype bytes) {
    m_bodyBytesOnWire += bytes;
    if (!m_wantsBody) {
        m_isDrained = m_isDrained || m_bodyBytesOnWire > kDrainLimit;
        return;
    }
    const auto length = m_head.bodyLength();
    if (length && m_bodyBytesOnWire > *length) {
        fail(HttpError::Broken); // more than Content-Length
    } else if (m_head.hasTransferEncoding() &&
               m_bodyBytesOnWire > kMaxWireBytesPerByte * (m_bodyLimit + kDrainLimit)) {
        fail(HttpError::TooLarge);
    }
}

void CurlTransfer::countTraffic(curl_infotype kind, qint64 bytes) {
    if (kind == CURLINFO_HEADER_IN || kind == CURLINFO_DATA_IN) {
        m_client->traffic.bytesReceived += bytes;
    } else if (kind == CURLINFO_HEADER_OUT || kind == CURLINFO_DATA_OUT) {
        m_client->traffic.bytesSent += bytes;
    }
}

std::size_t CurlTransfer::onHeader(char* data, std::size_t /*one*/, std::size_t size, void* self) {
    auto* const transfer = static_cast<CurlTransfer*>(self);
    return transfer->addHeadLine(viewOf(data, size)) ? size : 0;
}

std::size_t CurlTransfer::onBody(char* data, std::size_t /*one*/, std::size_t size, void* self) {
    auto* const transfer = static_cast<CurlTransfer*>(self);
    return transfer->addBody(viewOf(data, size)) ? size : CURL_WRITEFUNC_ERROR;
}

int CurlTransfer::onDebug(CURL* /*easy*/, curl_infotype kind, char* data, std::size_t size,
                          void* self) {
    auto* const transfer = static_cast<CurlTransfer*>(self);
    transfer->countTraffic(kind, static_cast<qint64>(size));
    if (kind == CURLINFO_DATA_IN) {
        transfer->countBodyOnWire(static_cast<qsizetype>(size));
    } else if (kind == CURLINFO_HEADER_OUT) {
        // The request line holds a whole address instead of a path only for a proxy.
        const QByteArrayView head = viewOf(data, size);
        const qsizetype blank = head.indexOf(' ');
        transfer->m_isProxied = blank >= 0 && blank + 1 < head.size() && head[blank + 1] != '/';
    }
    return 0;
}

int CurlTransfer::onSocket(void* self, curl_socket_t socket, curlsocktype /*purpose*/) {
    const bool isTaken = static_cast<CurlTransfer*>(self)->m_context.sockets.add(socket);
    return isTaken ? CURL_SOCKOPT_OK : CURL_SOCKOPT_ERROR;
}

int CurlTransfer::onConnected(void* self, char* remoteAddress, char* localAddress, int remotePort,
                              int localPort) {
    auto* const transfer = static_cast<CurlTransfer*>(self);
    long newConnections = 0;
    curl_easy_getinfo(transfer->m_easy.get(), CURLINFO_NUM_CONNECTS, &newConnections);
    if (newConnections == 0) {
        transfer->m_context.sockets.shutDownIfDataIsPending(
            SocketEnd::of(localAddress, localPort), SocketEnd::of(remoteAddress, remotePort),
            hasUnreadRecord(transfer->m_easy.get()));
    } else {
        ++transfer->m_client->traffic.connections;
    }
    return CURL_PREREQFUNC_OK;
}

} // namespace brimlet
