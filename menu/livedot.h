#pragma once

#include <QLabel>

namespace brimlet {

/// A small dot with its word: green and "Live", or grey and "Unfilled". It does not move.
class LiveDot final : public QLabel {
    Q_OBJECT

public:
    /// `live`: the slot is filled and showing. `compact`: a smaller word.
    LiveDot(bool live, bool compact);

    void setLive(bool live);
    [[nodiscard]] bool live() const { return m_live; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_live;
};

} // namespace brimlet
