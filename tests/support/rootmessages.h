#pragma once

#include "platform/linux/xcbowners.h"

#include <QByteArray>
#include <QByteArrayList>

namespace brimlet {

/// The client messages that programs send to the root window, as window managers get them.
class RootMessages final {
public:
    RootMessages() {
        constexpr std::uint32_t kEvents =
            XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_x.get(), rootOf(m_x.get()), XCB_CW_EVENT_MASK, &kEvents);
        (void)atomNamed(m_x.get(), "A round trip, after which every message is received");
    }

    /// The 20 bytes of each message of one of these types since the previous call, oldest first.
    [[nodiscard]] QByteArrayList take(std::initializer_list<const char*> types) {
        QByteArrayList found;
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_x.get())}) {
            constexpr std::uint8_t kSentByClient = 0x80;
            if ((event->response_type & ~kSentByClient) != XCB_CLIENT_MESSAGE) {
                continue;
            }
            const auto* const message =
                reinterpret_cast<const xcb_client_message_event_t*>(event.get());
            for (const char* const type : types) {
                if (message->type == atomNamed(m_x.get(), type)) {
                    found << QByteArray(reinterpret_cast<const char*>(message->data.data8),
                                        sizeof message->data.data8);
                }
            }
        }
        return found;
    }

    /// The messages of the start-up notification protocol since the previous call, oldest first.
    [[nodiscard]] QByteArrayList takeStartupInfo() {
        for (const QByteArray& piece : take({"_NET_STARTUP_INFO_BEGIN", "_NET_STARTUP_INFO"})) {
            m_startupInfo += piece;
        }
        QByteArrayList messages;
        for (auto end = m_startupInfo.indexOf('\0'); end >= 0; end = m_startupInfo.indexOf('\0')) {
            if (end > 0) { // the rest of the piece before is null bytes, too
                messages << m_startupInfo.first(end);
            }
            m_startupInfo.remove(0, end + 1);
        }
        return messages;
    }

private:
    QByteArray m_startupInfo; ///< Not complete yet.
    XcbConnection m_x{xcb_connect(nullptr, nullptr)};
};

} // namespace brimlet
