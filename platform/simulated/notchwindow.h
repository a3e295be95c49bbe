#pragma once

#include "platform/screens.h"

#include <QRect>
#include <QWidget>

#include <optional>

namespace brimlet {

/// A window that paints the described machine's notch, for screenshots. Clicks go through it.
class NotchWindow final : public QWidget {
    Q_OBJECT

public:
    NotchWindow();

    /// Shows the window at the notch's place in Qt's space, or hides it when that is absent.
    /// Whether that is above other windows, differs between systems.
    void place(const std::optional<QRect>& notch);

Q_SIGNALS:
    /// After the window was shown at a place.
    void placed();

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// The notch, in global points: the gap between the auxiliary areas of the built-in screen, down to
/// the lower edge of the taller one. Absent without a screen or a gap.
[[nodiscard]] std::optional<Rect> notchOf(const std::optional<Screen>& builtIn);

} // namespace brimlet
