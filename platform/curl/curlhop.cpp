#include "platform/curl/curlhop.h"

#include "platform/curl/curlexchange.h"

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

void CurlHop::setCallbacks() {
    set(CURLOPT_PRIVATE, static_cast<void*>(this));
    set(CURLOPT_HEADERFUNCTION, &CurlHop::onHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(CURLOPT_WRITEFUNCTION, &CurlHop::onBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    set(CURLOPT_SOCKOPTFUNCTION, &CurlHop::onSocket);
    set(CURLOPT_SOCKOPTDATA, static_cast<void*>(this));
    set(CURLOPT_PREREQFUNCTION, &CurlHop::onConnected);
    set(CURLOPT_PREREQDATA, static_cast<void*>(this));
    // Nothing is printed: this is where a body's bytes are seen before they are unwrapped.
    set(CURLOPT_DEBUGFUNCTION, &CurlHop::onDebug);
    set(CURLOPT_DEBUGDATA, static_cast<void*>(this));
    set(CURLOPT_VERBOSE, 1L);
}

void CurlHop::end(CURLcode code) {
    m_end = code;
    tellNews();
}

bool CurlHop::isSettled() const {
    return m_failure || m_end || (m_status != 0 && !m_wantsBody);
}

HttpResult CurlHop::takeResult() {
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
    m_tenant->held -= m_body.size();
    return HttpReply{m_status, std::exchange(m_body, {})};
}

bool CurlHop::fail(HttpError error) {
    if (!m_failure) {
        m_failure = error;
    }
    return false;
}

bool CurlHop::addHeadLine(QByteArrayView line) {
    if (const auto error = m_head.add(line)) {
        // A settled status stands, whatever trails a body that nobody asked for.
        m_isSpent = true;
        return isSettled() ? false : fail(*error);
    }
    const bool isEndOfHead = line == "\r\n" || line == "\n";
    return m_status == 0 && isEndOfHead ? endHead() : true;
}

bool CurlHop::endHead() {
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
    m_isSpent = status == 101 || (length > kDrainLimit && !hasNoBody);
    return !m_isSpent;
}

bool CurlHop::addBody(QByteArrayView bytes) {
    if (!m_wantsBody) {
        return !m_isSpent;
    }
    if (bytes.size() > m_bodyLimit - m_body.size()) {
        return fail(HttpError::TooLarge);
    }
    if (bytes.size() > kHeldLimit - m_tenant->held && m_body.size() + bytes.size() > kSmallBody) {
        return fail(HttpError::TooLarge); // all those under way together hold too much
    }
    m_tenant->held += bytes.size();
    m_body += bytes;
    return true;
}

void CurlHop::countRaw(qsizetype bytes) {
    m_rawBytes += bytes;
    if (!m_wantsBody) {
        m_isSpent = m_isSpent || m_rawBytes > kDrainLimit;
        return;
    }
    const auto length = m_head.bodyLength();
    if (length && m_rawBytes > *length) {
        (void)fail(HttpError::Broken); // more than was promised
    } else if (m_head.isCoded() && m_rawBytes > kFraming * (m_bodyLimit + kDrainLimit)) {
        (void)fail(HttpError::TooLarge);
    }
}

void CurlHop::countTraffic(curl_infotype kind, qint64 bytes) {
    if (kind == CURLINFO_HEADER_IN || kind == CURLINFO_DATA_IN) {
        m_commons.traffic.bytesReceived += bytes;
    } else if (kind == CURLINFO_HEADER_OUT || kind == CURLINFO_DATA_OUT) {
        m_commons.traffic.bytesSent += bytes;
    }
}

void CurlHop::tellNews() {
    if (!m_isNews && ((exchange && isSettled()) || isSpent())) {
        m_isNews = true;
        m_commons.news.push_back(this);
    }
}

std::size_t CurlHop::onHeader(char* data, std::size_t /*one*/, std::size_t size, void* self) {
    auto* const hop = static_cast<CurlHop*>(self);
    const bool isTaken = hop->addHeadLine(viewOf(data, size));
    hop->tellNews();
    return isTaken ? size : 0;
}

std::size_t CurlHop::onBody(char* data, std::size_t /*one*/, std::size_t size, void* self) {
    auto* const hop = static_cast<CurlHop*>(self);
    // Taking less than was offered ends the transfer.
    const bool isTaken = hop->addBody(viewOf(data, size));
    hop->tellNews();
    return isTaken ? size : CURL_WRITEFUNC_ERROR;
}

int CurlHop::onDebug(CURL* /*easy*/, curl_infotype kind, char* data, std::size_t size, void* self) {
    auto* const hop = static_cast<CurlHop*>(self);
    hop->countTraffic(kind, static_cast<qint64>(size));
    if (kind == CURLINFO_DATA_IN) {
        hop->countRaw(static_cast<qsizetype>(size));
        hop->tellNews();
    } else if (kind == CURLINFO_HEADER_OUT) {
        // Only a proxy is asked for a whole address instead of a path.
        const QByteArrayView head = viewOf(data, size);
        const qsizetype blank = head.indexOf(' ');
        hop->m_isProxied = blank >= 0 && blank + 1 < head.size() && head[blank + 1] != '/';
    }
    return 0;
}

int CurlHop::onSocket(void* self, curl_socket_t socket, curlsocktype /*purpose*/) {
    const bool isTaken = static_cast<CurlHop*>(self)->m_commons.sockets.add(socket);
    return isTaken ? CURL_SOCKOPT_OK : CURL_SOCKOPT_ERROR;
}

int CurlHop::onConnected(void* self, char* thereAddress, char* hereAddress, int therePort,
                         int herePort) {
    auto* const hop = static_cast<CurlHop*>(self);
    long newConnections = 0;
    curl_easy_getinfo(hop->m_easy.get(), CURLINFO_NUM_CONNECTS, &newConnections);
    if (newConnections == 0) {
        hop->m_commons.sockets.shutUnlessQuiet({hereAddress, herePort}, {thereAddress, therePort},
                                               hasUnreadRecord(hop->m_easy.get()));
    } else {
        ++hop->m_commons.traffic.connections;
    }
    return CURL_PREREQFUNC_OK;
}

} // namespace brimlet
