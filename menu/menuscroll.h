#pragma once

#include <QScrollArea>

namespace brimlet {

/// The menu for a window that may have less height than it needs, on a small screen: then it
/// scrolls, and the control with the keyboard is always in sight. Its size hint is the menu's own
/// size.
class MenuScroll final : public QScrollArea {
    Q_OBJECT

public:
    /// Takes the menu, whose palette becomes its own.
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
