#include "platform/curl/curltransfer.h"

#include "platform/curl/curlrequestchain.h"

#include <openssl/ssl.h>

#include <utility>

namespace brimlet {
namespace {

/// Bytes of a body nobody asked for that are read to keep the connection.
constexpr qint64 kDrainLimit = qint64{16} * 1024;

/// Bytes of all bodies of a client that are under way together: servers that send large ones and
/// never end them would fill the memory. Small ones go on even so, since a poll is not to suffer
/// for somebody's pictures.
constexpr qsizetype kHeldLimit = qsizetype{16} * 1024 * 1024;
constexpr qsizetype kSmallBody = qsizetype{256} * 1024;

/// How many bytes on the wire one byte of a chunked body may take: a chunk of one byte takes six.
/// What goes beyond is padding without end.
constexpr qint64 kFraming = 8;

HttpError errorOf(CURLcode code) {
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
    case CURLE_OUT_OF_MEMORY: // what libcurl says of a header line without end
    case CURLE_FILESIZE_EXCEEDED:
        return HttpError::TooLarge;
    default:
        return HttpError::Broken;
    }
}

/// Whether TLS holds bytes that were not asked for yet: what is left of a record that libcurl read
/// the end of a body from is in no socket any more.
bool hasUnreadRecord(CURL* easy) {
    const curl_tlssessioninfo* session = nullptr;
    if (curl_easy_getinfo(easy, CURLINFO_TLS_SSL_PTR, &session) != CURLE_OK ||
        session->internals == nullptr) {
        return false; // no TLS
    }
    // With another library nothing is known, and no connection is used twice.
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
    // Nothing is printed: this is where a body's bytes are seen before they are unwrapped.
    set(CURLOPT_DEBUGFUNCTION, &CurlTransfer::onDebug);
    set(CURLOPT_DEBUGDATA, static_cast<void*>(this));
    set(CURLOPT_VERBOSE, 1L);
}

void CurlTransfer::end(CURLcode code) {
    m_end = code;
    markReady();
}

bool CurlTransfer::hasResult() const {
    return m_failure || m_end || (m_status != 0 && !m_wantsBody);
}

HttpResult CurlTransfer::takeResult() {
    if (m_failure) {
        return *m_failure;
    }
    if (m_status != 0 && !m_wantsBody) {
        if (m_status == 407 && m_isProxied) {
            return HttpError::Unreachable; // the proxy's word, not the service's
        }
        return HttpReply{m_status, {}};
    }
    if (const CURLcode code = m_end.value_or(CURLE_OK); code != CURLE_OK) {
        return errorOf(code);
    }
    if (m_status == 0) {
        return HttpError::Broken; // closed before the head was complete
    }
    m_client->held -= m_body.size();
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
        // A settled status stands, whatever trails a body that nobody asked for.
        m_isDrained = true;
        return hasResult() ? false : fail(*error);
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
    // The length that a 204 or 304 names is not one of bytes to come.
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
    if (bytes.size() > kHeldLimit - m_client->held && m_body.size() + bytes.size() > kSmallBody) {
        return fail(HttpError::TooLarge); // all those under way together hold too much
    }
    m_client->held += bytes.size();
    m_body += bytes;
    return true;
}

void CurlTransfer::countRaw(qsizetype bytes) {
    m_rawBytes += bytes;
    if (!m_wantsBody) {
        m_isDrained = m_isDrained || m_rawBytes > kDrainLimit;
        return;
    }
    const auto length = m_head.bodyLength();
    if (length && m_rawBytes > *length) {
        (void)fail(HttpError::Broken); // more than was promised
    } else if (m_head.isCoded() && m_rawBytes > kFraming * (m_bodyLimit + kDrainLimit)) {
        (void)fail(HttpError::TooLarge);
    }
}

void CurlTransfer::countTraffic(curl_infotype kind, qint64 bytes) {
    if (kind == CURLINFO_HEADER_IN || kind == CURLINFO_DATA_IN) {
        m_context.traffic.bytesReceived += bytes;
    } else if (kind == CURLINFO_HEADER_OUT || kind == CURLINFO_DATA_OUT) {
        m_context.traffic.bytesSent += bytes;
    }
}

void CurlTransfer::markReady() {
    if (!m_isReadyMarked && ((chain && hasResult()) || isDrained())) {
        m_isReadyMarked = true;
        m_context.news.push_back(this);
    }
}

std::size_t CurlTransfer::onHeader(char* data, std::size_t /*one*/, std::size_t size, void* self) {
    auto* const transfer = static_cast<CurlTransfer*>(self);
    const bool isTaken = transfer->addHeadLine(viewOf(data, size));
    transfer->markReady();
    return isTaken ? size : 0;
}

std::size_t CurlTransfer::onBody(char* data, std::size_t /*one*/, std::size_t size, void* self) {
    auto* const transfer = static_cast<CurlTransfer*>(self);
    // Taking less than was offered ends the transfer.
    const bool isTaken = transfer->addBody(viewOf(data, size));
    transfer->markReady();
    return isTaken ? size : CURL_WRITEFUNC_ERROR;
}

int CurlTransfer::onDebug(CURL* /*easy*/, curl_infotype kind, char* data, std::size_t size,
                          void* self) {
    auto* const transfer = static_cast<CurlTransfer*>(self);
    transfer->countTraffic(kind, static_cast<qint64>(size));
    if (kind == CURLINFO_DATA_IN) {
        transfer->countRaw(static_cast<qsizetype>(size));
        transfer->markReady();
    } else if (kind == CURLINFO_HEADER_OUT) {
        // Only a proxy is asked for a whole address instead of a path.
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

int CurlTransfer::onConnected(void* self, char* thereAddress, char* hereAddress, int therePort,
                              int herePort) {
    auto* const transfer = static_cast<CurlTransfer*>(self);
    long newConnections = 0;
    curl_easy_getinfo(transfer->m_easy.get(), CURLINFO_NUM_CONNECTS, &newConnections);
    if (newConnections == 0) {
        transfer->m_context.sockets.shutDownIfDataIsPending(
            {hereAddress, herePort}, {thereAddress, therePort},
            hasUnreadRecord(transfer->m_easy.get()));
    } else {
        ++transfer->m_context.traffic.connections;
    }
    return CURL_PREREQFUNC_OK;
}

} // namespace brimlet
