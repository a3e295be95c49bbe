#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

namespace brimlet {

class ToolTipLabel;

/// Shows a widget's tooltip below it, where Qt's own is beside the pointer and may cover it. It
/// goes when the pointer leaves the widget or presses a button, when the widget hides or gets
/// another tooltip, and after ten seconds. Main thread only.
class X11ToolTip final : public QObject {
    Q_OBJECT

public:
    X11ToolTip();
    ~X11ToolTip() override;
    Q_DISABLE_COPY_MOVE(X11ToolTip)

    /// Does nothing for a widget without a tooltip.
    void showFor(QWidget& owner);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void hide();

    std::unique_ptr<ToolTipLabel> m_label; ///< Absent while none is shown.
    QPointer<QWidget> m_owner;
    QBasicTimer m_end;
};

} // namespace brimlet
