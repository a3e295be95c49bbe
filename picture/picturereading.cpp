#include "picture/picturereading.h"

#include "platform/picturelimits.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QHash>
#include <QImage>
#include <QImageIOPlugin>
#include <QImageReader>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <QTransform>
#include <QtEndian>

#include <cstring>
#include <memory>

namespace brimlet {
namespace {

/// The bytes, which remembers whether more was asked for than there is: decoders complete what
/// ends early with grey or black. No QBuffer, whose contents some take without reading.
class PictureBytes final : public QIODevice {
public:
    explicit PictureBytes(const QByteArray& bytes)
        : m_bytes(bytes) {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    [[nodiscard]] bool isExhausted() const { return m_isExhausted; }
    void forgetExhaustion() { m_isExhausted = false; }

    [[nodiscard]] qint64 size() const override { return m_bytes.size(); }

protected:
    qint64 readData(char* data, qint64 length) override {
        const qint64 read = qBound<qint64>(0, m_bytes.size() - pos(), length);
        m_isExhausted = m_isExhausted || (read == 0 && length > 0);
        std::memcpy(data, m_bytes.constData() + pos(), static_cast<size_t>(read));
        return read;
    }
    qint64 writeData(const char* /*data*/, qint64 /*length*/) override { return -1; }

private:
    QByteArray m_bytes;
    bool m_isExhausted = false;
};

/// Qt's name of the format; empty for any other.
QByteArray formatOf(const QByteArray& bytes) {
    if (bytes.startsWith("\x89PNG\r\n\x1a\n")) {
        return QByteArrayLiteral("png");
    }
    if (bytes.startsWith("\xff\xd8\xff")) {
        return QByteArrayLiteral("jpeg");
    }
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a")) {
        return QByteArrayLiteral("gif");
    }
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP") {
        return QByteArrayLiteral("webp");
    }
    return {};
}

QSize keptSize(QSize source) {
    if (source.width() <= kKeptSideLimit && source.height() <= kKeptSideLimit) {
        return source;
    }
    return source.scaled(kKeptSideLimit, kKeptSideLimit, Qt::KeepAspectRatio)
        .expandedTo(QSize(1, 1));
}

/// Scaled row by row, then column by column: for larger pieces Qt starts threads.
QImage shrunk(const QImage& picture, QSize size) {
    constexpr auto kFormat = QImage::Format_ARGB32_Premultiplied;
    QImage narrow(size.width(), picture.height(), kFormat);
    for (int y = 0; y < picture.height(); ++y) {
        QImage row(picture.constScanLine(y), picture.width(), 1, picture.bytesPerLine(),
                   picture.format());
        row.setColorTable(picture.colorTable());
        const QImage pixels = row.convertToFormat(kFormat).scaled(
            size.width(), 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        std::memcpy(narrow.scanLine(y), pixels.constScanLine(0),
                    sizeof(QRgb) * size_t(size.width()));
    }
    QImage whole(size, kFormat);
    for (int x = 0; x < size.width(); ++x) {
        const QImage column =
            narrow.copy(x, 0, 1, narrow.height())
                .scaled(1, size.height(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        for (int y = 0; y < size.height(); ++y) {
            std::memcpy(whole.scanLine(y) + sizeof(QRgb) * size_t(x), column.constScanLine(y),
                        sizeof(QRgb));
        }
    }
    return whole;
}

QImage upright(const QImage& picture, QImageIOHandler::Transformations turn) {
    const bool isMirrored = turn & QImageIOHandler::TransformationMirror;
    const bool isFlipped = turn & QImageIOHandler::TransformationFlip;
    const QImage mirrored = picture.mirrored(isMirrored, isFlipped);
    return turn & QImageIOHandler::TransformationRotate90
               ? mirrored.transformed(QTransform().rotate(90))
               : mirrored;
}

struct Frame final {
    QImage picture;
    QImageIOHandler::Transformations turn;
};

/// Qt's plugins for the formats that it does not read by itself; null where one is missing.
QHash<QByteArray, QImageIOPlugin*>& plugins() {
    static QHash<QByteArray, QImageIOPlugin*> byFormat;
    return byFormat;
}

QImageIOPlugin* pluginOf(QLatin1StringView format) {
    for (const QString& folder : QCoreApplication::libraryPaths()) {
        QPluginLoader loader(folder + QStringLiteral("/imageformats/q") + format);
        if (auto* const plugin = qobject_cast<QImageIOPlugin*>(loader.instance())) {
            return plugin;
        }
    }
    return nullptr;
}

/// A file of the picture; empty where that is not possible.
QByteArray written(const QImage& picture, const QByteArray& format) {
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    if (format == "png") {
        picture.save(&file, "PNG");
    } else if (auto* const plugin = plugins().value(format)) {
        std::unique_ptr<QImageIOHandler>(plugin->create(&file, format))->write(picture);
    }
    return file.data();
}

bool isWithinLimit(QSize size) {
    return size.width() <= kPictureSideLimit && size.height() <= kPictureSideLimit;
}

std::optional<Frame> readPng(PictureBytes& bytes) {
    QImageReader reader(&bytes, "png");
    reader.setAutoDetectImageFormat(false);
    if (!isWithinLimit(reader.size())) {
        return std::nullopt;
    }
    return Frame{reader.read(), QImageIOHandler::TransformationNone};
}

std::optional<Frame> readBy(QImageIOPlugin* plugin, PictureBytes& bytes, const QByteArray& format) {
    if (plugin == nullptr) {
        return std::nullopt;
    }
    const std::unique_ptr<QImageIOHandler> handler(plugin->create(&bytes, format));
    if (!isWithinLimit(handler->option(QImageIOHandler::Size).toSize())) {
        return std::nullopt;
    }
    bytes.forgetExhaustion(); // the size of a GIF is found by reading to its end
    Frame frame;
    if (!handler->read(&frame.picture)) {
        return std::nullopt;
    }
    frame.turn = static_cast<QImageIOHandler::Transformation>(
        handler->option(QImageIOHandler::ImageTransformation).toInt());
    return frame;
}

Picture pixelsOf(const QImage& picture) {
    return {.width = picture.width(),
            .height = picture.height(),
            .pixels = QByteArray(reinterpret_cast<const char*>(picture.constBits()),
                                 picture.sizeInBytes())}; // rows of 32 bits have no padding
}

/// Qt 6.8 takes no WebP file of less than 40 bytes, which a picture of few pixels can be. libwebp
/// ignores what follows the picture. A file that ends too soon by its own account stays as it is.
QByteArray padded(const QByteArray& webp) {
    constexpr qsizetype kHead = 8;
    constexpr qsizetype kShortest = 40;
    const bool isWhole =
        webp.size() >= kHead &&
        webp.size() - kHead >= qsizetype{qFromLittleEndian<quint32>(webp.constData() + 4)};
    return isWhole ? webp.leftJustified(kShortest, '\0') : webp;
}

} // namespace

void preparePictureReading() {
    constexpr int kMebibytes = 256; // twice the largest picture with 16 bits a channel
    QImageReader::setAllocationLimit(kMebibytes);
    QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio*=false"));
    for (const char* const format : {"jpeg", "gif", "webp"}) {
        plugins().insert(format, pluginOf(QLatin1StringView(format)));
    }
}

void rehearsePictureReading() {
    QImage picture(200, 200, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    for (const char* const format : {"png", "jpeg", "webp"}) {
        static_cast<void>(readPicture(written(picture, format)));
    }
}

std::optional<Picture> readPicture(const QByteArray& bytes) {
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty() || bytes.size() > kPictureBytesLimit) {
        return std::nullopt;
    }
    PictureBytes device(format == "webp" ? padded(bytes) : bytes);
    const auto frame =
        format == "png" ? readPng(device) : readBy(plugins().value(format), device, format);
    // WebP's decoder always reads to the end, and checks its length itself.
    if (!frame || frame->picture.isNull() || !isWithinLimit(frame->picture.size()) ||
        (device.isExhausted() && format != "webp")) {
        return std::nullopt;
    }
    return pixelsOf(upright(shrunk(frame->picture, keptSize(frame->picture.size())), frame->turn));
}

} // namespace brimlet
