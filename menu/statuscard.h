#pragma once

#include "creative/creativeenvironment.h"
#include "host/assignment.h"
#include "menu/menurows.h"

#include <QWidget>

namespace brimlet {

class StatusRow;

/// The card with the brand in each slot and whether its ad is shown.
class StatusCard final : public QWidget {
    Q_OBJECT

public:
    /// What `environment` refers to outlives the card.
    explicit StatusCard(const CreativeEnvironment& environment);

    /// `rows` says which rows are shown; `live`, whether ads are shown.
    void setWeek(const Assignment& week, const MenuRows& rows, bool live);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    static void statusRow(StatusRow& row, bool isThere, const std::optional<SlotCreative>& slot,
                          bool live);

    StatusRow* m_left;
    StatusRow* m_right;
    StatusRow* m_noBrand;
};

} // namespace brimlet
