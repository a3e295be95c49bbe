#pragma once

#include "creative/marqueetext.h"
#include "creative/pixelscroll.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QObject>

#include <memory>
#include <utility>

class QPainter;

namespace brimlet {

class ReduceMotion;
class TextLine;

/// What the creator of a line decides. Times in seconds.
struct CarRadioStyle final {
    QFont font;
    QColor color;
    QColor ground;              ///< What the text stands on; the line fills its box with it.
    double idle = 0;            ///< How long the brand stays before the tagline comes.
    double holdStart = 0;       ///< How long the tagline rests before it scrolls.
    double pointsPerSecond = 0; ///< Speed of the scroll; more than 0.
    double holdEnd = 0;         ///< How long the scrolled tagline rests.
};

/// One line of text like a car radio's: it shows the brand, and every so often the tagline, which
/// scrolls when it is wider than the line. One cancellable task drives it while it is on screen;
/// nothing wakes while it rests. Main thread only.
class CarRadioLine final : public QObject {
    Q_OBJECT

public:
    /// The clock and the setting outlive the line.
    CarRadioLine(CarRadioStyle style, Clock& clock, ReduceMotion& reduceMotion);
    ~CarRadioLine() override;

    /// As the service gave them, untrimmed.
    void setTexts(const QString& brand, const QString& tagline);
    /// Points.
    void setContainerWidth(double width);
    /// Pixels of the screen to a point.
    void setDevicePixelRatio(double ratio);

    /// The view came on screen: the loop starts, and afresh whenever what it depends on changes.
    void appear();
    /// The view left the screen: the loop is cancelled.
    void disappear();

    [[nodiscard]] bool showingTagline() const { return m_showingTagline; }
    /// Where the visible text is or is moving to, in points; 0 or negative.
    [[nodiscard]] double offset() const { return m_offset; }
    /// Where the visible text is, in whole pixels of the screen; 0 or negative.
    [[nodiscard]] int offsetOnScreen() const { return -m_scroll.pixels(); }
    /// The text on screen.
    [[nodiscard]] QString line() const { return lineText(m_brand, m_tagline, m_showingTagline); }
    /// Points.
    [[nodiscard]] double containerWidth() const { return m_containerWidth; }
    /// Natural width of the trimmed tagline in points.
    [[nodiscard]] double taglineWidth() const { return m_taglineWidth; }

    /// Fills the box, in the painter's coordinates, which are whole pixels of the screen. Whatever
    /// was there is replaced.
    void paint(QPainter& painter, const QRect& box);
    /// Moves a scrolling text to where it is due by now, without a word. Whether that is elsewhere.
    bool catchUp() { return m_scroll.catchUp(); }
    /// The rows of the box that a step of a scroll changes, in points from its top.
    [[nodiscard]] std::pair<int, int> rowsOfText() const { return m_rowsOfText; }

Q_SIGNALS:
    /// All of it has to be painted again.
    void changed();
    /// The text has moved, so its rows have to be painted again.
    void moved();

private:
    /// How often text was drawn into a picture is a figure that tests look at.
    friend class TestCarRadioLine;

    [[nodiscard]] QString taskID() const;
    void update();
    void restart();
    void setState(bool showingTagline, double offset);
    [[nodiscard]] QCoro::Task<> cycle(std::stop_token stop);
    [[nodiscard]] QCoro::Task<> sleep(double seconds, std::stop_token stop);
    [[nodiscard]] bool isPictureOf(const QRect& box) const;

    const CarRadioStyle m_style;
    Clock& m_clock;
    const ReduceMotion& m_reduceMotion;
    QString m_brand;
    QString m_tagline;
    bool m_showingTagline = false;
    double m_offset = 0;
    double m_containerWidth = WidthKey::defaultValue;
    double m_taglineWidth = TextWidthKey::defaultValue;
    double m_devicePixelRatio = 1;

    bool m_isOnScreen = false;
    QString m_taskID; ///< Of the loop that was started last.
    std::stop_source m_task;
    PixelScroll m_scroll;

    std::unique_ptr<TextLine> m_text; ///< The line as it is laid out; made when it is drawn.
    QImage m_picture;                 ///< The part of it around what is visible.
    int m_pictureFrom = 0;            ///< Pixels of the text left of the picture.
    std::pair<int, int> m_rowsOfText; ///< From the first one to the one after the last.
    int m_pictures = 0;
};

} // namespace brimlet
