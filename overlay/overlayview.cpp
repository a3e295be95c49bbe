#include "overlay/overlayview.h"

#include "overlay/notchpill.h"
#include "overlay/overlaylayout.h"
#include "overlay/pillaccessibility.h"

#include <array>
#include <utility>

namespace brimlet {
namespace {

QRectF toQt(const PillFrame& frame) {
    return {frame.x, frame.y, frame.width, frame.height};
}

} // namespace

OverlayView::OverlayView(OverlayRuntime& runtime, const CreativeEnvironment& environment)
    : m_runtime(runtime)
    , m_left(new NotchPill(environment, this))
    , m_right(new NotchPill(environment, this)) {
    describePillsToScreenReaders();
    connect(&runtime, &OverlayRuntime::objectWillChange, &m_rebuild, &OncePerTurn::schedule);
    for (NotchPill* const each : {m_left, m_right}) {
        connect(each, &NotchPill::clicked, this,
                [this, each] { m_runtime.open(each->creative()); });
        connect(each, &NotchPill::moved, this, [this, each] { reportStep(*each); });
        connect(each, &NotchPill::changed, this, [this, each](const QRect& box) {
            if (each->isVisible()) {
                Q_EMIT contentChanged(box);
            }
        });
    }
    rebuild();
}

void OverlayView::rebuild() {
    // The runtime announces every reply, although most are equal to the one before.
    Parts parts{.visible = m_runtime.visible(),
                .left = m_runtime.left(),
                .right = m_runtime.right(),
                .notchWidth = m_runtime.notchWidth()};
    if (m_parts == parts) {
        return;
    }
    m_parts = std::move(parts);
    pill(*m_left, m_runtime.left());
    pill(*m_right, m_runtime.right());
    placeRow();
    m_left->setVisible(m_runtime.visible() && m_runtime.left());
    m_right->setVisible(m_runtime.visible() && m_runtime.right());
    updateRegions(); // last, so that its signal comes when the pills can be clicked
}

/// Shows no creative, one that opens its brand's page, or one that is not clickable.
void OverlayView::pill(NotchPill& view, const std::optional<SlotCreative>& creative) {
    if (!creative) {
        view.setCreative(std::nullopt, false);
    } else if (creative->brandURL && OverlayRuntime::canOpen(*creative->brandURL)) {
        view.setCreative(creative, true);
    } else {
        view.setCreative(creative, false);
    }
}

void OverlayView::placeRow() {
    const OverlayLayout row =
        overlayLayout(width(), m_runtime.notchWidth(), m_runtime.left(), m_runtime.right());
    m_left->setFrame(toQt(row.left));
    m_right->setFrame(toQt(row.right));
}

void OverlayView::updateRegions() {
    QPainterPath clickable;
    QPainterPath painted;
    const auto add = [&](const NotchPill& pill, const std::optional<SlotCreative>& creative) {
        if (m_runtime.visible() && creative) {
            painted.addPath(pill.capsule());
            if (pill.isClickable()) {
                clickable.addPath(pill.capsule());
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

/// Advances the other text as well if it is due, so that one step serves both.
void OverlayView::reportStep(NotchPill& moved) {
    if (!moved.isVisible()) {
        return;
    }
    NotchPill& other = &moved == m_left ? *m_right : *m_left;
    const bool areBoth = other.catchUp();
    const std::array texts{moved.strip(), areBoth ? other.strip() : TextStrip()};
    Q_EMIT stepped(std::span(texts).first(areBoth ? 2 : 1));
}

void OverlayView::resizeEvent(QResizeEvent* /*event*/) {
    if (m_rebuild.isDue()) {
        m_parts.reset(); // the row is placed by newer state than m_parts
    }
    placeRow();
    updateRegions();
}

} // namespace brimlet
