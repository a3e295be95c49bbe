#include "menu/menuscroll.h"

#include "menu/slimscrollbar.h"

#include <QApplication>
#include <QEvent>
#include <QScrollBar>

namespace brimlet {

MenuScroll::MenuScroll(QWidget* menu) {
    setPalette(menu->palette());
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::ClickFocus);
    horizontalScrollBar()->setEnabled(false); // the vertical bar covers only the right margin
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    constexpr int kFreeEnds = 20; // the window's corners are round
    setVerticalScrollBar(new SlimScrollBar(kFreeEnds));
    viewport()->setAutoFillBackground(false);
    setWidget(menu);
    menu->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget* /*before*/, QWidget* now) { follow(now); });
}

MenuScroll::~MenuScroll() {
    // The focused control is destroyed later, and emits focusChanged then.
    disconnect(qApp, nullptr, this, nullptr);
}

void MenuScroll::showEvent(QShowEvent* event) {
    QScrollArea::showEvent(event);
    verticalScrollBar()->setValue(0);
}

bool MenuScroll::eventFilter(QObject* object, QEvent* event) {
    if (object == widget() && event->type() == QEvent::Resize) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(object, event);
}

void MenuScroll::follow(QWidget* focused) {
    if (focused != nullptr && widget()->isAncestorOf(focused)) {
        constexpr int kMargin = 16;
        ensureWidgetVisible(focused, 0, kMargin);
    }
}

} // namespace brimlet
