// What one poll costs besides the network: a reply read from its bytes and applied to the store,
// one that is the same as the one before and only applied, the reading with nothing around it, and
// what it costs to judge one of its addresses.

#include "bench/micro/countallocations.h"
#include "bench/micro/samplestore.h"
#include "host/linkrule.h"
#include "host/replyreading.h"
#include "platform/starttask.h"

namespace brimlet {
namespace {

void applyReply(benchmark::State& state, bool isChanging) {
    SampleStore sample;
    sample.http.isChanging = isChanging;
    const CountAllocations count(state);
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        startTask(sample.store->refreshEstimate());
    }
    if (!sample.isApplied()) {
        state.SkipWithError("the reply was not applied");
    }
}
BENCHMARK_CAPTURE(applyReply, other, true);
BENCHMARK_CAPTURE(applyReply, same, false);

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
} // namespace brimlet
