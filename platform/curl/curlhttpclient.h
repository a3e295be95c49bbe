#pragma once

#include "platform/curl/curltraffic.h"
#include "platform/httpclient.h"

#include <QByteArray>

#include <memory>

namespace brimlet {

class CurlEngine;
struct CurlClientState;

/// What does the work of clients, for those that are to share it, since one takes 45 KiB. For some
/// tens of them: at the end of each request all kept connections of the engine are walked through.
/// Lives in the thread it is made in. `moreAuthorities` as for a client.
[[nodiscard]] std::shared_ptr<CurlEngine> makeCurlEngine(const QByteArray& moreAuthorities = {});
/// What all clients of an engine have sent and received together.
[[nodiscard]] const CurlTraffic& trafficOf(const CurlEngine& engine);

/// The HTTP port on libcurl, driven by the event loop of the thread it is made in. Proxies come
/// from the environment alone. A request that is under way when the client goes ends as Cancelled.
class CurlHttpClient final : public HttpClient {
public:
    /// `moreAuthorities` names a PEM file of certificate authorities to trust besides the system's,
    /// or a folder of them, each by its hash, to trust in their place; empty for neither.
    /// Certificates are verified in any case.
    explicit CurlHttpClient(const QByteArray& moreAuthorities = {});
    /// A client among others of one engine. No connection, kept reply or limit of bodies is shared
    /// with them, only the bound on idle connections is common; one that goes ends its own requests
    /// alone.
    explicit CurlHttpClient(std::shared_ptr<CurlEngine> engine);
    ~CurlHttpClient() override;
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

private:
    std::shared_ptr<CurlEngine> m_engine;
    std::shared_ptr<CurlClientState> m_client;
};

} // namespace brimlet
