// What a transfer tells libcurl before it starts.

#include "platform/curl/authorities.h"
#include "platform/curl/curlrequestchain.h"
#include "platform/curl/curltransfer.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace brimlet {
namespace {

long toLong(std::chrono::milliseconds time) {
    constexpr std::chrono::milliseconds::rep kMost = std::numeric_limits<int>::max();
    return static_cast<long>(
        std::clamp<std::chrono::milliseconds::rep>(time.count(), 1, kMost)); // 0 would mean never
}

bool hasHeader(const HttpRequest& request, const char* name) {
    return std::any_of(
        request.headers.cbegin(), request.headers.cend(),
        [name](const auto& header) { return header.name.compare(name, Qt::CaseInsensitive) == 0; });
}

} // namespace

// A handle of its own for each transfer, never one that was used before: libcurl 7.88 keeps a
// pointer to a header of the request before, even across a reset, and follows it when a header line
// begins with a blank.
CurlTransfer::CurlTransfer(const HttpRequest& request, CurlUrl address,
                           std::chrono::milliseconds timeout, CurlTransferContext& context,
                           std::shared_ptr<CurlClientState> client)
    : m_context(context)
    , m_client(std::move(client))
    , m_address(std::move(address))
    , m_lastStatusWithBody(request.lastStatusWithBody)
    , m_bodyLimit(request.bodyLimit)
    , m_easy(curl_easy_init()) {
    m_isReady = m_easy != nullptr;
    setRules(timeout);
    setRequest(request);
    setCallbacks();
}

void CurlTransfer::setRules(std::chrono::milliseconds timeout) {
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(CURLOPT_HTTP09_ALLOWED, 0L);
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_TIMEOUT_MS, toLong(timeout));
    set(CURLOPT_NOSIGNAL, 1L);
    if (m_client->scope != 0) {
        set(CURLOPT_ADDRESS_SCOPE, m_client->scope);
    }
    set(CURLOPT_QUICK_EXIT, 1L); // never wait for a hanging name look-up
    set(CURLOPT_BUFFERSIZE, 16L * 1024);
    set(CURLOPT_UPLOAD_BUFFERSIZE, 16L * 1024);

    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    // From a folder only the authority that is needed is read. A file of all of them costs nine
    // mebibytes and twenty milliseconds with each connection.
    if (const QByteArray& folder = authoritiesFolder(); !folder.isEmpty()) {
        set(CURLOPT_CAPATH, folder.constData());
        set(CURLOPT_CAINFO, static_cast<const char*>(nullptr));
    }
    if (const QByteArray& moreAuthorities = m_context.moreAuthorities; !moreAuthorities.isEmpty()) {
        const bool isFolder = QFileInfo(QFile::decodeName(moreAuthorities)).isDir();
        set(isFolder ? CURLOPT_CAPATH : CURLOPT_CAINFO, moreAuthorities.constData());
    }
    set(CURLOPT_HTTPAUTH, long{CURLAUTH_NONE});
    set(CURLOPT_NETRC, long{CURL_NETRC_IGNORED});
    set(CURLOPT_HEADEROPT, long{CURLHEADER_SEPARATE}); // our headers are not for a proxy's CONNECT
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
}

void CurlTransfer::setRequest(const HttpRequest& request) {
    set(CURLOPT_CURLU, m_address.get());
    if (isLoopback(request.url)) {
        set(CURLOPT_PROXY, "");
    }
    const bool isPost = request.method == "POST";
    if (request.body || isPost) {
        m_upload = request.body.value_or(QByteArray());
        set(CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t{m_upload.size()});
        set(CURLOPT_POSTFIELDS, m_upload.constData());
    } else {
        set(CURLOPT_HTTPGET, 1L);
    }
    if (request.method != "GET" && request.method != "HEAD") {
        // A kept connection may end just as the request goes out; libcurl would then send it again,
        // although it may have been acted upon. Nor is its connection kept: polls have one.
        set(CURLOPT_FRESH_CONNECT, 1L);
        set(CURLOPT_FORBID_REUSE, 1L);
    }
    if (request.method == "HEAD") {
        set(CURLOPT_NOBODY, 1L);
    } else if (!isPost) {
        set(CURLOPT_CUSTOMREQUEST, request.method.constData());
    }

    set(CURLOPT_USERAGENT, "Brimlet/0.1.0");
    // A name without a value takes back what libcurl would add by itself.
    for (const char* name : {"Accept", "Content-Type", "Expect", "Proxy-Connection"}) {
        if (!hasHeader(request, name)) {
            addLine(QByteArray(name) + ':');
        }
    }
    for (const HttpHeader& header : request.headers) {
        // libcurl's way to write a header that is empty.
        addLine(header.value.trimmed().isEmpty() ? header.name + ';'
                                                 : header.name + ": " + header.value);
    }
    set(CURLOPT_HTTPHEADER, m_lines.get());
}

void CurlTransfer::addLine(const QByteArray& line) {
    curl_slist* const longer = curl_slist_append(m_lines.get(), line.constData());
    m_isReady = m_isReady && longer != nullptr;
    if (longer != nullptr && !m_lines) {
        m_lines.reset(longer);
    }
}

} // namespace brimlet
