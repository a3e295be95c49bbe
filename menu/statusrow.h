#pragma once

#include "creative/creativeenvironment.h"
#include "host/assignment.h"

#include <QWidget>

namespace brimlet {

class LiveDot;
class MarkView;
class MenuText;

/// One row of the status card: a mark, a name over a label and, for a filled slot, a live dot.
class StatusRow final : public QWidget {
    Q_OBJECT

public:
    /// What `environment` refers to outlives the row.
    StatusRow(const QString& label, const CreativeEnvironment& environment);

    /// Without a brand the row shows "Unfilled" and no dot. `live`: ads are shown.
    void setSlot(const std::optional<SlotCreative>& slot, bool live);

private:
    MarkView* m_mark;
    MenuText* m_name;
    LiveDot* m_dot;
};

} // namespace brimlet
