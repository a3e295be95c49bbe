#pragma once

#include "platform/curl/curladdress.h"
#include "platform/curl/curlhead.h"
#include "platform/curl/curlsockets.h"
#include "platform/httpclient.h"

#include <memory>

namespace brimlet {

struct CurlExchange;

/// One request to one address and its reply, redirects left to others. Keeps its limits itself.
/// Stays where it is: libcurl knows it by its address.
class CurlHop final {
public:
    /// `timeout` is what is left of the request's. `held` counts the bytes of all bodies that are
    /// not yet handed over. It and the sockets outlive the hop.
    CurlHop(const HttpRequest& request, CurlUrl address, std::chrono::milliseconds timeout,
            const QByteArray& moreAuthorities, CurlSockets& sockets, qsizetype& held);
    ~CurlHop() { m_held -= m_body.size(); }
    CurlHop(const CurlHop&) = delete;
    CurlHop& operator=(const CurlHop&) = delete;

    /// False when an option could not be set; the hop is then not to be started.
    [[nodiscard]] bool isReady() const { return m_isReady; }
    [[nodiscard]] CURL* handle() const { return m_easy.get(); }

    /// libcurl is done with it.
    void end(CURLcode code);
    [[nodiscard]] bool hasEnded() const { return m_end.has_value(); }
    /// True once the outcome is settled, which may be before the end: what is left of a body that
    /// nobody asked for is then read to keep the connection, as far as that is cheap.
    [[nodiscard]] bool isSettled() const;
    /// True when nothing more of the reply is wanted.
    [[nodiscard]] bool isSpent() const { return m_isSpent || m_failure || m_end; }
    /// Call once, when settled.
    [[nodiscard]] HttpResult takeResult();
    [[nodiscard]] const CurlHead& head() const { return m_head; }

    /// What the hop is for; gone once its outcome was taken.
    std::unique_ptr<CurlExchange> exchange;

private:
    template <typename T>
    void set(CURLoption option, T value) {
        m_isReady = m_isReady && curl_easy_setopt(m_easy.get(), option, value) == CURLE_OK;
    }
    void setRules(std::chrono::milliseconds timeout, const QByteArray& moreAuthorities);
    void setRequest(const HttpRequest& request);
    void setCallbacks();
    void addLine(const QByteArray& line);

    [[nodiscard]] bool addHeadLine(QByteArrayView line);
    [[nodiscard]] bool endHead();
    [[nodiscard]] bool addBody(QByteArrayView bytes);
    void countRaw(qsizetype bytes);
    [[nodiscard]] bool fail(HttpError error);

    static std::size_t onHeader(char* data, std::size_t one, std::size_t size, void* self);
    static std::size_t onBody(char* data, std::size_t one, std::size_t size, void* self);
    static int onDebug(CURL* easy, curl_infotype kind, char* data, std::size_t size, void* self);
    static int onSocket(void* self, curl_socket_t socket, curlsocktype purpose);
    static int onConnected(void* self, char* thereAddress, char* hereAddress, int therePort,
                           int herePort);

    CurlSockets& m_sockets;
    CurlUrl m_address;
    CurlList m_lines;
    QByteArray m_upload;
    int m_lastStatusWithBody;
    qsizetype m_bodyLimit;

    CurlHead m_head;
    QByteArray m_body;
    qsizetype& m_held;
    qint64 m_rawBytes = 0;
    int m_status = 0; ///< Of the final reply, 0 until its head is complete.
    bool m_isReady = true;
    bool m_isProxied = false;
    bool m_wantsBody = false;
    bool m_isSpent = false;
    std::optional<HttpError> m_failure;
    std::optional<CURLcode> m_end;

    CurlEasy m_easy; // goes first: it points into what stands above
};

} // namespace brimlet
