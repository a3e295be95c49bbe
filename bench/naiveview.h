#pragma once

#include "overlay/overlaylayout.h"
#include "overlay/overlayruntime.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <array>

namespace brimlet {

/// The overlay's picture as one would write it first: a timer repaints all of it sixty times a
/// second, and each frame is drawn from nothing. What the real view is compared with.
class NaiveView final : public QWidget {
    Q_OBJECT

public:
    /// The runtime outlives the view.
    explicit NaiveView(OverlayRuntime& runtime);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// A slot's texts, measured once for each change.
    struct Line final {
        QString brand;
        QString tagline;
        double taglineWidth = 0;
    };

    void readTexts();
    void drawPill(QPainter& painter, const PillFrame& frame, const Line& line) const;

    OverlayRuntime& m_runtime;
    QTimer m_frames;
    QElapsedTimer m_sinceTexts;
    std::array<Line, 2> m_lines;
};

} // namespace brimlet
