// What one poll costs besides the network: a reply read from its bytes and applied to the store,
// and the same with nothing around it.

#include "bench/allocations.h"
#include "host/hoststore.h"
#include "host/linkrule.h"
#include "host/replyreading.h"
#include "platform/starttask.h"
#include "tests/support/fakes.h"

#include <benchmark/benchmark.h>

namespace {

using namespace brimlet;

const QByteArray kReply = R"({
  "creatives": [
    {"slotId": "left", "brandName": "Harbour Coffee", "copy": "Roasted on the quay since 1921",
     "assetUrl": "https://images.example/harbour.png", "brandUrl": "https://harbour.example/"},
    {"slotId": "right", "brandName": "Nordlicht", "copy": "Lamps that follow the sun, winter too",
     "assetUrl": "https://images.example/nordlicht.png", "brandUrl": "https://nordlicht.example/"}],
  "weekStatus": "live", "estimatedCents": 1234, "pendingStipendCents": 560, "liveHostCount": 42,
  "liveDaysThisWeek": 3, "liveBucketsToday": 2, "liveBucketsNeeded": 4, "forceHide": false,
  "agreed": true, "fromApplications": true,
  "agreementText": "The host shows the week's brands beside the notch. Pay is an estimate."})";

/// Answers every request at once with the same reply.
class InstantHttpClient final : public HttpClient {
public:
    QCoro::Task<HttpResult> send(HttpRequest /*request*/) override {
        co_return HttpReply{200, kReply};
    }
};

class StandingClock final : public Clock {
public:
    [[nodiscard]] TimePoint now() const override { return {}; }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return {}; }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::milliseconds /*interval*/,
                                                         std::function<void()> /*tick*/) override {
        return nullptr;
    }
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds /*duration*/,
                                      std::stop_token /*stop*/) override {
        co_return;
    }
};

/// Adds allocations per round to a benchmark's figures.
class CountAllocations final {
public:
    explicit CountAllocations(benchmark::State& state)
        : m_state(state)
        , m_before(allocationCount()) {}
    ~CountAllocations() {
        m_state.counters["allocations"] = benchmark::Counter(
            static_cast<double>(allocationCount() - m_before), benchmark::Counter::kAvgIterations);
    }
    CountAllocations(const CountAllocations&) = delete;
    CountAllocations& operator=(const CountAllocations&) = delete;

private:
    benchmark::State& m_state;
    std::uint64_t m_before;
};

void pollAndApply(benchmark::State& state) {
    FakeScreens screens;
    FakeWorkspace workspace;
    FakeSecretStore secrets;
    FakeBundle bundle;
    StandingClock clock;
    InstantHttpClient http;
    secrets.add(bundle.identifier(), QStringLiteral("host-token"), "token");
    Screen screen;
    screen.number = 1;
    screen.auxiliaryTopLeftArea = Rect{0, 0, 100, 32};
    screen.auxiliaryTopRightArea = Rect{300, 0, 100, 32};
    screens.set({screen}, {1});
    const auto store = HostStore::create({screens, workspace, secrets, http, bundle, clock});
    const CountAllocations count(state);
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        startTask(store->refreshEstimate());
    }
    if (store->assignment().estimatedCents != 1234) {
        state.SkipWithError("the reply was not applied");
    }
}
BENCHMARK(pollAndApply);

void readReply(benchmark::State& state) {
    const CountAllocations count(state);
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        const auto json = parseJson(kReply);
        benchmark::DoNotOptimize(readCreatives(*json));
    }
}
BENCHMARK(readReply);

void judgeLink(benchmark::State& state) {
    const QString text = QStringLiteral("https://images.example/harbour.png");
    const CountAllocations count(state);
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        const auto url = Url::fromString(text);
        benchmark::DoNotOptimize(isAllowedLink(*url));
    }
}
BENCHMARK(judgeLink);

} // namespace

BENCHMARK_MAIN();
