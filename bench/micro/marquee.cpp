// What one step of a scrolling tagline costs: from the wake-up until the rows of its text are
// copied into a picture of the capsule, at one and at two pixels a point. Every couple of thousand
// pixels the line draws its text again, which is part of the figure.

#include "bench/micro/repeat.h"
#include "creative/carradioline.h"
#include "creative/notchfont.h"
#include "platform/deferred.h"
#include "tests/support/fakes.h"

#include <QPainter>

namespace brimlet {
namespace {

/// Advanced by hand to the end of the next sleep, exactly.
class StepClock final : public Clock {
public:
    [[nodiscard]] TimePoint now() const override { return {}; }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return m_uptime; }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::nanoseconds /*interval*/,
                                                         std::function<void()> /*tick*/) override {
        return nullptr;
    }
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                      std::stop_token stop) override {
        const Deferred<bool> wake;
        const std::stop_callback onStop(stop, [wake] { wake.resolve(false); });
        m_sleepers.emplace(m_uptime + duration, wake);
        co_await wake;
    }
    void step() {
        const auto next = m_sleepers.extract(m_sleepers.begin());
        m_uptime = std::max(m_uptime, next.key());
        next.mapped().resolve(true);
    }

private:
    std::chrono::nanoseconds m_uptime{};
    std::multimap<std::chrono::nanoseconds, Deferred<bool>> m_sleepers;
};

CarRadioStyle style() {
    return {.font = NotchFont::pill(),
            .color = Qt::white,
            .background = QColor(0, 0, 0, 245),
            .idle = 16,
            .holdStart = 1.6,
            .pointsPerSecond = 22,
            .holdEnd = 1.4};
}

void marqueeStep(benchmark::State& state) {
    const auto ratio = static_cast<int>(state.range(0));
    StepClock clock;
    FakeReduceMotion reduceMotion;
    CarRadioLine line(style(), clock, reduceMotion);
    line.setTexts(QStringLiteral("Nordlicht"),
                  QStringLiteral("Lamps that follow the sun, winter too. ").repeated(26));
    line.setContainerWidth(73);
    line.setDevicePixelRatio(ratio);
    QImage capsule(108 * ratio, 24 * ratio, QImage::Format_ARGB32_Premultiplied);
    const QRect box(28 * ratio, 2 * ratio, 73 * ratio, 20 * ratio);
    const auto paint = [&] {
        QPainter painter(&capsule);
        line.paint(painter, box);
    };
    int steps = 0;
    QObject::connect(&line, &CarRadioLine::moved, &line, [&] {
        ++steps;
        paint();
    });
    line.appear();
    while (!line.showingTagline()) {
        clock.step();
    }
    paint();
    clock.step();
    repeat(state, [&] { clock.step(); });
    if (steps != static_cast<int>(state.iterations())) {
        state.SkipWithError("the text did not move with every step");
    }
    line.disappear();
}
// No more steps than the text has pixels.
BENCHMARK(marqueeStep)->ArgName("scale")->Arg(1)->Iterations(4000);
BENCHMARK(marqueeStep)->ArgName("scale")->Arg(2)->Iterations(8000);

} // namespace
} // namespace brimlet
