#include "tests/support/wayland/seat.h"

#include "client-fake-input.h"
#include "client-virtual-keyboard.h"
#include "client-virtual-pointer.h"

#include <chrono>
#include <string_view>

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

namespace brimlet::desktop {
namespace {

constexpr std::string_view kKeymap = R"map(xkb_keymap {
  xkb_keycodes { include "evdev+aliases(qwerty)" };
  xkb_types { include "complete" };
  xkb_compat { include "complete" };
  xkb_symbols { include "pc+us+inet(evdev)" };
};)map";

std::uint32_t milliseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

std::uint32_t keyCode(char character) {
    struct Row final {
        std::string_view characters;
        std::uint32_t first;
    };
    for (const Row& row : {Row{"1234567890", KEY_1}, Row{"qwertyuiop", KEY_Q},
                           Row{"asdfghjkl", KEY_A}, Row{"zxcvbnm", KEY_Z}, Row{"-", KEY_MINUS}}) {
        if (const auto at = row.characters.find(character); at != std::string_view::npos) {
            return row.first + static_cast<std::uint32_t>(at);
        }
    }
    qFatal("the test keyboard has no key for %c", character);
}

void setKeymap(zwp_virtual_keyboard_v1* keyboard) {
    const int file = ::memfd_create("keymap", MFD_CLOEXEC);
    const std::size_t size = kKeymap.size() + 1; // with the zero at its end
    if (file < 0 || ::write(file, kKeymap.data(), size) != static_cast<ssize_t>(size)) {
        qFatal("cannot write the test keyboard's map");
    }
    zwp_virtual_keyboard_v1_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                   static_cast<std::uint32_t>(size));
    ::close(file);
}

} // namespace

Seat::Seat() {
    m_fake = m_connection.bind<org_kde_kwin_fake_input>(org_kde_kwin_fake_input_interface, 4);
    if (m_fake != nullptr) {
        org_kde_kwin_fake_input_authenticate(m_fake, "test", "input");
        m_connection.roundtrip();
        return;
    }
    auto* const seat = m_connection.bind<wl_seat>(wl_seat_interface, 1);
    auto* const pointers = m_connection.bind<zwlr_virtual_pointer_manager_v1>(
        zwlr_virtual_pointer_manager_v1_interface, 1);
    auto* const keyboards = m_connection.bind<zwp_virtual_keyboard_manager_v1>(
        zwp_virtual_keyboard_manager_v1_interface, 1);
    if (seat == nullptr || pointers == nullptr || keyboards == nullptr) {
        qFatal("the compositor takes no input from tests");
    }
    m_pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers, seat);
    m_keyboard = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards, seat);
    setKeymap(m_keyboard);
    // To a place that is known: a corner.
    m_position = {1e5, 1e5};
    moveTo({0, 0});
}

void Seat::moveTo(QPointF position) {
    if (m_fake != nullptr) {
        org_kde_kwin_fake_input_pointer_motion_absolute(m_fake, wl_fixed_from_double(position.x()),
                                                        wl_fixed_from_double(position.y()));
    } else {
        const QPointF by = position - m_position;
        zwlr_virtual_pointer_v1_motion(m_pointer, milliseconds(), wl_fixed_from_double(by.x()),
                                       wl_fixed_from_double(by.y()));
        zwlr_virtual_pointer_v1_frame(m_pointer);
        m_position = position;
    }
    m_connection.roundtrip();
}

void Seat::press(Button which) {
    button(which, true);
}

void Seat::release(Button which) {
    button(which, false);
}

void Seat::click(QPointF position) {
    moveTo(position);
    press();
    release();
}

void Seat::button(Button which, bool isPressed) {
    const std::uint32_t code = which == Button::Left ? BTN_LEFT : BTN_RIGHT;
    if (m_fake != nullptr) {
        org_kde_kwin_fake_input_button(m_fake, code, isPressed ? 1 : 0);
    } else {
        zwlr_virtual_pointer_v1_button(m_pointer, milliseconds(), code, isPressed ? 1 : 0);
        zwlr_virtual_pointer_v1_frame(m_pointer);
    }
    m_connection.roundtrip();
}

void Seat::type(const char* text) {
    for (const char character : std::string_view(text)) {
        const std::uint32_t code = keyCode(character);
        key(code, true);
        key(code, false);
    }
}

void Seat::strike(Key which) {
    const std::uint32_t code = which == Key::Escape ? KEY_ESC : KEY_ENTER;
    key(code, true);
    key(code, false);
}

void Seat::key(std::uint32_t code, bool isPressed) {
    if (m_fake != nullptr) {
        org_kde_kwin_fake_input_keyboard_key(m_fake, code, isPressed ? 1 : 0);
    } else {
        zwp_virtual_keyboard_v1_key(m_keyboard, milliseconds(), code, isPressed ? 1 : 0);
    }
    m_connection.roundtrip();
}

void Seat::tap(QPointF position) {
    org_kde_kwin_fake_input_touch_down(m_fake, 1, wl_fixed_from_double(position.x()),
                                       wl_fixed_from_double(position.y()));
    org_kde_kwin_fake_input_touch_frame(m_fake);
    m_connection.roundtrip();
    org_kde_kwin_fake_input_touch_up(m_fake, 1);
    org_kde_kwin_fake_input_touch_frame(m_fake);
    m_connection.roundtrip();
}

} // namespace brimlet::desktop
