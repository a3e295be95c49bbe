#include "platform/curl/curlhttpclient.h"

#include "platform/curl/curlengine.h"

namespace brimlet {

CurlHttpClient::CurlHttpClient(const QByteArray& moreAuthorities)
    : m_engine(std::make_shared<CurlEngine>(moreAuthorities)) {}

CurlHttpClient::~CurlHttpClient() {
    m_engine->close();
}

QCoro::Task<HttpResult> CurlHttpClient::send(HttpRequest request) {
    // The client may be gone when the outcome is there: nothing of it is used after the wait.
    const Deferred<HttpResult> outcome = m_engine->start(std::move(request));
    co_return co_await outcome;
}

} // namespace brimlet
