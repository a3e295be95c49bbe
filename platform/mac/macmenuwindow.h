#pragma once

#include "platform/mac/rules/menuground.h"
#include "platform/menuwindow.h"
#include "platform/observers.h"

#include <QScopeGuard>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace brimlet {

/// The menu-bar panel's window: a panel that takes the keyboard without making the program the
/// active one, so that the keyboard comes back to where it was by itself. Where something else made
/// the program active, such as a second start from the Finder, that is undone when the panel goes.
class MacMenuWindow final : public MenuWindow {
public:
    /// Takes the content, which is as large as its size hint says.
    explicit MacMenuWindow(std::unique_ptr<QWidget> content);
    ~MacMenuWindow() override;
    MacMenuWindow(const MacMenuWindow&) = delete;
    MacMenuWindow& operator=(const MacMenuWindow&) = delete;

    void present(const std::optional<Rect>& item) override;
    void dismiss() override;
    [[nodiscard]] bool isPresented() const override { return m_isPresented; }
    ObserverToken observeDismissals(std::function<void()> dismissed) override {
        return m_dismissals.add(std::move(dismissed));
    }

private:
    struct Native;

    /// Goes away if it is there.
    void close();
    /// Takes the content's size and goes where that fits.
    void fit();

    MenuGround m_ground;
    std::unique_ptr<Native> m_native;
    bool m_isPresented = false;
    Observers m_dismissals;
    QScopeGuard<std::function<void()>> m_keyboardLoss;
};

} // namespace brimlet
