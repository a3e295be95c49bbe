#pragma once

#include "platform/observers.h"
#include "platform/screens.h"

#include <QObject>
#include <QRectF>

class QScreen;

namespace brimlet {

/// Whether a connector of that name drives a laptop's own panel.
[[nodiscard]] bool isInternalConnector(const QString& name);

/// The screens Qt sees, the primary one first. A screen's number is its place in that list,
/// counted from 1. No screen has strips beside a notch here.
class QtScreens final : public QObject, public Screens {
    Q_OBJECT

public:
    /// Needs the application object.
    QtScreens();

    [[nodiscard]] std::vector<Screen> list() const override;
    [[nodiscard]] bool isBuiltIn(std::uint32_t displayNumber) const override;
    ObserverToken observeChanges(std::function<void()> changed) override;

    /// The primary screen in Qt's space; empty while there is none.
    [[nodiscard]] static QRectF primaryGeometry();

private:
    void watch(QScreen* screen);
    void announce();

    Observers m_observers;
    bool m_isAnnounceDue = false;
};

} // namespace brimlet
