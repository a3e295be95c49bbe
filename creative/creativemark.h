#pragma once

#include "platform/url.h"

#include <QCoroTask>
#include <QImage>
#include <QObject>

#include <optional>

class QPainter;

namespace brimlet {

class CreativeImageCache;

/// The small square at the start of a pill: the creative's picture, or while there is none the
/// first character of its brand in white. It loads while it is on screen. Main thread only.
class CreativeMark final : public QObject {
    Q_OBJECT

public:
    /// `size` is the square's side in points. The cache outlives the mark.
    CreativeMark(CreativeImageCache& images, double size);

    /// What it shows. Another address is loaded while the old picture stays.
    void setCreative(const std::optional<Url>& url, const QString& brand);
    /// Forgets creative and picture, as a new mark.
    void clear();

    /// The view came on screen: loads, and again with each other address until it leaves.
    void appear();
    /// The view left the screen: a load under way no longer counts.
    void disappear();

    /// Square, points.
    [[nodiscard]] double size() const { return m_size; }
    /// As the cache gave it; absent while the fallback stands.
    [[nodiscard]] const std::optional<QImage>& image() const { return m_image; }

    /// Draws into the box, in the painter's coordinates, which are whole pixels of the screen.
    void paint(QPainter& painter, const QRect& box, double devicePixelRatio);

Q_SIGNALS:
    /// It has to be painted again.
    void changed();

private:
    /// How many pictures were scaled is a figure that tests look at.
    friend class TestCreativeMark;

    void startLoading();
    [[nodiscard]] QCoro::Task<> load(std::optional<Url> url, int attempt);
    void setImage(std::optional<QImage> image);
    [[nodiscard]] const QImage& scaledTo(QSize box);

    CreativeImageCache& m_images;
    const double m_size;
    std::optional<Url> m_url;
    QString m_brand;
    bool m_isOnScreen = false;
    int m_attempt = 0; ///< Tells the newest load from those before it.
    std::optional<QImage> m_image;
    QImage m_scaled;      ///< The picture at the size it was last drawn in.
    QSize m_scaledForBox; ///< The box that this was made for.
    int m_scalings = 0;
};

} // namespace brimlet
