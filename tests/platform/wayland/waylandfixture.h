#pragma once

#include "platform/textstrip.h"
#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandoverlaywindow.h"
#include "platform/wayland/waylandseat.h"
#include "tests/platform/wayland/standincompositor.h"
#include "tests/support/emulated.h"

#include <QAbstractEventDispatcher>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTest>
#include <QTimer>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace brimlet {

inline const int kPatience = 5'000 * slowness();

/// A coloured child that can be clicked; it has a hand and a tooltip.
class Button final : public QWidget {
public:
    Button(const QRect& place, QWidget* parent)
        : QWidget(parent) {
        setGeometry(place);
        setCursor(Qt::PointingHandCursor);
        setToolTip(QStringLiteral("a page"));
    }
    QStringList events;
    [[nodiscard]] QString lastEvent() const { return events.value(events.size() - 1); }
    QColor colour = Qt::red;

protected:
    void paintEvent(QPaintEvent* event) override { QPainter(this).fillRect(event->rect(), colour); }
    void enterEvent(QEnterEvent*) override { events << QStringLiteral("enter"); }
    void leaveEvent(QEvent*) override { events << QStringLiteral("leave"); }
    void mousePressEvent(QMouseEvent* event) override { note(QStringLiteral("press"), event); }
    void mouseReleaseEvent(QMouseEvent* event) override { note(QStringLiteral("release"), event); }

private:
    void note(const QString& what, const QMouseEvent* event) {
        events << QStringLiteral("%1 %2,%3")
                      .arg(what)
                      .arg(event->position().x())
                      .arg(event->position().y());
    }
};

inline QPainterPath boxes(const QList<QRect>& places) {
    QPainterPath path;
    for (const QRect& place : places) {
        path.addRect(place);
    }
    return path;
}

/// Reading is postponed as long as in the program, or until something else ends that.
inline constexpr std::chrono::milliseconds kUsually{100};
inline constexpr std::chrono::hours kForLong{1};

inline constexpr QRect kLeft(8, 1, 108, 24);
inline constexpr QRect kRight(312, 1, 108, 24);
/// Of the 14-inch machine, in global points.
inline constexpr Rect kFrame{542, 942, 428, 40};

/// A text of 2048 pixels in that box of 16 pixels' height. No two pixels are alike.
inline std::array<TextStrip, 1> textIn(const QRect& box, int from = 0) {
    static const QImage picture = [] {
        QImage text(2048, 16, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < text.height(); ++y) {
            for (int x = 0; x < text.width(); ++x) {
                text.setPixel(x, y, qRgb(x % 256, x / 256, y));
            }
        }
        return text;
    }();
    return {TextStrip{box, picture, from, Qt::black}};
}

/// An overlay window with two buttons, on a stand-in's screen.
struct WaylandFixture {
    explicit WaylandFixture(const StandInManners& manners = {},
                            std::vector<StandInOutput> outputs = {StandInOutput()},
                            std::chrono::milliseconds longestPostponement = kUsually)
        : compositor(manners, std::move(outputs))
        , connection(longestPostponement) {
        // Tests wait without blocking, so the event loop never says that it is about to block,
        // which is when requests are sent.
        QObject::connect(&m_turn, &QTimer::timeout,
                         [] { Q_EMIT QAbstractEventDispatcher::instance()->aboutToBlock(); });
        m_turn.start(0);
        connection.reconnect();
        auto content = std::make_unique<QWidget>();
        left = new Button(kLeft, content.get());
        right = new Button(kRight, content.get());
        window.emplace(std::move(content), connection, seat,
                       [] { return QRectF(0, 0, 1512, 982); });
        (void)QTest::qWaitFor([this] { return connection.isReady(); }, kPatience);
    }
    /// Places and shows the window with both buttons; whether it is on the screen then.
    [[nodiscard]] bool show() {
        window->setFrame(kFrame);
        window->setRegions(boxes({kLeft, kRight}), boxes({kLeft, kRight}));
        window->setIgnoresMouseEvents(false);
        window->orderFrontRegardless();
        return QTest::qWaitFor([this] { return compositor.isShown(); }, kPatience);
    }
    /// Whether the stand-in has written that down since it was last asked for its log.
    [[nodiscard]] bool sees(const QString& line) {
        return QTest::qWaitFor([&] { return compositor.log.contains(line); }, kPatience);
    }
    /// Returns when both sides have handled what the other one had sent, and what follows from
    /// that: both are in this thread, and a socket's bytes are there as soon as they are sent.
    void synchronise() {
        compositor.log.clear();
        for (int i = 0; i < 50; ++i) {
            QCoreApplication::processEvents();
        }
    }

    StandInCompositor compositor;
    WaylandConnection connection;
    WaylandSeat seat{connection};
    Button* left = nullptr;
    Button* right = nullptr;
    std::optional<WaylandOverlayWindow> window;

private:
    QTimer m_turn;
};

} // namespace brimlet
