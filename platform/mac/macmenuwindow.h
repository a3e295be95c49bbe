#pragma once

#include "platform/mac/rules/menubackground.h"
#include "platform/menuwindow.h"
#include "platform/observers.h"
#include "platform/reducemotion.h"

#include <QScopeGuard>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace brimlet {

/// The menu-bar panel's window: an NSPanel that takes the keyboard without activating the program,
/// so that closing it returns the keyboard to the active program. If the program has become active
/// for another reason, such as a second start from the Finder, `dismiss` activates the previous
/// program.
class MacMenuWindow final : public MenuWindow {
public:
    /// Takes ownership of the content and sizes it to its size hint. `reduceMotion` outlives this.
    MacMenuWindow(std::unique_ptr<QWidget> content, const ReduceMotion& reduceMotion,
                  RoundedPath roundedPath);
    ~MacMenuWindow() override;
    MacMenuWindow(const MacMenuWindow&) = delete;
    MacMenuWindow& operator=(const MacMenuWindow&) = delete;

    void present(const std::optional<Rect>& item) override;
    void follow(const Rect& item) override;
    void dismiss() override;
    [[nodiscard]] bool isPresented() const override { return m_isPresented; }
    ObserverToken observeDismissals(std::function<void()> dismissed) override {
        return m_dismissals.add(std::move(dismissed));
    }

private:
    struct Native;

    /// Hides the panel and notifies the observers; does nothing when it is hidden.
    void close();
    /// Resizes to the content's size hint and moves to the place beside the status item.
    void fit();

    MenuBackground m_background;
    const ReduceMotion& m_reduceMotion;
    std::unique_ptr<Native> m_native;
    bool m_isPresented = false;
    Observers m_dismissals;
    QScopeGuard<std::function<void()>> m_keyboardLoss;
};

} // namespace brimlet
