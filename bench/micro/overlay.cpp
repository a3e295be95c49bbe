// What a poll costs that changes nothing, with the overlay behind the store: its rules alone, and
// with its views, which are to find everything equal. The window is none of a window system's.

#include "bench/micro/countallocations.h"
#include "bench/micro/samplestore.h"
#include "creative/creativeimagecache.h"
#include "overlay/overlaycontroller.h"
#include "overlay/overlayview.h"
#include "platform/starttask.h"

#include <QCoreApplication>

namespace brimlet {
namespace {

/// Does as it is told by doing nothing.
class NoWindow final : public OverlayWindow {
public:
    void orderFrontRegardless() override {}
    void orderOut() override {}
    void setFrame(const Rect& /*frame*/) override {}
    void setIgnoresMouseEvents(bool /*ignores*/) override {}
};

/// A store whose every request to be rendered reaches an overlay, as in the program.
struct SampleOverlay final {
    explicit SampleOverlay(const std::function<void(OverlayRuntime&)>& inside)
        : controller({sample.screens, sample.workspace, [inside](OverlayRuntime& runtime) {
                          inside(runtime);
                          return std::make_unique<NoWindow>();
                      }}) {
        QObject::connect(sample.store.get(), &HostStore::overlayNeedsRender, &receiver,
                         [this] { controller.refresh(); });
        controller.start(sample.store);
        poll();
    }
    void poll() const { startTask(sample.store->refreshEstimate()); }
    [[nodiscard]] bool isShown() const {
        return sample.isApplied() && controller.panel()->isShown();
    }

    SampleStore sample;
    OverlayController controller;
    QObject receiver;
};

void unchangedPoll(benchmark::State& state) {
    const SampleOverlay overlay([](OverlayRuntime& /*runtime*/) {});
    const CountAllocations count(state);
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        overlay.poll();
    }
    if (!overlay.isShown()) {
        state.SkipWithError("the overlay was not rendered");
    }
}
BENCHMARK(unchangedPoll);

void unchangedPollWithViews(benchmark::State& state) {
    FakeCachesFolder caches;
    FakeReduceMotion reduceMotion;
    StandingClock clock;
    InstantHttpClient http;
    CreativeImageCache images({http, caches}, 1);
    const CreativeEnvironment environment{images, clock, reduceMotion};
    std::unique_ptr<OverlayView> view;
    const SampleOverlay overlay([&](OverlayRuntime& runtime) {
        view = std::make_unique<OverlayView>(runtime, environment);
        view->resize(428, 40);
    });
    QCoreApplication::sendPostedEvents();
    const CountAllocations count(state);
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        overlay.poll();
        QCoreApplication::sendPostedEvents(view.get());
    }
    if (!overlay.isShown() || view->painted().isEmpty()) {
        state.SkipWithError("the overlay was not rendered");
    }
    view.reset();
}
BENCHMARK(unchangedPollWithViews);

} // namespace
} // namespace brimlet
