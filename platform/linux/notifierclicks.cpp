#include "platform/linux/notifierclicks.h"

#include <QDBusMessage>

#include <utility>

/// Of QtDBus, which exports it without declaring it: calls `hook` on the main thread with each
/// incoming call, before the call is carried out. Null where a version of Qt lacks it.
extern void qDBusAddSpyHook(void (*hook)(const QDBusMessage&)) __attribute__((weak));

namespace brimlet {
namespace {

std::optional<QPoint> lastClick;

void recordClick(const QDBusMessage& call) {
    const QVariantList arguments = call.arguments();
    const QString method = call.member();
    if (call.path() == QLatin1StringView("/StatusNotifierItem") && arguments.size() == 2 &&
        (method == QLatin1StringView("Activate") ||
         method == QLatin1StringView("SecondaryActivate") ||
         method == QLatin1StringView("ContextMenu"))) {
        lastClick = QPoint(arguments[0].toInt(), arguments[1].toInt());
    }
}

} // namespace

void recordNotifierClicks() {
    static bool isRecording = false;
    if (!std::exchange(isRecording, true) && qDBusAddSpyHook != nullptr) {
        qDBusAddSpyHook(recordClick);
    }
}

std::optional<QPoint> takeNotifierClick() {
    return std::exchange(lastClick, std::nullopt);
}

} // namespace brimlet
