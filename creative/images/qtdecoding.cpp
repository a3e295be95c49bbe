#include "creative/images/imagedecoders.h"
#include "creative/images/pictureshrinker.h"
#include "creative/images/throttleddevice.h"

#include <QImageReader>
#include <QLoggingCategory>

namespace brimlet {
namespace {

QLoggingCategory::CategoryFilter filterBefore = nullptr;

void filterCategory(QLoggingCategory* category) {
    if (filterBefore) {
        filterBefore(category);
    }
    if (QByteArrayView(category->categoryName()).startsWith("qt.gui.imageio")) {
        category->setEnabled(QtDebugMsg, false);
        category->setEnabled(QtInfoMsg, false);
        category->setEnabled(QtWarningMsg, false);
    }
}

/// Qt's decoders warn of every broken picture, and those are common here. Filter rules would
/// replace the user's, and a message handler comes too late where warnings are fatal.
void silenceDecoders() {
    static const bool once = [] {
        filterBefore = QLoggingCategory::installFilter(filterCategory);
        return true;
    }();
    Q_UNUSED(once)
}

/// True when a division of this side leaves at most a sixty-fourth of it over.
bool dividesWell(int side, int divisor) {
    return side / divisor >= 1 && side % divisor * 64 <= side;
}

/// By how much libjpeg is to reduce a picture while it decodes: a power of two, with enough left
/// for the kept size.
int reduction(QSize size) {
    const QSize kept = keptSize(size);
    for (const int divisor : {8, 4, 2}) {
        if (size.width() / divisor >= kept.width() && size.height() / divisor >= kept.height() &&
            dividesWell(size.width(), divisor) && dividesWell(size.height(), divisor)) {
            return divisor;
        }
    }
    return 1;
}

/// Decodes with the plugin of this name and no other, reduced by a divisor.
std::optional<QImage> decode(const QByteArray& format, const SanitisedImage& image, int divisor,
                             const CpuDeadline& deadline) {
    silenceDecoders();
    ThrottledDevice bytes(image.body, deadline);
    QImageReader reader(&bytes, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    if (divisor > 1) {
        // A multiple of the divisor, so that Qt has nothing left to scale by itself.
        const QSize size(image.facts.width / divisor, image.facts.height / divisor);
        reader.setClipRect(QRect(QPoint(), size * divisor));
        reader.setScaledSize(size);
    }
    QSize kept = keptSize(QSize(image.facts.width, image.facts.height));
    if (reader.transformation() & QImageIOHandler::TransformationRotate90) {
        kept.transpose();
    }
    const QImage picture = reader.read();
    if (picture.isNull() || bytes.hasStopped() || kept.boundedTo(picture.size()) != kept) {
        return std::nullopt;
    }
    PictureShrinker shrinker(picture.size(), kept);
    shrinker.add(picture);
    return shrinker.picture();
}

} // namespace

std::optional<QImage> decodeJpeg(const SanitisedImage& image, const CpuDeadline& deadline) {
    return decode(QByteArrayLiteral("jpeg"), image,
                  reduction(QSize(image.facts.width, image.facts.height)), deadline);
}

std::optional<QImage> decodeGif(const SanitisedImage& image, const CpuDeadline& deadline) {
    return decode(QByteArrayLiteral("gif"), image, 1, deadline);
}

} // namespace brimlet
