#include "menu/menuscroll.h"

#include "menu/slimscrollbar.h"

#include <QEvent>

namespace brimlet {

MenuScroll::MenuScroll(QWidget* menu) {
    setPalette(menu->palette());
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new SlimScrollBar);
    viewport()->setAutoFillBackground(false);
    setWidget(menu);
    menu->setAutoFillBackground(false);
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

bool MenuScroll::focusNextPrevChild(bool next) {
    const bool isMoved = QScrollArea::focusNextPrevChild(next);
    if (QWidget* const focused = focusWidget()) {
        constexpr int kMargin = 16;
        ensureWidgetVisible(focused, 0, kMargin);
    }
    return isMoved;
}

} // namespace brimlet
