#pragma once

#include "platform/curl/curltraffic.h"
#include "platform/httpclient.h"

#include <QByteArray>

#include <memory>

namespace brimlet {

class CurlEngine;
struct CurlClientState;

/// The HTTP port on libcurl, driven by the event loop of the thread it is made in. Proxies come
/// from the environment alone. Its destructor ends requests that are under way as Cancelled.
class CurlHttpClient final : public HttpClient {
public:
    /// `moreAuthorities` is the path of a PEM file of certificate authorities to trust besides the
    /// system's, or of a folder of them, named by hash, to trust instead of the system's. Empty
    /// trusts the system's alone. Certificates are verified in any case.
    explicit CurlHttpClient(const QByteArray& moreAuthorities = {});
    ~CurlHttpClient() override;
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;

    /// A further client that trusts the same authorities and shares this one's libcurl multi
    /// handle, which takes 45 KiB. It shares no connection, kept reply or limit on bodies; only the
    /// number of idle connections kept is common, four for each client. Meant for some tens of
    /// clients: libcurl goes through all kept connections at the end of each request. Each may be
    /// destroyed before the others.
    [[nodiscard]] std::unique_ptr<CurlHttpClient> makeSibling() const;

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

    /// Since the client was made. The reference is good as long as the client.
    [[nodiscard]] const CurlTraffic& traffic() const;

private:
    explicit CurlHttpClient(std::shared_ptr<CurlEngine> engine);

    std::shared_ptr<CurlEngine> m_engine;
    std::shared_ptr<CurlClientState> m_client;
};

} // namespace brimlet
