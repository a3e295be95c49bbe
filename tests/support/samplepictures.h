#pragma once

#include <QByteArray>
#include <QImage>

#include <initializer_list>

namespace brimlet::samples {

/// Four opaque quadrants: red, green below each other on the left; blue, white on the right.
[[nodiscard]] QImage quadrants(QSize size);

[[nodiscard]] QByteArray png(const QImage& picture);
/// Interlaced, with alpha, eight bits.
[[nodiscard]] QByteArray interlacedPng(const QImage& picture);
/// A chunk with its checksum.
[[nodiscard]] QByteArray pngChunk(const char* type, const QByteArray& data);
/// Signature and header, then arbitrary pixel data: enough for the validation.
[[nodiscard]] QByteArray pngOutline(quint32 width, quint32 height, char depth = 8, char kind = 6);

[[nodiscard]] QByteArray jpeg(const QImage& picture, bool isProgressive = false);
/// With an EXIF orientation, from 1 to 8.
[[nodiscard]] QByteArray turnedJpeg(const QByteArray& jpeg, char orientation);
/// A picture of 8 by 8 in one colour, in inverted CMYK as Adobe writes it.
[[nodiscard]] QByteArray inkJpeg(std::initializer_list<int> samples);
/// A marker and its segment.
[[nodiscard]] QByteArray jpegSegment(char code, const QByteArray& data);
/// A frame header of components that share one sampling.
[[nodiscard]] QByteArray jpegFrame(char code, int width, int height, int components = 3,
                                   char sampling = 0x11, char precision = 8);
/// A scan of these components, numbered from 1, without data.
[[nodiscard]] QByteArray jpegScan(const QByteArray& components, char first = 0, char last = 63,
                                  char precision = 0);
/// A progressive picture of 4096 by 4096 in one component and a few hundred bytes: a first scan,
/// then empty scans that visit every block, with a restart interval in blocks. Refining scans visit
/// all coefficients of each block.
[[nodiscard]] QByteArray idleJpeg(int scans, bool refines, int restartInterval = 0);

/// One frame of up to 127 colours, index 127 being transparent.
[[nodiscard]] QByteArray gif(const QImage& picture);
/// The frames at the upper left corner of a screen as large as the first.
[[nodiscard]] QByteArray animatedGif(std::initializer_list<QImage> frames);
/// A single colour, in very few bytes.
[[nodiscard]] QByteArray plainGif(QSize size);
/// Codes that repeat earlier pixels, without end.
[[nodiscard]] QByteArray endlessGif(QSize size, int codes);
/// A screen and one frame with arbitrary data: enough for the validation.
[[nodiscard]] QByteArray gifOutline(QSize screen, QRect frame, char codeSize = 7);

[[nodiscard]] QByteArray webp(const QImage& picture, bool isLossless);
struct WebPFrame final {
    QPoint place; ///< Even.
    QImage picture;
};
[[nodiscard]] QByteArray animatedWebP(QSize canvas, std::initializer_list<WebPFrame> frames);
[[nodiscard]] QByteArray webpChunk(const char* kind, const QByteArray& data);
/// A RIFF container of these chunks.
[[nodiscard]] QByteArray webpFile(const QByteArray& chunks);
/// The chunk with the canvas: bit 1 for an animation, bit 4 for an alpha channel.
[[nodiscard]] QByteArray webpCanvas(QSize size, char flags = 0);
/// A chunk of lossy or lossless pixels that consists only of its header.
[[nodiscard]] QByteArray webpOutline(QSize size, bool isLossless);

} // namespace brimlet::samples
