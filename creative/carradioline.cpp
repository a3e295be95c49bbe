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

/// The first row that is not all of one colour, and the one after the last.
std::pair<int, int> inkedRows(const QImage& picture) {
    const auto hasInk = [&picture](int y) {
        const auto* const row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        return !std::all_of(row, row + picture.width(),
                            [row](QRgb pixel) { return pixel == *row; });
    };
    int first = 0;
    int end = picture.height();
    while (first < end && !hasInk(first)) {
        ++first;
    }
    while (end > first && !hasInk(end - 1)) {
        --end;
    }
    return {first, end};
}

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
    if (line() != lineBefore) {
        m_text.reset();
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
        m_picture = {};
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
    if (m_showingTagline != tagline) {
        m_showingTagline = tagline;
        m_text.reset();
    }
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

bool CarRadioLine::pictureCovers(const QRect& box) const {
    const int from = m_scroll.pixels();
    return m_text && m_picture.height() == box.height() && m_pictureFrom <= from &&
           from + box.width() <= m_pictureFrom + m_picture.width();
}

void CarRadioLine::paint(QPainter& painter, const QRect& box) {
    if (box.isEmpty()) {
        return; // the line of a compact pill on a screen with a scale below 1
    }
    // Pixels; wide enough for almost every text as a whole, so that a scroll only copies.
    constexpr int kPictureWidth = 2048;
    if (!pictureCovers(box)) {
        if (!m_text) {
            m_text = std::make_unique<TextLine>(line(), m_style.font);
            m_rowsOfText = {};
        }
        m_pictureFrom = m_scroll.pixels();
        // Two more than the text's width, since the last offset is rounded as well.
        const int rest = qCeil(m_text->width() * m_devicePixelRatio) + 2 - m_pictureFrom;
        m_picture = m_text->picture(
            m_style.color, m_style.background, m_devicePixelRatio, m_pictureFrom,
            {std::max(box.width(), m_showingTagline ? std::min(rest, kPictureWidth) : 0),
             box.height()});
        const auto [first, end] = inkedRows(m_picture);
        // Include the rows of the previous piece, since parts of it are still on screen.
        const bool isFirstPiece = m_rowsOfText.first == m_rowsOfText.second;
        const int top = qFloor(first / m_devicePixelRatio);
        m_rowsOfText = {isFirstPiece ? top : std::min(m_rowsOfText.first, top),
                        std::max(m_rowsOfText.second, qCeil(end / m_devicePixelRatio))};
    }
    const int from = m_scroll.pixels() - m_pictureFrom;
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(box.topLeft(), m_picture, QRect(QPoint(from, 0), box.size()));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

} // namespace brimlet
