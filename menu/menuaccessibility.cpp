#include "menu/menuaccessibility.h"

#include "menu/agreementtext.h"
#include "menu/hostmenuview.h"

#include <QAccessibleWidget>

namespace brimlet {
namespace {

QAccessibleInterface* describe(const QString& /*className*/, QObject* object) {
    if (auto* const agreement = qobject_cast<AgreementText*>(object)) {
        return new QAccessibleWidget(agreement, QAccessible::Document);
    }
    if (auto* const menu = qobject_cast<HostMenuView*>(object)) {
        return new QAccessibleWidget(menu, QAccessible::Grouping);
    }
    return nullptr;
}

} // namespace

void describeMenuToScreenReaders() {
    static const bool isInstalled = (QAccessible::installFactory(describe), true);
    Q_UNUSED(isInstalled)
}

} // namespace brimlet
