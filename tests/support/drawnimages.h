#pragma once

#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>

#include <vector>

namespace brimlet {

/// A paint device of one pixel per point that keeps the images drawn on it instead of pixels. Their
/// cache keys tell whether a painter draws the same image again or a new one.
class DrawnImages final : public QPaintDevice {
public:
    /// The images drawn since the last call, in order.
    std::vector<QImage> take() { return std::exchange(m_engine.images, {}); }

    [[nodiscard]] QPaintEngine* paintEngine() const override { return &m_engine; }

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
            return 1000;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return 96;
        }
    }

private:
    class Engine final : public QPaintEngine {
    public:
        Engine()
            : QPaintEngine(AllFeatures) {}
        bool begin(QPaintDevice* /*device*/) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState& /*state*/) override {}
        void drawPixmap(const QRectF& /*box*/, const QPixmap& /*pixmap*/,
                        const QRectF& /*part*/) override {}
        void drawImage(const QRectF& /*box*/, const QImage& image, const QRectF& /*part*/,
                       Qt::ImageConversionFlags /*flags*/) override {
            images.push_back(image);
        }
        [[nodiscard]] Type type() const override { return User; }

        std::vector<QImage> images;
    };

    mutable Engine m_engine;
};

} // namespace brimlet
