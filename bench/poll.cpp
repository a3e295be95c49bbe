// Polls a placement service again and again, each time as soon as the reply before is applied: the
// real store, requests, HTTP client and event loop, and nothing of a window. What a hundred polls
// cost can be told from what eleven hundred do.
//   bench-poll ROOT_URL POLLS [--plain] [--allocations]
//     --plain         never asks whether the last reply still holds
//     --allocations   prints how often memory was asked for since the start, as JSON
// Exits with 0 only if every reply was applied.

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

struct Options final {
    QString root;
    int polls = 0;
    bool isPlain = false;
    bool countsAllocations = false;
};

std::optional<Options> optionsOf(const QStringList& arguments) {
    if (arguments.size() < 3) {
        return std::nullopt;
    }
    Options options{.root = arguments.at(1), .polls = arguments.at(2).toInt()};
    for (const QString& argument : arguments.mid(3)) {
        if (argument == QLatin1StringView("--plain")) {
            options.isPlain = true;
        } else if (argument == QLatin1StringView("--allocations")) {
            options.countsAllocations = true;
        } else {
            return std::nullopt;
        }
    }
    return options.polls > 0 ? std::optional(options) : std::nullopt;
}

/// The real client, to which every request can be a new one.
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
    const auto options = optionsOf(QCoreApplication::arguments());
    if (!options) {
        std::fputs("usage: bench-poll ROOT_URL POLLS [--plain] [--allocations]\n", stderr);
        return 2;
    }
    FakeScreens screens;
    FakeWorkspace workspace;
    FakeSecretStore secrets;
    FakeBundle bundle;
    FakeClock clock;
    PollingHttpClient http(options->isPlain);
    screens.set({notchedScreen(1)}, {1});
    bundle.info.insert(QStringLiteral("BrimletAPIURL"), options->root);
    const auto store = HostStore::create({screens, workspace, secrets, http, bundle, clock});
    int applied = 0;
    QObject::connect(store.get(), &HostStore::overlayNeedsRender, store.get(),
                     [&applied] { ++applied; });
    QTimer::singleShot(0, [&] { startTask(poll(store, options->polls, applied)); });
    const int status = QCoreApplication::exec();
    if (status != 0) {
        std::fprintf(stderr, "bench-poll: only %d of %d replies were applied\n", applied,
                     options->polls);
    } else if (options->countsAllocations) {
        std::printf("{\"polls\":%d,\"allocations\":%llu}\n", applied,
                    static_cast<unsigned long long>(allocationCount()));
    }
    return status;
}
