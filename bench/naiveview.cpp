#include "bench/naiveview.h"

#include "creative/notchfont.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace brimlet {
namespace {

using namespace std::chrono_literals;

/// The line's place in a pill: behind padding, mark and spacing, before padding.
constexpr double kLineLeft = 7 + 16 + 5;
constexpr double kLineRight = 7;

constexpr double kIdle = 16;
constexpr double kHoldStart = 1.6;
constexpr double kPointsPerSecond = 22;
constexpr double kHoldEnd = 1.4;
constexpr double kSnapped = 0.35;
constexpr double kStanding = 2.8;

struct Moment final {
    bool showsTagline = false;
    double offset = 0;
};

/// What a line shows so many seconds after it began.
Moment momentAt(double seconds, double overflow) {
    const bool scrolls = overflow > 1;
    const double scroll = scrolls ? overflow / kPointsPerSecond : 0;
    const double rest = scrolls ? kHoldEnd + kSnapped : kStanding;
    const double inCycle = std::fmod(seconds, kIdle + kHoldStart + scroll + rest);
    const double scrolled = inCycle - kIdle - kHoldStart;
    if (inCycle < kIdle) {
        return {};
    }
    if (!scrolls || scrolled > scroll + kHoldEnd) {
        return {.showsTagline = true};
    }
    return {.showsTagline = true, .offset = -std::clamp(scrolled, 0.0, scroll) * kPointsPerSecond};
}

} // namespace

NaiveView::NaiveView(OverlayRuntime& runtime)
    : m_runtime(runtime) {
    connect(&runtime, &OverlayRuntime::objectWillChange, this, &NaiveView::readTexts,
            Qt::QueuedConnection);
    connect(&m_frames, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    m_frames.setTimerType(Qt::PreciseTimer);
    m_frames.start(17ms);
}

void NaiveView::readTexts() {
    const std::array slots{&m_runtime.left(), &m_runtime.right()};
    for (std::size_t i = 0; i < slots.size(); ++i) {
        const SlotCreative creative = slots[i]->value_or(SlotCreative{});
        Line& line = m_lines[i];
        if (line.brand != creative.brandName || line.tagline != creative.tagline) {
            line = {creative.brandName, creative.tagline,
                    QFontMetricsF(NotchFont::pill()).horizontalAdvance(creative.tagline)};
            m_sinceTexts.start();
        }
    }
}

void NaiveView::paintEvent(QPaintEvent* /*event*/) {
    if (!m_runtime.visible()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const OverlayLayout row =
        overlayLayout(width(), m_runtime.notchWidth(), m_runtime.left(), m_runtime.right());
    drawPill(painter, row.left, m_lines[0]);
    drawPill(painter, row.right, m_lines[1]);
}

void NaiveView::drawPill(QPainter& painter, const PillFrame& frame, const Line& line) const {
    const QRectF box(frame.x, frame.y, frame.width, frame.height);
    QPainterPath capsule;
    capsule.addRoundedRect(box, box.height() / 2, box.height() / 2);
    painter.setClipping(false);
    painter.fillPath(capsule, QColor::fromRgbF(0, 0, 0, 0.96F));
    painter.setClipPath(capsule);
    painter.strokePath(capsule, QPen(QColor::fromRgbF(1, 1, 1, 0.14F), 0.5));

    const QRectF place = box.adjusted(kLineLeft, 0, -kLineRight, 0);
    const double seconds =
        m_sinceTexts.isValid() ? static_cast<double>(m_sinceTexts.elapsed()) / 1000 : 0;
    const Moment moment = momentAt(seconds, line.taglineWidth - place.width());
    const QString& text = moment.showsTagline ? line.tagline : line.brand;
    painter.setClipRect(place);
    painter.setFont(NotchFont::pill());
    painter.setPen(Qt::white);
    const QFontMetricsF metrics(NotchFont::pill());
    const double baseline = place.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    painter.drawText(QPointF(place.left() + moment.offset, baseline), text);
}

} // namespace brimlet
