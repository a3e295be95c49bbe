#pragma once

#include "tests/overlay/shownoverlay.h"

#include <QTest>

namespace brimlet {

/// An overlay whose two taglines begin to scroll now.
struct ScrollingOverlay final : ShownOverlay {
    explicit ScrollingOverlay(double notchWidth) {
        using namespace std::chrono_literals;
        (void)QTest::qWaitForWindowExposed(&view);
        fetch("{\"weekStatus\":\"live\",\"creatives\":["
              "{\"slotId\":\"left\",\"brandName\":\"Left\",\"tagline\":\"Never odd or even, "
              "g\u00c4y\"},{\"slotId\":\"right\",\"brandName\":\"Right\",\"tagline\":\"A tagline "
              "much too wide for it\"}]}");
        render(notchWidth);
        QCoreApplication::processEvents();
        host.clock.advance(17600ms);
        QCoreApplication::processEvents();
    }

    /// Paints both pills as a whole, at once. The view's own `repaint()` leaves them out.
    void paintWhole() {
        left()->repaint();
        right()->repaint();
    }
};

} // namespace brimlet
