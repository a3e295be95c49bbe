#include "platform/curl/curlhttpclient.h"

#include "platform/curl/curlengine.h"

namespace brimlet {

std::shared_ptr<CurlEngine> makeCurlEngine(const QByteArray& moreAuthorities) {
    return std::make_shared<CurlEngine>(moreAuthorities);
}

const CurlTraffic& trafficOf(const CurlEngine& engine) {
    return engine.traffic();
}

CurlHttpClient::CurlHttpClient(const QByteArray& moreAuthorities)
    : CurlHttpClient(makeCurlEngine(moreAuthorities)) {}

CurlHttpClient::CurlHttpClient(std::shared_ptr<CurlEngine> engine)
    : m_engine(std::move(engine))
    , m_client(m_engine->join()) {}

CurlHttpClient::~CurlHttpClient() {
    m_engine->leave(*m_client);
}

QCoro::Task<HttpResult> CurlHttpClient::send(HttpRequest request) {
    // The client may be gone when the outcome is there: nothing of it is used after the wait.
    const Deferred<HttpResult> outcome = m_engine->start(std::move(request), m_client);
    co_return co_await outcome;
}

} // namespace brimlet
