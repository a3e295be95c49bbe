#pragma once

#include "platform/curl/curladdress.h"
#include "platform/curl/curlclientstate.h"
#include "platform/curl/curlhead.h"
#include "platform/curl/curltransfercontext.h"
#include "platform/httpclient.h"

#include <list>
#include <memory>

namespace brimlet {

struct CurlRequestChain;

/// One request to one address and its reply, redirects left to others. Keeps its limits itself.
/// Stays where it is: libcurl knows it by its address.
class CurlTransfer final {
public:
    using Place = std::list<std::unique_ptr<CurlTransfer>>::iterator;

    /// `timeout` is what is left of the request's.
    CurlTransfer(const HttpRequest& request, CurlUrl address, std::chrono::milliseconds timeout,
                 CurlTransferContext& context, std::shared_ptr<CurlClientState> client);
    ~CurlTransfer() { m_client->held -= m_body.size(); }
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    /// False when an option could not be set; the transfer is then not to be started.
    [[nodiscard]] bool isReady() const { return m_isReady; }
    [[nodiscard]] CURL* handle() const { return m_easy.get(); }

    /// libcurl is done with it.
    void end(CURLcode code);
    [[nodiscard]] bool hasEnded() const { return m_end.has_value(); }
    /// True once the outcome is settled, which may be before the end: what is left of a body that
    /// nobody asked for is then read to keep the connection, as far as that is cheap.
    [[nodiscard]] bool hasResult() const;
    /// True when nothing more of the reply is wanted.
    [[nodiscard]] bool isDrained() const { return m_isDrained || m_failure || m_end; }
    /// Call once, when settled.
    [[nodiscard]] HttpResult takeResult();
    [[nodiscard]] const CurlHead& head() const { return m_head; }
    [[nodiscard]] const CurlClientState* client() const { return m_client.get(); }
    /// It was looked at, and is named among the news again when there is more to do.
    void setSeen() { m_isReadyMarked = false; }

    /// Where its owner has it.
    Place place;
    /// What the transfer is for; gone once its outcome was taken.
    std::unique_ptr<CurlRequestChain> chain;

private:
    template <typename T>
    void set(CURLoption option, T value) {
        m_isReady = m_isReady && curl_easy_setopt(m_easy.get(), option, value) == CURLE_OK;
    }
    void setRules(std::chrono::milliseconds timeout);
    void setRequest(const HttpRequest& request);
    void setCallbacks();
    void addLine(const QByteArray& line);

    [[nodiscard]] bool addHeadLine(QByteArrayView line);
    [[nodiscard]] bool endHead();
    [[nodiscard]] bool addBody(QByteArrayView bytes);
    void countRaw(qsizetype bytes);
    void countTraffic(curl_infotype kind, qint64 bytes);
    [[nodiscard]] bool fail(HttpError error);
    void markReady();

    static std::size_t onHeader(char* data, std::size_t one, std::size_t size, void* self);
    static std::size_t onBody(char* data, std::size_t one, std::size_t size, void* self);
    static int onDebug(CURL* easy, curl_infotype kind, char* data, std::size_t size, void* self);
    static int onSocket(void* self, curl_socket_t socket, curlsocktype purpose);
    static int onConnected(void* self, char* thereAddress, char* hereAddress, int therePort,
                           int herePort);

    CurlTransferContext& m_context;
    std::shared_ptr<CurlClientState> m_client;
    CurlUrl m_address;
    CurlList m_lines;
    QByteArray m_upload;
    int m_lastStatusWithBody;
    qsizetype m_bodyLimit;

    CurlHead m_head;
    QByteArray m_body;
    qint64 m_rawBytes = 0;
    int m_status = 0; ///< Of the final reply, 0 until its head is complete.
    bool m_isReady = true;
    bool m_isProxied = false;
    bool m_wantsBody = false;
    bool m_isDrained = false;
    bool m_isReadyMarked = false;
    std::optional<HttpError> m_failure;
    std::optional<CURLcode> m_end;

    CurlEasy m_easy; // goes first: it points into what stands above
};

} // namespace brimlet
