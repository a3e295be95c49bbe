#pragma once

#include "platform/linux/desktopcover.h"
#include "platform/linux/outsidewatch.h"
#include "platform/linux/swaydesktop.h"
#include "platform/menuwindow.h"
#include "platform/observers.h"
#include "platform/onceperturn.h"
#include "platform/qt/panelbackground.h"
#include "platform/reducemotion.h"

#include <QRectF>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

#include <functional>
#include <memory>

namespace brimlet {

/// The menu-bar panel's window under X11. It is a window of its own and not a popup, because a
/// popup would swallow the click that closes it. Its background has the content's window colour.
/// While a compositor runs, its corners are round, it has a shadow, through which clicks pass, and
/// it fades in and out unless motion is reduced.
class X11MenuWindow final : public QWidget, public MenuWindow {
    Q_OBJECT

public:
    /// Takes ownership of the content and sizes it to its size hint. `primaryGeometry` returns the
    /// primary screen's current geometry in Qt's space. `reduceMotion` outlives this.
    X11MenuWindow(std::unique_ptr<QWidget> content, std::function<QRectF()> primaryGeometry,
                  const ReduceMotion& reduceMotion, RoundedPath roundedPath);

    void present(const std::optional<Rect>& item) override;
    void follow(const Rect& item) override;
    void dismiss() override;
    [[nodiscard]] bool isPresented() const override { return isVisible() && !m_isClosing; }
    ObserverToken observeDismissals(std::function<void()> dismissed) override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool isNext) override;

private:
    [[nodiscard]] QRect toQtRect(const Rect& item) const;
    /// Destroys the native window of a hidden panel to save its memory. It also keeps the focus
    /// state correct: Qt notices only after a delay that a hidden window has lost the keyboard, and
    /// a native window that is shown again before that gets no further activation events.
    void destroyNativeWindow();
    void followScreen(QScreen* screen);
    [[nodiscard]] bool isAnimated() const;
    /// Shows the opening from 0, invisible, to 1, its end; closing is the same backwards.
    void setOpening(double progress);
    /// Stops what runs while the panel is presented.
    void endPresentation();
    /// Lets clicks on the shadow pass, and every click while it closes.
    void applyInputShape();
    /// Resizes to the content's size hint and moves to the place beside the status item.
    void fit();
    void watchSway();
    /// Closes the panel at clicks that take the keyboard from no window, as on an empty desktop.
    void watchOutside();
    /// Requests the last frame again if the window has another one. The window manager's report of
    /// an earlier frame may arrive after a newer one was requested, and Qt then takes it for the
    /// present frame and drops a later request for the same. At most once for each frame, so that a
    /// window manager that insists on another one gets it.
    void restoreFrame();

    QWidget* m_content;
    std::function<QRectF()> m_primaryGeometry;
    const ReduceMotion& m_reduceMotion;
    RoundedPath m_roundedPath;
    std::optional<QRect> m_item; ///< In Qt's space.
    QRect m_frame;               ///< As last requested, in Qt's space, with the shadow.
    QRect m_panel;               ///< The panel's place in the window.
    int m_slide = 0;             ///< How far below its place the panel starts, in points.
    QVariantAnimation m_fade;    ///< Forward while it opens, backward while it closes.
    bool m_isClosing = false;
    bool m_isFrameRestored = false;
    OncePerTurn m_restoreFrame{[this] { restoreFrame(); }};
    bool m_hasCompositor = true;       ///< At the last opening.
    std::optional<SwayDesktop> m_sway; ///< Absent elsewhere.
    DesktopCover m_desktop;            ///< Shown while the panel is.
    OutsideWatch m_outside;            ///< Active while the panel is.
    QTimer m_dismissal; ///< Runs while another window has the keyboard; dismisses the panel.
    Observers m_dismissals;
};

} // namespace brimlet
