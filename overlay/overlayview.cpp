#include "overlay/overlayview.h"

#include "overlay/notchpill.h"
#include "overlay/overlaylayout.h"

namespace brimlet {
namespace {

QRect pixels(const PillFrame& frame) {
    return {qRound(frame.x), qRound(frame.y), qRound(frame.width), qRound(frame.height)};
}

bool isClickable(const std::optional<SlotCreative>& creative) {
    return creative && creative->brandURL && OverlayRuntime::canOpen(*creative->brandURL);
}

} // namespace

OverlayView::OverlayView(OverlayRuntime& runtime)
    : m_runtime(runtime)
    , m_left(new NotchPill(this))
    , m_right(new NotchPill(this)) {
    connect(&runtime, &OverlayRuntime::objectWillChange, this, &OverlayView::runtimeWillChange);
    connect(m_left, &NotchPill::clicked, this, [this] { m_runtime.open(m_runtime.left()); });
    connect(m_right, &NotchPill::clicked, this, [this] { m_runtime.open(m_runtime.right()); });
    rebuild();
}

void OverlayView::runtimeWillChange() {
    if (m_isRebuildDue) {
        return;
    }
    m_isRebuildDue = true;
    QMetaObject::invokeMethod(this, &OverlayView::rebuild, Qt::QueuedConnection);
}

void OverlayView::rebuild() {
    m_isRebuildDue = false;
    m_left->setCreative(m_runtime.left(), isClickable(m_runtime.left()));
    m_right->setCreative(m_runtime.right(), isClickable(m_runtime.right()));
    m_left->setVisible(m_runtime.visible());
    m_right->setVisible(m_runtime.visible());
    placeRow();
}

void OverlayView::placeRow() {
    const OverlayLayout row =
        overlayLayout(width(), m_runtime.notchWidth(), m_runtime.left(), m_runtime.right());
    m_left->setGeometry(pixels(row.left));
    m_right->setGeometry(pixels(row.right));
    updateRegions();
}

void OverlayView::updateRegions() {
    QRegion clickable;
    QRegion painted;
    const auto add = [&](const NotchPill& pill, const std::optional<SlotCreative>& creative) {
        if (m_runtime.visible() && creative) {
            painted += pill.capsule();
            if (pill.isClickable()) {
                clickable += pill.capsule();
            }
        }
    };
    add(*m_left, m_runtime.left());
    add(*m_right, m_runtime.right());
    if (clickable != m_clickable || painted != m_painted) {
        m_clickable = clickable;
        m_painted = painted;
        Q_EMIT regionsChanged();
    }
}

void OverlayView::resizeEvent(QResizeEvent* /*event*/) {
    placeRow();
}

} // namespace brimlet
