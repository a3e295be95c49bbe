#pragma once

#include "creative/creativeenvironment.h"
#include "host/assignment.h"

#include <QWidget>

namespace brimlet {

class LiveDot;
class MarkView;
class MenuText;

/// One row of the status card: a mark, a name over a label and, for a slot that is filled, a live
/// dot.
class StatusRow final : public QWidget {
    Q_OBJECT

public:
    StatusRow(const QString& label, const CreativeEnvironment& environment);

    /// The slot's brand; absent shows "Unfilled" without a dot.
    void setSlot(const std::optional<SlotCreative>& slot, bool live);

private:
    MarkView* m_mark;
    MenuText* m_name;
    LiveDot* m_dot;
};

} // namespace brimlet
