#include "platform/linux/outsidewatch.h"

#include "platform/linux/windowmanager.h"
#include "platform/linux/xcbowners.h"

#include <utility>

#include <xcb/xinput.h>

namespace brimlet {
namespace {

/// X counts each notch of a wheel as a click.
bool isWheel(std::uint32_t button) {
    constexpr std::uint32_t kFirst = 4;
    constexpr std::uint32_t kLast = 7;
    return button >= kFirst && button <= kLast;
}

} // namespace

void OutsideWatch::setActive(bool isActive) {
    xcb_connection_t* const x = m_isActive == isActive ? nullptr : xcbConnectionOfQt();
    if (x == nullptr) {
        return;
    }
    m_isActive = isActive;
    m_isClick = false;
    if (isActive) {
        m_workArea = atomNamed(x, "_NET_WORKAREA");
        qGuiApp->installNativeEventFilter(this);
    } else {
        qGuiApp->removeNativeEventFilter(this);
    }
    const xcb_query_extension_reply_t* const input = xcb_get_extension_data(x, &xcb_input_id);
    if (input != nullptr && input->present != 0) {
        m_inputExtension = input->major_opcode;
        // Raw events arrive even while another program has the pointer, as bars and menus do.
        selectButtons(isActive ? XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                                     XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE
                               : 0);
    }
}

void OutsideWatch::selectButtons(std::uint32_t events) const {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t events;
    } const mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, events};
    xcb_connection_t* const x = xcbConnectionOfQt();
    xcb_input_xi_select_events(x, rootOf(x), 1, &mask.head);
    xcb_flush(x);
}

bool OutsideWatch::nativeEventFilter(const QByteArray& /*type*/, void* message,
                                     qintptr* /*result*/) {
    constexpr std::uint8_t kSentByClient = 0x80;
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    const int kind = event->response_type & ~kSentByClient;
    if (kind == XCB_PROPERTY_NOTIFY) {
        const auto* const property = static_cast<const xcb_property_notify_event_t*>(message);
        if (property->atom == m_workArea) {
            Q_EMIT workAreaChanged();
        }
        return false;
    }
    if (kind == XCB_KEY_PRESS || kind == XCB_BUTTON_PRESS) {
        m_isClick = false;
    } else if (kind == XCB_GE_GENERIC && m_inputExtension != 0 &&
               static_cast<const xcb_ge_generic_event_t*>(message)->extension == m_inputExtension) {
        handleInput(message);
    }
    return false;
}

void OutsideWatch::handleInput(const void* event) {
    const auto* const input = static_cast<const xcb_input_raw_button_press_event_t*>(event);
    switch (input->event_type) {
    case XCB_INPUT_RAW_BUTTON_PRESS:
        if (!isWheel(input->detail)) {
            m_isClick = x11::isPointerOnDesktopOrBar();
        }
        break;
    case XCB_INPUT_BUTTON_PRESS: // on a window of this program; comes after the raw event
        m_isClick = false;
        break;
    case XCB_INPUT_RAW_BUTTON_RELEASE:
        // Trays report a click on the status item at its end, too. A panel that closed earlier
        // would take a long one for a new click.
        if (!isWheel(input->detail) && std::exchange(m_isClick, false)) {
            Q_EMIT clicked();
        }
        break;
    default:
        break;
    }
}

} // namespace brimlet
