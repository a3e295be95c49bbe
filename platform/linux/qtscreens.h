#pragma once

#include "platform/linux/linuxscreens.h"

#include <QObject>
#include <QString>

#include <vector>

class QScreen;

namespace brimlet {

/// Qt's screens, the primary one first.
class QtScreens final : public QObject, public LinuxScreens {
    Q_OBJECT

public:
    /// Needs the application object. `root` is as for `LinuxScreens`.
    explicit QtScreens(const QString& root = QStringLiteral("/"));

private:
    [[nodiscard]] static std::vector<DesktopOutput> outputs();
    void watch(QScreen* screen);
};

} // namespace brimlet
