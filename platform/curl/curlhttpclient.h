#pragma once

#include "platform/curl/curltraffic.h"
#include "platform/httpclient.h"

#include <QByteArray>

#include <memory>

namespace brimlet {

class CurlEngine;
struct CurlClientState;

/// The HTTP port on libcurl, driven by the main thread's event loop. Proxies come only from the
/// environment. Its destructor ends requests that are under way as Cancelled.
class CurlHttpClient final : public HttpClient {
public:
    /// `moreAuthorities` is the path of a PEM file or a hashed folder of CA certificates. It
    /// replaces the system's of the same kind (file or folder) and is used besides the other kind.
    /// Empty: only the system's. Certificates are always verified.
    explicit CurlHttpClient(const QByteArray& moreAuthorities = {});
    ~CurlHttpClient() override;
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;

    /// A further client that trusts the same authorities and shares this one's libcurl multi
    /// handle, which takes 45 KiB. Connections, kept replies and body limits are separate; only the
    /// limit on idle connections is shared, four times the number of clients. Meant for some tens
    /// of clients: libcurl goes through all kept connections at the end of each request. The
    /// clients may be destroyed in any order.
    [[nodiscard]] std::unique_ptr<CurlHttpClient> makeSibling() const;

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

    /// Counted since the client was created. The reference is valid as long as the client exists.
    [[nodiscard]] const CurlTraffic& traffic() const;

private:
    explicit CurlHttpClient(std::shared_ptr<CurlEngine> engine);

    std::shared_ptr<CurlEngine> m_engine;
    std::shared_ptr<CurlClientState> m_client;
};

} // namespace brimlet
