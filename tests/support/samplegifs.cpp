#include "tests/support/samplepictures.h"

#include <QColor>
#include <QtEndian>

namespace brimlet::samples {
namespace {

constexpr int kTransparentIndex = 127;

QByteArray littleEndian(int number) {
    QByteArray bytes(2, '\0');
    qToLittleEndian(static_cast<quint16>(number), bytes.data());
    return bytes;
}

QByteArray header(QSize screen, const QList<QRgb>& colours) {
    QByteArray table;
    for (const QRgb colour : colours) {
        table.append(static_cast<char>(qRed(colour)))
            .append(static_cast<char>(qGreen(colour)))
            .append(static_cast<char>(qBlue(colour)));
    }
    return "GIF89a" + littleEndian(screen.width()) + littleEndian(screen.height()) + '\xf6' +
           QByteArray(2, '\0') + table.leftJustified(qsizetype{3} * 128, '\0');
}

QByteArray frame(QRect place, char codeSize, const QByteArray& data) {
    QByteArray bytes = QByteArray("!\xf9\x04\x0d\0\0\x7f\0", 8) + ',' + littleEndian(place.x()) +
                       littleEndian(place.y()) + littleEndian(place.width()) +
                       littleEndian(place.height()) + QByteArray(1, '\0') + codeSize;
    for (qsizetype at = 0; at < data.size(); at += 255) {
        const QByteArray block = data.mid(at, 255);
        bytes.append(static_cast<char>(block.size())).append(block);
    }
    return bytes + '\0';
}

QByteArray frameOf(const QImage& picture, QList<QRgb>& colours) {
    QByteArray codes;
    int sinceClear = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x, ++sinceClear) {
            const QRgb pixel = picture.pixel(x, y);
            if (qAlpha(pixel) != 0 && !colours.contains(pixel)) {
                colours.append(pixel);
            }
            // Cleared before the codes grow beyond eight bits, so that each is a byte.
            if (sinceClear % 100 == 0) {
                codes.append('\x80');
            }
            codes.append(qAlpha(pixel) == 0 ? static_cast<char>(kTransparentIndex)
                                            : static_cast<char>(colours.indexOf(pixel)));
        }
    }
    return frame(picture.rect(), 7, codes + '\x81');
}

/// Codes that each mean one pixel more than the previous one, until the table is full.
QByteArray growingCodes(qint64 pixels, int most) {
    constexpr int tableSize = 4096;
    QByteArray data;
    quint32 pending = 0;
    int bits = 0;
    int size = 8;
    int next = 130;
    const auto put = [&](int code) {
        pending |= static_cast<quint32>(code) << bits;
        for (bits += size; bits >= 8; bits -= 8, pending >>= 8) {
            data.append(static_cast<char>(pending & 0xff));
        }
    };
    put(128);
    put(1);
    qint64 done = 1;
    for (int count = 0, length = 1; done < pixels && count < most; ++count, done += length) {
        put(qMin(next, tableSize - 1));
        if (next < tableSize) {
            ++next;
            ++length;
            size += next >= 1 << size && size < 12 ? 1 : 0;
        }
    }
    put(129);
    put(0); // flushes the pending bits
    return data;
}

QByteArray runs(QSize size, qint64 pixels, int most) {
    return header(size, {qRgb(0, 0, 0), qRgb(200, 100, 50)}) +
           frame(QRect(QPoint(), size), 7, growingCodes(pixels, most)) + ';';
}

} // namespace

QByteArray gif(const QImage& picture) {
    return animatedGif({picture});
}

QByteArray animatedGif(std::initializer_list<QImage> frames) {
    QList<QRgb> colours;
    QByteArray bytes;
    for (const QImage& picture : frames) {
        bytes += frameOf(picture, colours);
    }
    return header(frames.begin()->size(), colours) +
           QByteArray("!\xff\x0bNETSCAPE2.0\x03\x01\0\0\0", 19) + bytes + ';';
}

QByteArray plainGif(QSize size) {
    return runs(size, qint64{size.width()} * size.height(), std::numeric_limits<int>::max());
}

QByteArray endlessGif(QSize size, int codes) {
    return runs(size, std::numeric_limits<qint64>::max(), codes);
}

QByteArray gifOutline(QSize screen, QRect place, char codeSize) {
    return header(screen, {}) + frame(place, codeSize, "x") + ';';
}

} // namespace brimlet::samples
