#include "tests/support/samplepictures.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <QtEndian>

namespace brimlet::samples {
namespace {

template <typename Number>
QByteArray bigEndian(Number number) {
    QByteArray bytes(sizeof number, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

quint32 checksum(const QByteArray& bytes) {
    quint32 sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum & 1) != 0 ? sum >> 1 ^ 0xedb88320 : sum >> 1;
        }
    }
    return ~sum;
}

QByteArray written(const QImage& picture, const char* format, bool isProgressive) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    writer.setQuality(format == QByteArrayView("png") ? -1 : 90);
    writer.setProgressiveScanWrite(isProgressive);
    return writer.write(picture) ? bytes : QByteArray();
}

} // namespace

QImage quadrants(QSize size) {
    QImage picture(size, QImage::Format_RGB32);
    QPainter painter(&picture);
    const int x = size.width() / 2;
    const int y = size.height() / 2;
    painter.fillRect(picture.rect(), Qt::white);
    painter.fillRect(0, 0, x, y, Qt::red);
    painter.fillRect(0, y, x, size.height() - y, QColor(0, 255, 0));
    painter.fillRect(x, 0, size.width() - x, y, Qt::blue);
    return picture;
}

QByteArray png(const QImage& picture) {
    return written(picture, "png", false);
}

QByteArray pngChunk(const char* type, const QByteArray& data) {
    const QByteArray body = type + data;
    return bigEndian(static_cast<quint32>(data.size())) + body + bigEndian(checksum(body));
}

QByteArray interlacedPng(const QImage& picture) {
    struct Pass final {
        int x, y, acrossStep, downStep;
    };
    constexpr Pass passes[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                               {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
    QByteArray rows;
    for (const Pass& pass : passes) {
        for (int y = pass.y; y < picture.height() && pass.x < picture.width(); y += pass.downStep) {
            rows.append('\0');
            for (int x = pass.x; x < picture.width(); x += pass.acrossStep) {
                const QRgb pixel = picture.pixel(x, y);
                rows += bigEndian(pixel << 8 | static_cast<quint32>(qAlpha(pixel)));
            }
        }
    }
    const QByteArray header = bigEndian(picture.width()) + bigEndian(picture.height()) +
                              QByteArray("\x08\x06\0\0\x01", 5);
    return "\x89PNG\r\n\x1a\n" + pngChunk("IHDR", header) +
           pngChunk("IDAT", qCompress(rows).sliced(4)) + pngChunk("IEND", {});
}

QByteArray pngOutline(quint32 width, quint32 height, char depth, char kind) {
    const QByteArray header =
        bigEndian(width) + bigEndian(height) + depth + kind + QByteArray(3, '\0');
    return "\x89PNG\r\n\x1a\n" + pngChunk("IHDR", header) + pngChunk("IDAT", "x") +
           pngChunk("IEND", {});
}

QByteArray jpeg(const QImage& picture, bool isProgressive) {
    return written(picture, "jpeg", isProgressive);
}

QByteArray jpegSegment(char code, const QByteArray& data) {
    return '\xff' + QByteArray(1, code) + bigEndian(static_cast<quint16>(data.size() + 2)) + data;
}

QByteArray turnedJpeg(const QByteArray& jpeg, char orientation) {
    const QByteArray exif = QByteArray("Exif\0\0MM\0*\0\0\0\x08\0\x01", 16) +
                            QByteArray("\x01\x12\0\x03\0\0\0\x01\0", 9) + orientation +
                            QByteArray(6, '\0');
    return jpeg.first(2) + jpegSegment('\xe1', exif) + jpeg.sliced(2);
}

QByteArray jpegFrame(char code, int width, int height, int components, char sampling,
                     char precision) {
    QByteArray data = precision + bigEndian(static_cast<quint16>(height)) +
                      bigEndian(static_cast<quint16>(width)) + static_cast<char>(components);
    for (int i = 1; i <= components; ++i) {
        data.append(static_cast<char>(i)).append(sampling).append('\0');
    }
    return jpegSegment(code, data);
}

QByteArray jpegScan(const QByteArray& components, char first, char last, char precision) {
    QByteArray data(1, static_cast<char>(components.size()));
    for (const char component : components) {
        data.append(component).append('\0');
    }
    return jpegSegment('\xda', data + first + last + precision);
}

QByteArray inkJpeg(std::initializer_list<int> samples) {
    // Steps of eight make a block's first coefficient its level, in nine categories of four bits;
    // the one code for other coefficients ends the block.
    const QByteArray directCodes = QByteArray("\0\0\0\0\x09", 5) + QByteArray(12, '\0') +
                                   QByteArray("\0\x01\x02\x03\x04\x05\x06\x07\x08", 9);
    const QByteArray otherCodes = QByteArray("\x10\x01", 2) + QByteArray(16, '\0');
    QString bits;
    for (const int sample : samples) {
        const int level = sample - 128;
        int category = 0;
        while (qAbs(level) >> category != 0) {
            ++category;
        }
        bits += QStringLiteral("%1").arg(category, 4, 2, QLatin1Char('0'));
        if (category > 0) {
            const int value = level > 0 ? level : level + (1 << category) - 1;
            bits += QStringLiteral("%1").arg(value, category, 2, QLatin1Char('0'));
        }
        bits += QLatin1Char('0');
    }
    QByteArray data;
    for (qsizetype at = 0; at < bits.size(); at += 8) {
        const auto byte = bits.mid(at, 8).leftJustified(8, QLatin1Char('1')).toInt(nullptr, 2);
        data.append(static_cast<char>(byte));
        if (byte == 0xff) {
            data.append('\0');
        }
    }
    return "\xff\xd8" + jpegSegment('\xee', QByteArray("Adobe\0d\0\0\0\0\0", 12)) +
           jpegSegment('\xdb', QByteArray(1, '\0') + QByteArray(64, '\x08')) +
           jpegFrame('\xc0', 8, 8, 4) + jpegSegment('\xc4', directCodes) +
           jpegSegment('\xc4', otherCodes) + jpegScan("\x01\x02\x03\x04") + data + "\xff\xd9";
}

QByteArray idleJpeg(int scans, bool refines, int restartInterval) {
    // The only code, of one bit, means a level of zero or starts a run of empty blocks, whose
    // length is 32767 with 14 further bits.
    const QByteArray lengths = '\x01' + QByteArray(15, '\0');
    const QByteArray directCodes = '\0' + lengths + '\0';
    const QByteArray otherCodes = '\x10' + lengths + '\xe0';
    // Nine runs, all of which a restart ends.
    const QByteArray runs = QByteArray("\x7f\xfe\xff\0\xfd\xff\0\xfb\xff\0\xf7", 11) +
                            QByteArray("\xff\0\xef\xff\0\xdf\xff\0\xbf\xff\0\x7f\xff\0", 14);
    const QByteArray data = restartInterval == 0 ? runs : QByteArray();
    const QByteArray scan = samples::jpegScan("\x01", 1, 63, refines ? '\x10' : '\x01') + data;
    return "\xff\xd8" + jpegSegment('\xdb', QByteArray(1, '\0') + QByteArray(64, '\x08')) +
           jpegFrame('\xc2', 4096, 4096, 1) + jpegSegment('\xc4', directCodes) +
           jpegSegment('\xc4', otherCodes) +
           jpegSegment('\xdd', bigEndian(static_cast<quint16>(restartInterval))) +
           jpegScan("\x01", 0, 0) + scan.repeated(scans) + "\xff\xd9";
}

} // namespace brimlet::samples
