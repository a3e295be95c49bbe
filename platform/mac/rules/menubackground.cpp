#include "platform/mac/rules/menubackground.h"

#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"
#include "platform/qt/menuplacement.h"

#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace brimlet {

MenuBackground::MenuBackground(std::unique_ptr<QWidget> content, RoundedPath roundedPath,
                               std::function<void()> cancelled, std::function<void()> changed,
                               std::function<void()> reshaped)
    : QWidget(nullptr, Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , m_content(content.release())
    , m_roundedPath(roundedPath)
    , m_cancelled(std::move(cancelled))
    , m_changed(std::move(changed))
    , m_reshaped(std::move(reshaped)) {
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Brimlet panel"));
    m_content->setParent(this);
}

void MenuBackground::setItem(const std::optional<Rect>& item) {
    m_item = item ? std::optional(toQt(*item, primaryGeometry()).toRect()) : std::nullopt;
}

void MenuBackground::appear(const std::optional<Rect>& item) {
    setItem(item);
    m_content->setFocus();
    show();
}

std::optional<Rect> MenuBackground::fit() {
    const auto place = menuFrame(sizeHint(), m_item, menuScreens());
    if (!place) {
        return std::nullopt;
    }
    setGeometry(QRect(QPoint(), place->size()));
    return fromQt(QRectF(*place), primaryGeometry());
}

bool MenuBackground::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        m_changed();
    }
    return QWidget::event(event);
}

void MenuBackground::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        m_cancelled();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void MenuBackground::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintPanel(painter, QRectF(rect()), m_content->palette(), kPanelCorner, m_roundedPath);
    if (std::exchange(m_isReshaped, false)) {
        QMetaObject::invokeMethod(this, m_reshaped, Qt::QueuedConnection); // after this paint
    }
}

void MenuBackground::resizeEvent(QResizeEvent* /*event*/) {
    m_content->setGeometry(rect());
    m_isReshaped = true;
}

} // namespace brimlet
