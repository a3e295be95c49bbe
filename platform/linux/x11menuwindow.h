#pragma once

#include "platform/menuwindow.h"
#include "platform/observers.h"

#include <QRectF>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace brimlet {

/// The menu-bar panel's window on an X server: a tool window of its own, not a popup, which would
/// swallow the click that closes it. Its ground is the content's; where a compositor runs its
/// corners are round.
class X11MenuWindow final : public QWidget, public MenuWindow {
    Q_OBJECT

public:
    /// Takes the content as its child, which is as large as its size hint says. `primaryGeometry`
    /// gives the primary screen in Qt's space at the time of asking.
    X11MenuWindow(std::unique_ptr<QWidget> content, std::function<QRectF()> primaryGeometry);

    void present(const std::optional<Rect>& item) override;
    void dismiss() override;
    [[nodiscard]] bool isPresented() const override { return isVisible(); }
    ObserverToken observeDismissals(std::function<void()> dismissed) override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// Nothing is kept for a window that is not shown. Besides, Qt notes only a moment later that a
    /// hidden window has lost the keyboard; shown again by then, it would never be told that it has
    /// it, nor that it loses it.
    void forgetNativeWindow();
    /// Takes the content's size and goes where that fits.
    void fit();

    QWidget* m_content;
    std::function<QRectF()> m_primaryGeometry;
    std::optional<QRect> m_item; ///< In Qt's space.
    bool m_isRound = true;
    QTimer m_dismissal; ///< Runs while another window has the keyboard.
    Observers m_dismissals;
};

} // namespace brimlet
