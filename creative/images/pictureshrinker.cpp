#include "creative/images/pictureshrinker.h"

namespace brimlet {
namespace {

constexpr quint64 kEvenChannels = 0x00ff00ff;

/// Moves the upper of two channels, 16 bits apart, to where its sum has room.
constexpr quint64 spread(quint64 channels) {
    return (channels | channels << 16) & 0x000000ff000000ff;
}

} // namespace

QSize keptSize(QSize source) {
    if (source.width() <= kKeptSideLimit && source.height() <= kKeptSideLimit) {
        return source;
    }
    return source.scaled(kKeptSideLimit, kKeptSideLimit, Qt::KeepAspectRatio)
        .expandedTo(QSize(1, 1));
}

PictureShrinker::PictureShrinker(QSize source)
    : PictureShrinker(source, keptSize(source)) {}

PictureShrinker::PictureShrinker(QSize source, QSize kept)
    : m_source(source)
    , m_kept(kept)
    , m_columns(shares(source.width(), m_kept.width()))
    , m_rows(shares(source.height(), m_kept.height()))
    // One more each way, to take the empty shares beyond the edge.
    , m_line(static_cast<size_t>(m_kept.width()) + 1)
    , m_sums((static_cast<size_t>(m_kept.height()) + 1) * m_line.size()) {}

std::vector<PictureShrinker::Share> PictureShrinker::shares(int source, int kept) {
    std::vector<Share> shares(static_cast<size_t>(source));
    for (int i = 0; i < source; ++i) {
        // In units where a source pixel is `kept` long and a kept one `source`.
        const int target = i * kept / source;
        const int here = qMin(kept, (target + 1) * source - i * kept);
        shares[static_cast<size_t>(i)] = {.target = target,
                                          .here = static_cast<quint32>(here),
                                          .next = static_cast<quint32>(kept - here)};
    }
    return shares;
}

void PictureShrinker::add(int y, std::span<const QRgb> pixels, int first, int step) {
    m_line.assign(m_line.size(), Sum{});
    auto column = static_cast<size_t>(first);
    for (const QRgb pixel : pixels) {
        const quint64 alphaGreen = spread(pixel >> 8 & kEvenChannels);
        const quint64 redBlue = spread(pixel & kEvenChannels);
        const Share& share = m_columns[column];
        Sum* sum = &m_line[static_cast<size_t>(share.target)];
        sum[0].alphaGreen += alphaGreen * share.here;
        sum[0].redBlue += redBlue * share.here;
        if (share.next != 0) {
            sum[1].alphaGreen += alphaGreen * share.next;
            sum[1].redBlue += redBlue * share.next;
        }
        column += static_cast<size_t>(step);
    }
    m_added += static_cast<qint64>(pixels.size());

    const Share& row = m_rows[static_cast<size_t>(y)];
    Sum* sums = &m_sums[static_cast<size_t>(row.target) * m_line.size()];
    for (const Sum& sum : m_line) {
        sums->alphaGreen += sum.alphaGreen * row.here;
        sums->redBlue += sum.redBlue * row.here;
        sums[m_line.size()].alphaGreen += sum.alphaGreen * row.next;
        sums[m_line.size()].redBlue += sum.redBlue * row.next;
        ++sums;
    }
}

void PictureShrinker::add(const QImage& picture) {
    for (int y = 0; y < picture.height(); ++y) {
        const QImage row(picture.constScanLine(y), picture.width(), 1, picture.bytesPerLine(),
                         picture.format());
        const QImage pixels = row.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        add(y, std::span(reinterpret_cast<const QRgb*>(pixels.constScanLine(0)),
                         static_cast<size_t>(pixels.width())));
    }
}

bool PictureShrinker::isComplete() const {
    return m_added == qint64{m_source.width()} * m_source.height();
}

QImage PictureShrinker::picture() const {
    QImage picture(m_kept, QImage::Format_ARGB32_Premultiplied);
    const quint64 whole =
        static_cast<quint64>(m_source.width()) * static_cast<quint64>(m_source.height());
    const auto average = [whole](quint64 sum) {
        return static_cast<QRgb>((static_cast<quint32>(sum) + whole / 2) / whole);
    };
    for (int y = 0; y < m_kept.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        const Sum* sum = &m_sums[static_cast<size_t>(y) * m_line.size()];
        for (int x = 0; x < m_kept.width(); ++x, ++sum) {
            line[x] = average(sum->alphaGreen >> 32) << 24 | average(sum->redBlue >> 32) << 16 |
                      average(sum->alphaGreen) << 8 | average(sum->redBlue);
        }
    }
    return picture;
}

} // namespace brimlet
