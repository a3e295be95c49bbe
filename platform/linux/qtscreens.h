#pragma once

#include "platform/linux/appledisplay.h"
#include "platform/observers.h"
#include "platform/screens.h"

#include <QObject>
#include <QRectF>
#include <QString>

#include <optional>

class QScreen;

namespace brimlet {

/// Whether a connector of that name drives a laptop's own panel.
[[nodiscard]] bool isInternalConnector(const QString& name);

/// The screens Qt sees, the primary one first. A screen's number is its place in that list,
/// counted from 1. Only the panel of an Apple laptop that shows its band has strips beside a notch.
class QtScreens final : public QObject, public Screens {
    Q_OBJECT

public:
    /// Needs the application object. `root` is the folder that holds the kernel's "proc" and "sys";
    /// after the construction nothing is read there unless the machine has a notch.
    explicit QtScreens(QString root = QStringLiteral("/"));

    [[nodiscard]] std::vector<Screen> list() const override;
    [[nodiscard]] bool isBuiltIn(std::uint32_t displayNumber) const override;
    ObserverToken observeChanges(std::function<void()> changed) override;

    /// The primary screen in Qt's space; empty while there is none.
    [[nodiscard]] static QRectF primaryGeometry();

private:
    void watch(QScreen* screen);
    void announce();

    QString m_root;
    std::optional<NotchedPanel> m_panel;
    Observers m_observers;
    bool m_isAnnounceDue = false;
};

} // namespace brimlet
