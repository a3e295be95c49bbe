#include "overlay/pillaccessibility.h"

#include "overlay/notchpill.h"
#include "overlay/overlayview.h"

#include <QAccessibleWidget>

namespace brimlet {
namespace {

class AccessiblePill final : public QAccessibleWidget {
public:
    explicit AccessiblePill(NotchPill* pill)
        : QAccessibleWidget(pill)
        , m_pill(*pill) {}

    [[nodiscard]] QAccessible::Role role() const override {
        return m_pill.isClickable() ? QAccessible::Link : QAccessible::StaticText;
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        switch (kind) {
        case QAccessible::Name:
            return m_pill.spokenText();
        case QAccessible::Description:
            return m_pill.destination();
        default:
            return {};
        }
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.linked = m_pill.isClickable();
        return state;
    }
    [[nodiscard]] QStringList actionNames() const override {
        return m_pill.isClickable() ? QStringList{pressAction()} : QStringList();
    }
    void doAction(const QString& name) override {
        if (name == pressAction() && m_pill.isClickable()) {
            Q_EMIT m_pill.clicked();
        }
    }

private:
    NotchPill& m_pill;
};

/// The row, whose children are the visible pills.
class AccessibleRow final : public QAccessibleWidget {
public:
    explicit AccessibleRow(OverlayView* view)
        : QAccessibleWidget(view, QAccessible::Grouping, QStringLiteral("Brimlet")) {}

    [[nodiscard]] int childCount() const override { return static_cast<int>(shown().size()); }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        const QList<NotchPill*> pills = shown();
        return index >= 0 && index < pills.size()
                   ? QAccessible::queryAccessibleInterface(pills.at(index))
                   : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        return static_cast<int>(shown().indexOf(child->object()));
    }

private:
    [[nodiscard]] QList<NotchPill*> shown() const {
        QList<NotchPill*> pills = widget()->findChildren<NotchPill*>();
        pills.removeIf([](const NotchPill* pill) { return !pill->isVisible(); });
        return pills;
    }
};

QAccessibleInterface* describe(const QString& /*className*/, QObject* object) {
    if (auto* const pill = qobject_cast<NotchPill*>(object)) {
        return new AccessiblePill(pill);
    }
    if (auto* const view = qobject_cast<OverlayView*>(object)) {
        return new AccessibleRow(view);
    }
    return nullptr;
}

} // namespace

void describePillsToScreenReaders() {
    static const bool isInstalled = (QAccessible::installFactory(describe), true);
    Q_UNUSED(isInstalled)
}

} // namespace brimlet
