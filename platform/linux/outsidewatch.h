#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>

namespace brimlet {

/// While it is active, watches what happens outside this program's windows on the X screen: clicks,
/// without taking them from whom they are for, and changes of the work area. On Qt's connection;
/// on other Qt platforms it does nothing. Main thread only.
class OutsideWatch final : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    OutsideWatch() = default;
    ~OutsideWatch() override { setActive(false); }
    Q_DISABLE_COPY_MOVE(OutsideWatch)

    void setActive(bool isActive);

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

Q_SIGNALS:
    /// A button other than the wheel's was pressed or released, on any window or none. XWayland
    /// knows of those on X windows alone.
    void pressed();
    void released();
    void workAreaChanged();

private:
    void selectButtons(std::uint32_t events) const;

    bool m_isActive = false;
    std::uint8_t m_inputExtension = 0; ///< Its opcode; 0 without XInput 2.
    std::uint32_t m_workArea = 0;      ///< The property's name.
};

} // namespace brimlet
