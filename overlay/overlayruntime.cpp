#include "overlay/overlayruntime.h"

#include "host/hoststore.h"
#include "host/linkrule.h"

namespace brimlet {

void OverlayRuntime::apply(const HostStore& store, double notchWidth, double notchHeight) {
    publish(m_visible, store.adsVisible());
    publish(m_left, store.assignment().left);
    publish(m_right, store.assignment().right);
    publish(m_notchWidth, notchWidth);
    publish(m_notchHeight, notchHeight);
}

void OverlayRuntime::open(const std::optional<SlotCreative>& creative) {
    if (!m_visible || !creative || !creative->brandURL) {
        return;
    }
    if (canOpen(*creative->brandURL)) {
        m_workspace.open(*creative->brandURL);
    }
}

bool OverlayRuntime::canOpen(const Url& url) {
    return isAllowedLink(url);
}

} // namespace brimlet
