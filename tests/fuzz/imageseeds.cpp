#include "tests/support/goodfiles.h"

#include <QDir>
#include <QFile>

#include <cstdio>

using namespace brimlet;

namespace {

/// Small files that together reach every format's validation and decoder.
QList<std::pair<const char*, QByteArray>> seeds() {
    const QImage picture = samples::quadrants(QSize(16, 12));
    QImage faint = picture.convertToFormat(QImage::Format_ARGB32);
    faint.fill(qRgba(200, 100, 50, 40));
    auto files = samples::goodFiles();
    files << std::pair("turned JPEG", samples::turnedJpeg(samples::jpeg(picture), 6))
          << std::pair("JPEG in inks", samples::inkJpeg({40, 90, 10, 200}))
          << std::pair("grey JPEG",
                       samples::jpeg(picture.convertToFormat(QImage::Format_Grayscale8)))
          << std::pair("JPEG outline", "\xff\xd8" + samples::jpegFrame('\xc2', 33, 17) +
                                           samples::jpegScan("\1\2\3", 0, 0) +
                                           samples::jpegScan("\1", 1, 5, 2) + "\xff\xd9")
          << std::pair("PNG with alpha", samples::png(faint))
          << std::pair("grey PNG", samples::png(picture.convertToFormat(QImage::Format_Grayscale8)))
          << std::pair("black and white PNG",
                       samples::png(picture.convertToFormat(QImage::Format_Mono)))
          << std::pair("PNG outline", samples::pngOutline(9, 9))
          << std::pair("wide PNG", samples::png(samples::quadrants(QSize(300, 2))))
          << std::pair("plain GIF", samples::plainGif(QSize(160, 130)))
          << std::pair("GIF with an inner frame",
                       samples::gifOutline(QSize(40, 30), QRect(4, 5, 9, 7)))
          << std::pair("WebP with alpha", samples::webp(faint, false))
          << std::pair("lossless WebP with alpha", samples::webp(faint, true))
          << std::pair(
                 "WebP with an inner frame",
                 samples::animatedWebP(QSize(400, 30), {{.place = {10, 4}, .picture = picture}}))
          << std::pair("extended WebP", samples::webpFile(samples::webpCanvas(QSize(9, 9)) +
                                                          samples::webpOutline(QSize(9, 9), true)));
    return files;
}

} // namespace

/// Writes the initial corpus of the image fuzzer: image-seeds FOLDER.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: image-seeds FOLDER\n", stderr);
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    for (const auto& [name, bytes] : seeds()) {
        QFile file(folder.filePath(QString::fromLatin1(name).replace(u' ', u'-')));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            std::fprintf(stderr, "image-seeds: cannot write %s\n", qPrintable(file.fileName()));
            return 1;
        }
    }
    return 0;
}
