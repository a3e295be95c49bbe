#pragma once

#include <QColor>

namespace brimlet {

/// The menu's dark colours, independent of the desktop's palette. Each is made on first use.
class HostTheme final {
public:
    /// The background of the panel.
    [[nodiscard]] static const QColor& bg();
    /// The fill of cards, of the token field and of ghost buttons.
    [[nodiscard]] static const QColor& card();
    /// Hairlines and outlines.
    [[nodiscard]] static const QColor& line();
    /// Secondary text.
    [[nodiscard]] static const QColor& dim();
    /// Tertiary text and the idle dot.
    [[nodiscard]] static const QColor& faint();
    /// The fill of primary buttons.
    [[nodiscard]] static const QColor& accent();
    /// The dot and the word "Live".
    [[nodiscard]] static const QColor& live();

    HostTheme() = delete;
};

} // namespace brimlet
