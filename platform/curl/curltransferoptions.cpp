// The options a transfer sets before it starts.

#include "platform/curl/authorities.h"
#include "platform/curl/curltransfer.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace brimlet {
namespace {

bool hasHeader(const HttpRequest& request, const char* name) {
    return std::any_of(
        request.headers.cbegin(), request.headers.cend(),
        [name](const auto& header) { return header.name.compare(name, Qt::CaseInsensitive) == 0; });
}

} // namespace

// Each transfer has a new handle: a reused one keeps, in libcurl 7.88 and even across a reset, a
// dangling pointer to a header of its last request, and dereferences it when a header line begins
// with a space.
CurlTransfer::CurlTransfer(std::unique_ptr<CurlRequestChain> ownChain, CurlUrl address,
                           CurlTransferContext& context)
    : chain(std::move(ownChain))
    , m_context(context)
    , m_client(chain->client)
    , m_address(std::move(address))
    , m_lastStatusWithBody(chain->request.lastStatusWithBody)
    , m_bodyLimit(chain->request.bodyLimit)
    , m_easy(curl_easy_init()) {
    m_isReady = m_easy != nullptr;
    setCommonOptions();
    setRequest(chain->conditionalRequest());
    setCallbacks();
}

void CurlTransfer::setCommonOptions() {
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(CURLOPT_HTTP09_ALLOWED, 0L);
    set(CURLOPT_FOLLOWLOCATION, 0L);
    const qint64 left =
        std::max<qint64>(chain->deadline.remainingTime(), 1); // 0 would mean no timeout
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(left));
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
    setTrust();
    set(CURLOPT_HTTPAUTH, long{CURLAUTH_NONE});
    set(CURLOPT_NETRC, long{CURL_NETRC_IGNORED});
    set(CURLOPT_HEADEROPT, long{CURLHEADER_SEPARATE}); // keep our headers out of a proxy's CONNECT
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
}

void CurlTransfer::setTrust() {
    const QByteArray& more = m_context.moreAuthorities;
    const TrustOptions trust = trustOptions(TrustStore::BRIMLET_TRUST_STORE, authoritiesFolder(),
                                            more, QFileInfo(QFile::decodeName(more)).isDir());
    set(CURLOPT_SSL_OPTIONS, trust.sslOptions);
    if (!trust.folder.isEmpty()) {
        set(CURLOPT_CAPATH, trust.folder.constData());
    }
    if (trust.isDefaultFileOff) {
        set(CURLOPT_CAINFO, static_cast<const char*>(nullptr));
    } else if (!trust.file.isEmpty()) {
        set(CURLOPT_CAINFO, trust.file.constData());
    }
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
        // When a reused connection ends while the request goes out, libcurl sends the request
        // again, although the service may already have acted on it. A new connection avoids that.
        // It is not kept afterwards, since the polls keep one.
        set(CURLOPT_FRESH_CONNECT, 1L);
        set(CURLOPT_FORBID_REUSE, 1L);
    }
    if (request.method == "HEAD") {
        set(CURLOPT_NOBODY, 1L);
    } else if (!isPost) {
        set(CURLOPT_CUSTOMREQUEST, request.method.constData());
    }

    set(CURLOPT_USERAGENT, "Brimlet/0.1.0");
    // A name without a value removes the header that libcurl would add by itself.
    for (const char* name : {"Accept", "Content-Type", "Expect", "Proxy-Connection"}) {
        if (!hasHeader(request, name)) {
            addLine(QByteArray(name) + ':');
        }
    }
    for (const HttpHeader& header : request.headers) {
        // A semicolon in place of the colon makes libcurl send a header with an empty value.
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
