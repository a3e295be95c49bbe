#pragma once

#include "tests/overlay/shownoverlay.h"
#include "tests/support/pngbytes.h"

#include <QPainter>
#include <QTest>

namespace brimlet {

/// An overlay view beside a notch of 184 by 32 points, and what it paints.
class PaintedView final {
public:
    /// In points.
    static constexpr QSize size = {428, 40};

    /// The service answers with `creatives`, a list in JSON, and with the picture for
    /// "https://brand.test/picture.png".
    PaintedView(const QByteArray& creatives, const QImage& picture) {
        m_overlay.host.http.answer(QStringLiteral("/picture.png"), 200, pngOf(picture));
        m_overlay.host.http.answer(QStringLiteral("/none.png"), 404, {});
        m_overlay.show(R"({"weekStatus":"live","creatives":)" + creatives + '}');
    }

    /// What it paints now at this scale; transparent elsewhere.
    [[nodiscard]] QImage picture(double devicePixelRatio) {
        return m_overlay.picture(devicePixelRatio);
    }
    /// The same over a background of one colour.
    [[nodiscard]] QImage pictureOver(const QColor& background, double devicePixelRatio) {
        const QImage top = picture(devicePixelRatio);
        QImage whole(top.size(), QImage::Format_RGB32);
        whole.setDevicePixelRatio(devicePixelRatio);
        whole.fill(background);
        QPainter(&whole).drawImage(0, 0, top);
        return whole;
    }

    void advance(std::chrono::nanoseconds time) { m_overlay.host.clock.advance(time); }

private:
    ShownOverlay m_overlay;
};

/// Adds the column "ratio" with the usual scales.
inline void addScales() {
    QTest::addColumn<double>("ratio");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 1.5") << 1.5;
    QTest::newRow("scale 2") << 2.0;
}

} // namespace brimlet
