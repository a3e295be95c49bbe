#pragma once

#include "platform/curl/curladdress.h"
#include "platform/curl/curlcommons.h"
#include "platform/curl/curlhead.h"
#include "platform/curl/curltenant.h"
#include "platform/httpclient.h"

#include <list>
#include <memory>

namespace brimlet {

struct CurlExchange;

/// One request to one address and its reply, redirects left to others. Keeps its limits itself.
/// Stays where it is: libcurl knows it by its address.
class CurlHop final {
public:
    using Place = std::list<std::unique_ptr<CurlHop>>::iterator;

    /// `timeout` is what is left of the request's.
    CurlHop(const HttpRequest& request, CurlUrl address, std::chrono::milliseconds timeout,
            CurlCommons& commons, std::shared_ptr<CurlTenant> tenant);
    ~CurlHop() { m_tenant->held -= m_body.size(); }
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
    [[nodiscard]] const CurlTenant* tenant() const { return m_tenant.get(); }
    /// It was looked at, and is named among the news again when there is more to do.
    void setSeen() { m_isNews = false; }

    /// Where its owner has it.
    Place place;
    /// What the hop is for; gone once its outcome was taken.
    std::unique_ptr<CurlExchange> exchange;

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
    void tellNews();

    static std::size_t onHeader(char* data, std::size_t one, std::size_t size, void* self);
    static std::size_t onBody(char* data, std::size_t one, std::size_t size, void* self);
    static int onDebug(CURL* easy, curl_infotype kind, char* data, std::size_t size, void* self);
    static int onSocket(void* self, curl_socket_t socket, curlsocktype purpose);
    static int onConnected(void* self, char* thereAddress, char* hereAddress, int therePort,
                           int herePort);

    CurlCommons& m_commons;
    std::shared_ptr<CurlTenant> m_tenant;
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
    bool m_isSpent = false;
    bool m_isNews = false;
    std::optional<HttpError> m_failure;
    std::optional<CURLcode> m_end;

    CurlEasy m_easy; // goes first: it points into what stands above
};

} // namespace brimlet
