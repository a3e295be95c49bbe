#include "platform/mac/rules/macoverlaywindow.h"

#include "platform/mac/rules/capsuleboxes.h"
#include "platform/qt/contentpainting.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/outlineregion.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace brimlet {
namespace {

/// With the flags that its native view has to be created with.
std::unique_ptr<QWidget> prepared(std::unique_ptr<QWidget> content) {
    content->setWindowFlags(Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint |
                            Qt::WindowDoesNotAcceptFocus);
    content->setAttribute(Qt::WA_TranslucentBackground);
    return content;
}

} // namespace

MacOverlayWindow::MacOverlayWindow(const MacPanels& panels, std::unique_ptr<QWidget> content,
                                   std::function<QString(QPoint)> toolTipAt)
    : m_panels(panels)
    , m_content(prepared(std::move(content)))
    , m_mouse(
          *m_content, [&panels](bool isHand) { panels.showHand(isHand); }, std::move(toolTipAt))
    , m_painting(panels.paintingPanel(*m_content)) {}

void MacOverlayWindow::orderFrontRegardless() {
    // Never QWidget::raise(), which activates the program.
    m_content->show();
    m_painting->orderFrontRegardless();
    m_isShown = true;
    updateClickPanels();
}

void MacOverlayWindow::orderOut() {
    m_isShown = false;
    updateClickPanels();
    m_painting->orderOut();
    m_content->hide();
}

void MacOverlayWindow::setFrame(const Rect& frame) {
    // Like the content, whose centre has to be the panel's.
    const Rect whole = inWholePoints(frame);
    if (std::exchange(m_frame, whole) == whole) {
        return;
    }
    m_painting->setFrame(whole);
    m_content->setGeometry(0, 0, static_cast<int>(whole.width), static_cast<int>(whole.height));
    m_mouse.setFrame(whole);
    updateClickPanels();
}

void MacOverlayWindow::setIgnoresMouseEvents(bool ignores) {
    if (std::exchange(m_ignoresMouse, ignores) != ignores) {
        updateClickPanels();
    }
}

void MacOverlayWindow::setRegions(const QPainterPath& clickable, const QPainterPath& /*painted*/) {
    m_mouse.setBoxes(capsuleBoxes(pixelsInside(clickable, 1)));
    updateClickPanels();
}

void MacOverlayWindow::updateContent(const QRegion& points) {
    updatePoints(*m_content, points);
}

void MacOverlayWindow::showTexts(std::span<const TextStrip> texts) {
    paintTexts(*m_content, texts);
}

std::vector<PanelFacts> MacOverlayWindow::clickFacts() const {
    std::vector<PanelFacts> facts;
    for (const auto& panel : m_clickPanels) {
        facts.push_back(panel->facts());
    }
    return facts;
}

bool MacOverlayWindow::takesClickAt(QPointF where) const {
    return m_painting->takesClickAt(where) ||
           std::any_of(m_clickPanels.begin(), m_clickPanels.end(),
                       [where](const auto& panel) { return panel->takesClickAt(where); });
}

void MacOverlayWindow::updateClickPanels() {
    const bool takesMouse = m_isShown && !m_ignoresMouse;
    const std::vector<Rect> frames = m_mouse.boxFrames();
    while (m_clickPanels.size() < frames.size()) {
        m_clickPanels.push_back(m_panels.clickPanel(m_mouse));
    }
    for (std::size_t i = 0; i < m_clickPanels.size(); ++i) {
        if (takesMouse && i < frames.size()) {
            m_clickPanels[i]->setFrame(frames[i]);
            m_clickPanels[i]->orderFrontRegardless();
        } else {
            m_clickPanels[i]->orderOut();
        }
    }
    // AppKit may report no pointer that rests where a panel appears or disappears. Another window
    // may lie over the panel.
    const QPointF pointer = m_panels.pointerPosition();
    m_mouse.pointerAt(takesClickAt(pointer) ? std::optional(pointer) : std::nullopt);
}

} // namespace brimlet
