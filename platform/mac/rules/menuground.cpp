#include "platform/mac/rules/menuground.h"

#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"
#include "platform/qt/menuplacement.h"

#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace brimlet {

MenuGround::MenuGround(std::unique_ptr<QWidget> content, std::function<void()> cancelled,
                       std::function<void()> changed, std::function<void()> reshaped)
    : QWidget(nullptr, Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , m_content(content.release())
    , m_cancelled(std::move(cancelled))
    , m_changed(std::move(changed))
    , m_reshaped(std::move(reshaped)) {
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Brimlet panel"));
    m_content->setParent(this);
}

void MenuGround::appear(const std::optional<Rect>& item) {
    m_item = item ? std::optional(toQt(*item, primaryGeometry()).toRect()) : std::nullopt;
    m_content->setFocus();
    show();
}

std::optional<Rect> MenuGround::fit() {
    const auto place = menuFrame(sizeHint(), m_item, menuScreens());
    if (!place) {
        return std::nullopt;
    }
    setGeometry(QRect(QPoint(), place->size()));
    return fromQt(QRectF(*place), primaryGeometry());
}

bool MenuGround::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        m_changed();
    }
    return QWidget::event(event);
}

void MenuGround::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        m_cancelled();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void MenuGround::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_content->palette().window());
    constexpr double kCorner = 12;
    painter.drawRoundedRect(QRectF(rect()), kCorner, kCorner);
    if (std::exchange(m_isReshaped, false)) {
        QMetaObject::invokeMethod(this, m_reshaped, Qt::QueuedConnection); // once it can be seen
    }
}

void MenuGround::resizeEvent(QResizeEvent* /*event*/) {
    m_content->setGeometry(rect());
    m_isReshaped = true;
}

} // namespace brimlet
