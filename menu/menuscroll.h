#pragma once

#include <QScrollArea>

namespace brimlet {

/// Scrolls the menu in a window that is lower than the menu, on a small screen, and keeps the
/// focused control visible. Its size hint is the menu's size.
class MenuScroll final : public QScrollArea {
    Q_OBJECT

public:
    /// Takes ownership of the menu and uses its palette.
    explicit MenuScroll(QWidget* menu);
    ~MenuScroll() override;
    Q_DISABLE_COPY_MOVE(MenuScroll)

    [[nodiscard]] QSize sizeHint() const override { return widget()->size(); }

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void follow(QWidget* focused);
};

} // namespace brimlet
