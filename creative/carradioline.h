#pragma once

#include "creative/marqueetext.h"
#include "creative/pixelscroll.h"
#include "platform/textstrip.h"

#include <QColor>
#include <QFont>
#include <QObject>

#include <array>
#include <memory>

class QPainter;

namespace brimlet {

class ReduceMotion;
class TextLine;

/// The look and the timing of a line. Times in seconds.
struct CarRadioStyle final {
    QFont font;
    QColor color;
    QColor background;          ///< The line fills its whole box with it.
    double idle = 0;            ///< How long the brand is shown before the tagline.
    double holdStart = 0;       ///< How long the tagline stands still before it scrolls.
    double pointsPerSecond = 0; ///< Speed of the scroll; more than 0.
    double holdEnd = 0;         ///< How long the tagline stands still after it has scrolled.
};

/// The scrolling line (marquee) of a pill: shows the brand, then the tagline, which scrolls if it
/// is wider than the line, and repeats. A cancellable task drives it while it is on screen, and
/// wakes only when something changes. Main thread only.
class CarRadioLine final : public QObject {
    Q_OBJECT

public:
    /// `clock` and `reduceMotion` outlive the line.
    CarRadioLine(CarRadioStyle style, Clock& clock, ReduceMotion& reduceMotion);
    ~CarRadioLine() override;

    /// Both as the service sent them, untrimmed.
    void setTexts(const QString& brand, const QString& tagline);
    /// Points.
    void setContainerWidth(double width);
    /// Pixels per point.
    void setDevicePixelRatio(double ratio);

    /// The view has come on screen. Starts the loop, which restarts whenever a text, a width (in
    /// whole points) or the reduce-motion setting changes.
    void appear();
    /// The view has left the screen. Cancels the loop.
    void disappear();

    [[nodiscard]] bool showingTagline() const { return m_showingTagline; }
    /// Horizontal offset of the visible text in whole pixels; 0 or negative.
    [[nodiscard]] int offsetOnScreen() const { return -m_scroll.pixels(); }
    /// The visible text.
    [[nodiscard]] QString line() const { return lineText(m_brand, m_tagline, m_showingTagline); }

    /// Paints into the box, replacing what was there. The painter must use the window's pixels as
    /// coordinates (see `PixelSpace`).
    void paint(QPainter& painter, const QRect& box);
    /// Advances a scroll to its position at this time without emitting `moved`; returns whether it
    /// moved.
    bool catchUp() { return m_scroll.catchUp(); }
    /// The visible text as it is now, in the box painted last. That is empty until the line is
    /// painted, and where there is no room for it.
    [[nodiscard]] TextStrip strip();

Q_SIGNALS:
    /// The whole box has to be repainted.
    void changed();
    /// The text has moved by a step: its `strip` is to be shown.
    void moved();

private:
    [[nodiscard]] QString taskID() const;
    void update();
    void restart();
    void show(bool tagline);
    [[nodiscard]] QCoro::Task<> cycle(std::stop_token stop);
    [[nodiscard]] QCoro::Task<> sleep(double seconds, std::stop_token stop);

    /// One of the two texts, laid out and rendered when it is first painted.
    struct Text final {
        std::unique_ptr<TextLine> layout;
        QImage picture;      ///< Of a part, which includes what is seen of it.
        int pictureFrom = 0; ///< Where that begins in the text, in pixels.
    };
    [[nodiscard]] bool isRendered(const Text& text) const;
    void render(Text& text);

    const CarRadioStyle m_style;
    Clock& m_clock;
    const ReduceMotion& m_reduceMotion;
    QString m_brand;
    QString m_tagline;
    bool m_showingTagline = false;
    double m_containerWidth = WidthKey::defaultValue;
    double m_taglineWidth = TextWidthKey::defaultValue;
    double m_devicePixelRatio = 1;

    bool m_isOnScreen = false;
    QString m_taskID; ///< Of the last loop that was started.
    std::stop_source m_task;
    PixelScroll m_scroll;

    std::array<Text, 2> m_texts; ///< The resting text and the tagline.
    QRect m_box;                 ///< As painted last, in the window's pixels.
};

} // namespace brimlet
