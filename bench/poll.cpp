// Polls a placement service again and again, each time as soon as the last reply is applied, with
// the real store, requests, HTTP client and event loop, and without a window. Prints the
// allocations since the start. Exits with 0 only if every reply was applied.
//   bench-poll ROOT_URL POLLS [--plain]
//     --plain   makes no request conditional

#include "bench/allocations.h"
#include "host/hoststore.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/starttask.h"
#include "tests/support/hostfixture.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

namespace {

using namespace brimlet;

/// The real client; when plain, no request is conditional.
class PollingHttpClient final : public HttpClient {
public:
    explicit PollingHttpClient(bool isPlain)
        : m_isPlain(isPlain) {}

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override {
        request.mayRevalidate = request.mayRevalidate && !m_isPlain;
        return m_http.send(std::move(request));
    }

private:
    bool m_isPlain;
    CurlHttpClient m_http;
};

QCoro::Task<> poll(std::shared_ptr<HostStore> store, int polls, const int& applied) {
    for (int i = 0; i < polls; ++i) {
        co_await store->refreshEstimate();
    }
    QCoreApplication::exit(applied == polls ? 0 : 1);
}

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int polls = arguments.value(2).toInt();
    const bool isPlain = arguments.value(3) == QLatin1StringView("--plain");
    if (polls <= 0 || arguments.size() != (isPlain ? 4 : 3)) {
        std::fputs("usage: bench-poll ROOT_URL POLLS [--plain]\n", stderr);
        return 2;
    }
    FakeScreens screens;
    FakeWorkspace workspace;
    FakeSecretStore secrets;
    FakeBundle bundle;
    FakeClock clock;
    PollingHttpClient http(isPlain);
    screens.set({notchedScreen(1)}, {1});
    bundle.info.insert(QStringLiteral("BrimletAPIURL"), arguments.at(1));
    const auto store = HostStore::create({screens, workspace, secrets, http, bundle, clock});
    int applied = 0;
    QObject::connect(store.get(), &HostStore::overlayNeedsRender, store.get(),
                     [&applied] { ++applied; });
    QTimer::singleShot(0, [&] { startTask(poll(store, polls, applied)); });
    const int status = QCoreApplication::exec();
    if (status != 0) {
        std::fprintf(stderr, "bench-poll: only %d of %d replies were applied\n", applied, polls);
    }
    std::printf("%llu\n", static_cast<unsigned long long>(allocationCount()));
    return status;
}
