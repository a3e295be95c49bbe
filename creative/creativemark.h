#pragma once

#include "platform/url.h"

#include <QCoroTask>
#include <QImage>
#include <QObject>

#include <optional>

class QPainter;

namespace brimlet {

class CreativeImageCache;

/// The small square at the start of a pill: the creative's picture or, while there is none, the
/// first character of its brand in white. Main thread only.
class CreativeMark final : public QObject {
    Q_OBJECT

public:
    /// `images` outlives the mark.
    explicit CreativeMark(CreativeImageCache& images)
        : m_images(images) {}

    /// `url` is the picture's address; a new one loads at once. Meanwhile the old picture stays on
    /// screen; off screen it is removed, so that it never comes on screen beside another brand.
    void setCreative(const std::optional<Url>& url, const QString& brand);
    /// Removes the creative and the picture; ignores the result of a load in progress.
    void clear();

    /// The view has come on screen. Tries again to load a missing picture.
    void appear();
    /// The view has left the screen. A load in progress continues; the picture that it replaces is
    /// removed.
    void disappear();

    /// The picture in the size that the cache keeps; absent while the character is shown.
    [[nodiscard]] const std::optional<QImage>& image() const { return m_image; }

    /// Draws into the square box. The painter must use screen pixels as coordinates (see
    /// `PixelSpace`). `devicePixelRatio` is pixels per point.
    void paint(QPainter& painter, const QRect& box, double devicePixelRatio);

Q_SIGNALS:
    /// The mark has to be repainted.
    void changed();

private:
    void startLoading();
    [[nodiscard]] QCoro::Task<> load(std::optional<Url> url, int attempt);
    void setImage(std::optional<QImage> image);
    [[nodiscard]] const QImage& scaledTo(QSize box);

    CreativeImageCache& m_images;
    std::optional<Url> m_url;
    QString m_brand;
    bool m_isOnScreen = false;
    bool m_isLoading = false;
    int m_attempt = 0; ///< Number of the newest load; the results of others are ignored.
    std::optional<QImage> m_image;
    QImage m_scaled;      ///< The picture, scaled to the box it was last painted in.
    QSize m_scaledForBox; ///< The size of that box.
};

} // namespace brimlet
