#pragma once

#include "tests/support/wayland/connection.h"

#include <QPointF>

struct org_kde_kwin_fake_input;
struct zwlr_virtual_pointer_v1;
struct zwp_virtual_keyboard_v1;

namespace brimlet::desktop {

/// The pointer, the keyboard and the touch screen of a private Wayland desktop in sway or KWin.
/// They are there as long as this object. Each call returns when the compositor has handled it.
/// Positions are in points, from the top left of the first output.
class Seat final {
public:
    Seat();

    enum class Button { Left, Right };
    enum class Key { Escape, Return };

    void moveTo(QPointF position);
    void press(Button which = Button::Left);
    void release(Button which = Button::Left);
    /// Moves there, presses and releases the left button.
    void click(QPointF position);
    /// Types small letters, digits and hyphens into the window with the keyboard focus.
    void type(const char* text);
    void strike(Key which);
    /// Whether there is a touch screen; sway has none.
    [[nodiscard]] bool hasTouch() const { return m_fake != nullptr; }
    void tap(QPointF position);

private:
    void button(Button which, bool isPressed);
    void key(std::uint32_t code, bool isPressed);

    Connection m_connection;
    // Either KWin's device or two of sway's.
    org_kde_kwin_fake_input* m_fake = nullptr;
    zwlr_virtual_pointer_v1* m_pointer = nullptr;
    zwp_virtual_keyboard_v1* m_keyboard = nullptr;
    QPointF m_position; ///< Of sway's pointer, which takes motions only.
};

} // namespace brimlet::desktop
