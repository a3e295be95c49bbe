#pragma once

#include <QRegion>

#include <span>

class QWidget;

namespace brimlet {

struct TextStrip;

/// Paints these points of the content and its children again, soon. Qt's own `update()` of a widget
/// leaves out its opaque children.
void updatePoints(QWidget& content, const QRegion& points);

/// The window's points that the texts are in, at least in part.
[[nodiscard]] QRegion pointsOf(std::span<const TextStrip> texts, double devicePixelRatio);

/// Shows texts of the content, which is a window or in one. At whole scales it paints them directly
/// into the window's backing store: with `QWidget::repaint()` a step of a scrolling text takes a
/// third more instructions, 22 times a second. Nothing happens while the window is hidden or the
/// store does not have its size yet: the next paint event paints all of it. At other scales Qt
/// clears more pixels than the texts have, so all that is in their points is painted again, soon.
void paintTexts(QWidget& content, std::span<const TextStrip> texts);

} // namespace brimlet
