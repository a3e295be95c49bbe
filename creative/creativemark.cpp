#include "creative/creativemark.h"

#include "creative/creativeimagecache.h"
#include "creative/fallbacktext.h"
#include "creative/notchfont.h"
#include "platform/starttask.h"

#include <QPainter>
#include <QPointer>

namespace brimlet {

void CreativeMark::setCreative(const std::optional<Url>& url, const QString& brand) {
    if (m_brand != brand) {
        m_brand = brand;
        if (!m_image) {
            Q_EMIT changed();
        }
    }
    if (m_url != url) {
        m_url = url;
        if (!m_isOnScreen) {
            setImage(std::nullopt);
        }
        startLoading();
    }
}

void CreativeMark::clear() {
    ++m_attempt;
    m_isLoading = false;
    m_url.reset();
    m_brand.clear();
    setImage(std::nullopt);
}

void CreativeMark::appear() {
    if (!m_isOnScreen) {
        m_isOnScreen = true;
        if (!m_image && !m_isLoading) {
            startLoading();
        }
    }
}

void CreativeMark::disappear() {
    m_isOnScreen = false;
    if (m_isLoading) {
        setImage(std::nullopt); // it belongs to an older address
    }
}

void CreativeMark::startLoading() {
    m_isLoading = true;
    startTask(load(m_url, ++m_attempt));
}

QCoro::Task<> CreativeMark::load(std::optional<Url> url, int attempt) {
    const QPointer<CreativeMark> self(this);
    std::optional<QImage> image = co_await m_images.image(std::move(url));
    // A late reply to an older load never replaces the result of a newer one.
    if (self && attempt == m_attempt) {
        m_isLoading = false;
        setImage(std::move(image));
    }
}

void CreativeMark::setImage(std::optional<QImage> image) {
    if (m_image == image) {
        return;
    }
    m_image = std::move(image);
    m_scaled = {};
    m_scaledForBox = {};
    Q_EMIT changed();
}

const QImage& CreativeMark::scaledTo(QSize box) {
    if (m_scaledForBox != box) {
        m_scaled = m_image->scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        m_scaledForBox = box;
    }
    return m_scaled;
}

void CreativeMark::paint(QPainter& painter, const QRect& box, double devicePixelRatio) {
    if (m_image) {
        const QImage& picture = scaledTo(box.size());
        const QSize rest = box.size() - picture.size();
        painter.drawImage(box.topLeft() + QPoint(rest.width() / 2, rest.height() / 2), picture);
        return;
    }
    painter.save();
    painter.setClipRect(box); // some characters are much wider than the box
    painter.translate(QRectF(box).center());
    painter.scale(devicePixelRatio, devicePixelRatio);
    painter.setFont(NotchFont::fallbackMark());
    painter.setPen(Qt::white);
    constexpr QRectF kAround(-100, -100, 200, 200);
    painter.drawText(kAround, Qt::AlignCenter | Qt::TextSingleLine, fallbackText(m_brand));
    painter.restore();
}

} // namespace brimlet
