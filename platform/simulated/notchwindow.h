#pragma once

#include "platform/screens.h"

#include <QWidget>

#include <cstdint>

namespace brimlet {

/// A window that paints the described machine's notch, for screenshots. Clicks go through it.
class NotchWindow final : public QWidget {
    Q_OBJECT

public:
    NotchWindow();

    /// Shows the window at the notch's place in global points, or hides it when that is absent.
    /// `primary` is the primary display's geometry in Qt's space.
    void place(const std::optional<Rect>& notch, const QRectF& primary);
    /// Raises the window above windows that were shown or raised since the last call, because
    /// nothing covers a real notch.
    void bringForward();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::uint64_t m_stackingSerial = 0; ///< X11Watch's value when this window was last raised.
};

/// The notch, in global points: the gap between the auxiliary areas of the built-in screen, down to
/// the lower edge of the taller one. Absent without a screen or a gap.
[[nodiscard]] std::optional<Rect> notchOf(const std::optional<Screen>& builtIn);

} // namespace brimlet
