// What one poll costs besides the network: a reply read and applied to the store, the reading
// alone, the check of one of its addresses, and a poll that changes nothing, with the overlay
// behind the store: its rules alone, and with its views, which have nothing to paint.

#include "bench/micro/repeat.h"
#include "creative/creativeimagecache.h"
#include "host/hoststore.h"
#include "host/linkrule.h"
#include "host/replyreading.h"
#include "overlay/overlaycontroller.h"
#include "overlay/overlayview.h"
#include "platform/starttask.h"
#include "tests/support/fakeclock.h"
#include "tests/support/fakes.h"
#include "tests/support/readingdecoder.h"

#include <QCoreApplication>
#include <QDir>

namespace brimlet {
namespace {

/// A reply of the usual kind and size.
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

/// Answers every request at once, with the same reply or with two in turn.
class InstantHttpClient final : public HttpClient {
public:
    QCoro::Task<HttpResult> send(HttpRequest /*request*/) override {
        m_isOdd = isChanging && !m_isOdd;
        HttpReply reply{200, m_isOdd ? m_otherReply : kReply};
        co_return reply;
    }

    bool isChanging = false;

private:
    bool m_isOdd = false;
    const QByteArray m_otherReply = QByteArray(kReply).replace("quay", "pier");
};

/// A store with a token on the 14-inch machine.
struct SampleStore final {
    SampleStore() {
        secrets.replace(bundle.identifier(), QStringLiteral("host-token"), "token");
        Screen screen;
        screen.number = 1;
        screen.frame = {0, 0, 1512, 982};
        screen.auxiliaryTopLeftArea = Rect{0, 950, 664, 32};
        screen.auxiliaryTopRightArea = Rect{848, 950, 664, 32};
        screens.set({screen}, {1});
        store = HostStore::create({screens, workspace, secrets, http, bundle, clock});
    }
    void poll() const { startTask(store->refreshEstimate()); }
    [[nodiscard]] bool isApplied() const { return store->assignment().estimatedCents == 1234; }

    FakeScreens screens;
    FakeWorkspace workspace;
    FakeSecretStore secrets;
    FakeBundle bundle;
    FakeClock clock;
    InstantHttpClient http;
    std::shared_ptr<HostStore> store;
};

void applyReply(benchmark::State& state, bool isChanging) {
    SampleStore sample;
    sample.http.isChanging = isChanging;
    repeat(state, [&] { sample.poll(); });
    if (!sample.isApplied()) {
        state.SkipWithError("the reply was not applied");
    }
}
BENCHMARK_CAPTURE(applyReply, other, true);
BENCHMARK_CAPTURE(applyReply, same, false);

void readReply(benchmark::State& state) {
    repeat(state, [] {
        const auto json = parseJson(kReply);
        benchmark::DoNotOptimize(readCreatives(*json));
    });
}
BENCHMARK(readReply);

void judgeLink(benchmark::State& state) {
    const QString text = QStringLiteral("https://images.example/harbour.png");
    repeat(state, [&] {
        const auto url = Url::fromString(text);
        benchmark::DoNotOptimize(isAllowedLink(*url));
    });
}
BENCHMARK(judgeLink);

class NoWindow final : public OverlayWindow {
public:
    void orderFrontRegardless() override {}
    void orderOut() override {}
    void setFrame(const Rect& /*frame*/) override {}
    void setIgnoresMouseEvents(bool /*ignores*/) override {}
    void setRegions(const QPainterPath& /*clickable*/, const QPainterPath& /*painted*/) override {}
    void updateContent(const QRegion& /*points*/) override {}
    void showTexts(std::span<const TextStrip> /*texts*/) override {}
};

/// Connected as in the program: the store's requests to be rendered refresh the overlay.
struct SampleOverlay final {
    explicit SampleOverlay(const std::function<void(OverlayRuntime&)>& createView)
        : controller({sample.screens, sample.workspace, [createView](OverlayRuntime& runtime) {
                          createView(runtime);
                          return std::make_unique<NoWindow>();
                      }}) {
        QObject::connect(sample.store.get(), &HostStore::overlayNeedsRender, &receiver,
                         [this] { controller.refresh(); });
        controller.start(sample.store);
        sample.poll();
    }
    [[nodiscard]] bool isShown() const {
        return sample.isApplied() && controller.panel()->isShown();
    }

    SampleStore sample;
    OverlayController controller;
    QObject receiver;
};

void unchangedPoll(benchmark::State& state) {
    const SampleOverlay overlay([](OverlayRuntime& /*runtime*/) {});
    repeat(state, [&] { overlay.sample.poll(); });
    if (!overlay.isShown()) {
        state.SkipWithError("the overlay was not rendered");
    }
}
BENCHMARK(unchangedPoll);

void unchangedPollWithViews(benchmark::State& state) {
    FakeCachesFolder caches;
    caches.folder = QDir::tempPath();
    ReadingDecoder decoder;
    FakeReduceMotion reduceMotion;
    FakeClock clock;
    InstantHttpClient http;
    CreativeImageCache images({http, decoder, caches}, 1);
    const CreativeEnvironment environment{images, clock, reduceMotion};
    std::unique_ptr<OverlayView> view;
    const SampleOverlay overlay([&](OverlayRuntime& runtime) {
        view = std::make_unique<OverlayView>(runtime, environment);
        view->resize(428, 40);
    });
    QCoreApplication::sendPostedEvents();
    repeat(state, [&] {
        overlay.sample.poll();
        QCoreApplication::sendPostedEvents();
    });
    if (!overlay.isShown() || view->painted().isEmpty()) {
        state.SkipWithError("the overlay was not rendered");
    }
    view.reset();
}
BENCHMARK(unchangedPollWithViews);

} // namespace
} // namespace brimlet
