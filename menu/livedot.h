#pragma once

#include <QLabel>

namespace brimlet {

/// A small dot and a word: green and "Live", or grey and "Unfilled". Not animated. A QLabel for the
/// accessible role, but QLabel's own text stays empty.
class LiveDot final : public QLabel {
    Q_OBJECT

public:
    /// `live`: ads are shown. `compact`: a smaller font.
    LiveDot(bool live, bool compact);

    void setLive(bool live);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_live;
};

} // namespace brimlet
