#include "platform/linux/x11tooltip.h"

#include "platform/linux/x11.h"
#include "platform/linux/x11watch.h"
#include "platform/qt/tooltiplabel.h"

#include <QEvent>
#include <QScreen>
#include <QWindow>

namespace brimlet {

X11ToolTip::X11ToolTip() = default;
X11ToolTip::~X11ToolTip() = default;

void X11ToolTip::showFor(QWidget& owner) {
    const QString text = owner.toolTip();
    if (m_label && m_owner == &owner && m_label->text() == text) {
        return; // asked for again after each move
    }
    hide();
    if (text.isEmpty()) {
        return;
    }
    m_owner = &owner;
    owner.installEventFilter(this);
    m_label = std::make_unique<ToolTipLabel>(text, X11Watch::shared().hasCompositor());
    const QRect box(owner.mapToGlobal(QPoint()), owner.size());
    m_label->move(ToolTipLabel::placeBelow(box, m_label->size(), owner.screen()->geometry()));
    m_label->show();
    x11::setInputShape(m_label->windowHandle()->winId(), {});
    constexpr int kShownFor = 10'000; // milliseconds, as Qt's own
    m_end.start(kShownFor, this);
}

void X11ToolTip::hide() {
    m_end.stop();
    m_label.reset();
    if (m_owner) {
        m_owner->removeEventFilter(this);
        m_owner.clear();
    }
}

bool X11ToolTip::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Leave:
    case QEvent::MouseButtonPress:
    case QEvent::Hide:
    case QEvent::ToolTipChange:
        hide();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void X11ToolTip::timerEvent(QTimerEvent* /*event*/) {
    hide();
}

} // namespace brimlet
