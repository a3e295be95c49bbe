#pragma once

#include "platform/screens.h"

#include <QWidget>

#include <cstdint>

namespace brimlet {

/// The notch itself, painted where the described machine has one, so that a picture of the desktop
/// looks like the machine. Lets clicks through.
class NotchWindow final : public QWidget {
    Q_OBJECT

public:
    NotchWindow();

    /// Where the notch is, in global points; absent hides the window. `primary` is the primary
    /// display in Qt's space.
    void place(const std::optional<Rect>& notch, const QRectF& primary);
    /// No window stands above a real notch.
    void bringForward();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::uint64_t m_arrangement = 0; ///< Of the windows, when this one was raised.
};

/// The gap between the strips of the built-in screen, down to their lower edge.
[[nodiscard]] std::optional<Rect> notchOf(const std::optional<Screen>& builtIn);

} // namespace brimlet
