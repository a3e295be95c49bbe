#pragma once

#include <QImage>
#include <QSize>

#include <span>
#include <vector>

namespace brimlet {

/// Longest side of a kept picture, in pixels: the most that is ever drawn.
inline constexpr int kKeptSideLimit = 128;

/// The size to which a picture is scaled down: same proportions, at most `kKeptSideLimit` a side,
/// never enlarged, at least 1 by 1.
[[nodiscard]] QSize keptSize(QSize source);

/// Averages a picture's pixels down to its kept size as they come, in any order, so that the whole
/// picture need not be in memory. QImage's smooth scaling makes a second copy and uses threads.
class PictureShrinker final {
public:
    /// Both sides at least 1.
    explicit PictureShrinker(QSize source);
    /// For a source that the decoder has already reduced, so that its proportions differ slightly
    /// from those of `kept`. The kept size is at least 1 and at most the source's on both sides.
    PictureShrinker(QSize source, QSize kept);

    /// Adds premultiplied pixels of row `y`, from column `first` on in steps of `step`.
    void add(int y, std::span<const QRgb> pixels, int first = 0, int step = 1);
    /// Adds a whole picture of the source size, in any format without palette.
    void add(const QImage& picture);

    /// True when as many pixels were added as the source has.
    [[nodiscard]] bool isComplete() const;
    /// What was added, averaged; premultiplied.
    [[nodiscard]] QImage picture() const;

private:
    /// Two channels side by side, 32 bits each: no sum of a whole picture's samples overflows.
    struct Sum final {
        quint64 alphaGreen = 0;
        quint64 redBlue = 0;
    };
    /// How much of a source pixel's length falls into kept pixel `target` and into the one after
    /// it, in units of 1/kept of a source pixel.
    struct Share final {
        int target = 0;
        quint32 here = 0;
        quint32 next = 0;
    };

    [[nodiscard]] static std::vector<Share> shares(int source, int kept);

    QSize m_source;
    QSize m_kept;
    std::vector<Share> m_columns;
    std::vector<Share> m_rows;
    std::vector<Sum> m_line;
    std::vector<Sum> m_sums;
    qint64 m_added = 0;
};

} // namespace brimlet
