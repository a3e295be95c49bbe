#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>

namespace brimlet {

/// While it is active, watches what happens on the X screen, also outside this program's windows:
/// clicks, which still reach the window that they are for, and changes of the work area. On Qt's
/// connection; on other Qt platforms it does nothing. Main thread only.
class OutsideWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    OutsideWatch() = default;
    ~OutsideWatch() override { setActive(false); }
    Q_DISABLE_COPY_MOVE(OutsideWatch)

    /// Costs a round trip, and a wake-up for each click while it is active.
    void setActive(bool isActive);

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

Q_SIGNALS:
    /// The desktop or a bar was clicked. Emitted at the end of the click. Other programs' windows
    /// either take the keyboard at a click, which is seen without this, or are part of the input,
    /// as on-screen keyboards and the lists of input methods are. One of these may look like a bar,
    /// but presses a key meanwhile. The wheel counts as no button. XWayland knows of clicks on X
    /// windows alone.
    void clicked();
    void workAreaChanged();

private:
    void selectButtons(std::uint32_t events) const;
    void handleInput(const void* event);

    bool m_isActive = false;
    bool m_isClick = false; ///< Since the last press, nothing has shown that it is not one outside.
    std::uint8_t m_inputExtension = 0; ///< Its opcode; 0 without XInput 2.
    std::uint32_t m_workArea = 0;      ///< The property's name.
};

} // namespace brimlet
