#include "creative/carradioline.h"

#include "creative/textline.h"
#include "host/trimmed.h"
#include "platform/reducemotion.h"
#include "platform/starttask.h"

#include <QPainter>
#include <QPointer>
#include <QtMath>

#include <algorithm>

namespace brimlet {
namespace {

/// Seconds that the tagline, after its scroll, stands at its start again.
constexpr double kRestAtStart = 0.35;
/// Seconds that a tagline stays which needs no scroll.
constexpr double kFittingTagline = 2.8;

} // namespace

CarRadioLine::CarRadioLine(CarRadioStyle style, Clock& clock, ReduceMotion& reduceMotion)
    : m_style(std::move(style))
    , m_clock(clock)
    , m_reduceMotion(reduceMotion)
    , m_scroll(clock, [this] { Q_EMIT moved(); }) {
    reduceMotion.observeChanges([self = QPointer(this)] {
        if (self) {
            self->update();
        }
    });
}

CarRadioLine::~CarRadioLine() {
    m_task.request_stop();
}

void CarRadioLine::setTexts(const QString& brand, const QString& tagline) {
    if (m_brand == brand && m_tagline == tagline) {
        return;
    }
    const QString lineBefore = line();
    if (m_tagline != tagline) {
        TextWidthKey::reduce(m_taglineWidth, TextLine(trimmed(tagline), m_style.font).width());
    }
    m_brand = brand;
    m_tagline = tagline;
    m_texts = {};
    if (line() != lineBefore) {
        Q_EMIT changed();
    }
    update();
}

void CarRadioLine::setContainerWidth(double width) {
    WidthKey::reduce(m_containerWidth, width);
    update();
}

void CarRadioLine::setDevicePixelRatio(double ratio) {
    if (m_devicePixelRatio != ratio) {
        m_devicePixelRatio = ratio;
        m_scroll.setDevicePixelRatio(ratio);
        for (Text& each : m_texts) {
            each.picture = {};
        }
    }
}

void CarRadioLine::appear() {
    if (!m_isOnScreen) {
        m_isOnScreen = true;
        restart();
    }
}

void CarRadioLine::disappear() {
    m_isOnScreen = false;
    m_task.request_stop();
    m_scroll.reset();
    m_texts = {};
}

QString CarRadioLine::taskID() const {
    return marqueeTaskID(m_brand, m_tagline, m_containerWidth, m_taglineWidth,
                         m_reduceMotion.isOn());
}

void CarRadioLine::update() {
    if (m_isOnScreen && m_taskID != taskID()) {
        restart();
    }
}

void CarRadioLine::restart() {
    m_task.request_stop();
    m_task = std::stop_source();
    m_taskID = taskID();
    startTask(cycle(m_task.get_token()));
}

/// Shows the brand or the tagline from its start, without an animation; ends a scroll.
void CarRadioLine::show(bool tagline) {
    const bool isSame = m_showingTagline == tagline && m_scroll.pixels() == 0;
    m_scroll.reset();
    m_showingTagline = tagline;
    if (!isSame) {
        Q_EMIT changed();
    }
}

QCoro::Task<> CarRadioLine::sleep(double seconds, std::stop_token stop) {
    return m_clock.sleep(sleepLength(seconds), std::move(stop));
}

/// Returns at once after a cancellation, since `this` may be destroyed by then.
QCoro::Task<> CarRadioLine::cycle(std::stop_token stop) {
    show(false);
    if (m_reduceMotion.isOn()) {
        co_return;
    }
    const QString tagline = trimmed(m_tagline);
    if (tagline.isEmpty() || tagline == restingText(m_brand, m_tagline)) {
        co_return;
    }
    while (!stop.stop_requested()) {
        show(false);
        co_await sleep(m_style.idle, stop);
        if (stop.stop_requested()) {
            co_return;
        }
        show(true);
        co_await sleep(m_style.holdStart, stop);
        if (stop.stop_requested()) {
            co_return;
        }
        if (const double overflow = overflowWidth(m_taglineWidth, m_containerWidth); overflow > 1) {
            const auto toTheEnd = sleepLength(overflow / m_style.pointsPerSecond + m_style.holdEnd);
            m_scroll.start(overflow, m_style.pointsPerSecond);
            co_await m_clock.sleep(toTheEnd, stop);
            if (stop.stop_requested()) {
                co_return;
            }
            show(true);
            co_await sleep(kRestAtStart, stop);
        } else {
            co_await sleep(kFittingTagline, stop);
        }
        if (stop.stop_requested()) {
            co_return;
        }
    }
}

bool CarRadioLine::isRendered(const Text& text) const {
    const int from = m_scroll.pixels();
    return text.picture.height() == m_box.height() && text.pictureFrom <= from &&
           from + m_box.width() <= text.pictureFrom + text.picture.width();
}

/// Renders what is seen of the visible text, and more, unless it is there.
void CarRadioLine::render(Text& text) {
    if (isRendered(text)) {
        return;
    }
    // Pixels; wide enough for almost every text as a whole, so that a scroll only copies.
    constexpr int kPictureWidth = 2048;
    if (!text.layout) {
        text.layout = std::make_unique<TextLine>(line(), m_style.font);
    }
    text.pictureFrom = m_scroll.pixels();
    // Two more than the text's width, since the last offset is rounded as well.
    const int rest = qCeil(text.layout->width() * m_devicePixelRatio) + 2 - text.pictureFrom;
    text.picture = text.layout->picture(
        m_style.color, m_style.background, m_devicePixelRatio, text.pictureFrom,
        {std::max(m_box.width(), m_showingTagline ? std::min(rest, kPictureWidth) : 0),
         m_box.height()});
}

TextStrip CarRadioLine::strip() {
    Text& text = m_texts.at(m_showingTagline ? 1 : 0);
    if (!m_box.isEmpty()) {
        render(text);
    }
    return {m_box, text.picture, m_scroll.pixels() - text.pictureFrom, m_style.background};
}

void CarRadioLine::paint(QPainter& painter, const QRect& box) {
    m_box = box;
    if (box.isEmpty()) {
        return; // the line of a compact pill on a screen with a scale below 1
    }
    const TextStrip text = strip();
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(box.topLeft(), text.picture, QRect(QPoint(text.from, 0), box.size()));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

} // namespace brimlet
