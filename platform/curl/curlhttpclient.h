#pragma once

#include "platform/httpclient.h"

#include <QByteArray>

#include <memory>

namespace brimlet {

class CurlEngine;

/// The HTTP port on libcurl, driven by the event loop of the thread it is made in. Proxies come
/// from the environment alone. A request that is under way when the client goes ends as Cancelled.
class CurlHttpClient final : public HttpClient {
public:
    /// `moreAuthorities` names a PEM file of certificate authorities to trust besides the system's,
    /// or a folder of them, each by its hash, to trust in their place; empty for neither.
    /// Certificates are verified in any case.
    explicit CurlHttpClient(const QByteArray& moreAuthorities = {});
    ~CurlHttpClient() override;
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

private:
    std::shared_ptr<CurlEngine> m_engine;
};

} // namespace brimlet
