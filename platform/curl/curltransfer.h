#pragma once

#include "platform/curl/curladdress.h"
#include "platform/curl/curlhead.h"
#include "platform/curl/curlrequestchain.h"
#include "platform/curl/curlsockets.h"

#include <memory>

namespace brimlet {

/// What all transfers of an engine use. Outlives them.
struct CurlTransferContext final {
    QByteArray moreAuthorities; ///< As for CurlHttpClient.
    CurlSockets sockets;
};

/// One request to one address and its reply. Follows no redirect. Enforces the limits on head and
/// body itself. Not movable: libcurl's callbacks get its address.
class CurlTransfer final {
public:
    /// Prepares the chain's current request. `address` is that request's; the timeout is what is
    /// left until the chain's deadline.
    CurlTransfer(std::unique_ptr<CurlRequestChain> ownChain, CurlUrl address,
                 CurlTransferContext& context);
    ~CurlTransfer() { m_client->bodyBytes -= m_body.size(); }
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    /// False when an option could not be set; the transfer must then not be started.
    [[nodiscard]] bool isReady() const { return m_isReady; }
    [[nodiscard]] CURL* handle() const { return m_easy.get(); }
    [[nodiscard]] const CurlClientState& client() const { return *m_client; }

    /// Records the result of libcurl's CURLMSG_DONE.
    void setCurlResult(CURLcode code) { m_curlResult = code; }
    /// True once the result is known. That may be before libcurl is done: an unwanted body, if
    /// short, is still read so that the connection can be reused.
    [[nodiscard]] bool hasResult() const;
    /// Call once, when there is a result.
    [[nodiscard]] HttpResult takeResult();
    /// True when nothing more needs to be read.
    [[nodiscard]] bool isDrained() const { return m_isDrained || m_failure || m_curlResult; }
    [[nodiscard]] const CurlHead& head() const { return m_head; }

    /// Moved out by the engine when it takes the result, and null from then on.
    std::unique_ptr<CurlRequestChain> chain;

private:
    template <typename T>
    void set(CURLoption option, T value) {
        m_isReady = m_isReady && curl_easy_setopt(m_easy.get(), option, value) == CURLE_OK;
    }
    void setCommonOptions();
    void setTrust();
    void setRequest(const HttpRequest& request);
    void setCallbacks();
    void addLine(const QByteArray& line);

    [[nodiscard]] bool addHeadLine(QByteArrayView line);
    [[nodiscard]] bool endHead();
    [[nodiscard]] bool addBody(QByteArrayView bytes);
    void countBodyOnWire(qsizetype bytes);
    void countTraffic(curl_infotype kind, qint64 bytes);
    bool fail(HttpError error);

    static std::size_t onHeader(char* data, std::size_t one, std::size_t size, void* self);
    static std::size_t onBody(char* data, std::size_t one, std::size_t size, void* self);
    static int onDebug(CURL* easy, curl_infotype kind, char* data, std::size_t size, void* self);
    static int onSocket(void* self, curl_socket_t socket, curlsocktype purpose);
    static int onConnected(void* self, char* remoteAddress, char* localAddress, int remotePort,
                           int localPort);

    CurlTransferContext& m_context;
    std::shared_ptr<CurlClientState> m_client;
    CurlUrl m_address;
    CurlList m_lines;
    QByteArray m_upload;
    int m_lastStatusWithBody;
    qsizetype m_bodyLimit;

    CurlHead m_head;
    QByteArray m_body;
    qint64 m_bodyBytesOnWire = 0; ///< Of the body on the wire, including chunk framing.
    int m_status = 0;             ///< Of the final reply, 0 until its head is complete.
    bool m_isReady = true;
    bool m_isProxied = false;
    bool m_wantsBody = false;
    bool m_isDrained = false;
    std::optional<HttpError> m_failure;
    std::optional<CURLcode> m_curlResult;

    CurlEasy m_easy; // destroyed first, because it points into the members above
};

} // namespace brimlet
