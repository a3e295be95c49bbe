#include "platform/curl/curlhttpclient.h"

#include "platform/curl/curlengine.h"

namespace brimlet {

CurlHttpClient::CurlHttpClient(const QByteArray& moreAuthorities)
    : CurlHttpClient(std::make_shared<CurlEngine>(moreAuthorities)) {}

CurlHttpClient::CurlHttpClient(std::shared_ptr<CurlEngine> engine)
    : m_engine(std::move(engine))
    , m_client(m_engine->join()) {}

CurlHttpClient::~CurlHttpClient() {
    m_engine->leave(*m_client);
}

std::unique_ptr<CurlHttpClient> CurlHttpClient::makeSibling() const {
    return std::unique_ptr<CurlHttpClient>(new CurlHttpClient(m_engine));
}

const CurlTraffic& CurlHttpClient::traffic() const {
    return m_client->traffic;
}

QCoro::Task<HttpResult> CurlHttpClient::send(HttpRequest request) {
    // Nothing of the client is used after the wait, because it may be destroyed by then.
    const Deferred<HttpResult> outcome = m_engine->start(std::move(request), m_client);
    co_return co_await outcome;
}

} // namespace brimlet
