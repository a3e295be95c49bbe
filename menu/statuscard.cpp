#include "menu/statuscard.h"

#include "creative/continuouspaths.h"
#include "creative/notchfont.h"
#include "menu/hosttheme.h"
#include "menu/menutext.h"
#include "menu/statusrow.h"

#include <QPainter>
#include <QVBoxLayout>

namespace brimlet {

StatusCard::StatusCard(const CreativeEnvironment& environment)
    : m_left(new StatusRow(tr("Left panel"), environment))
    , m_right(new StatusRow(tr("Right panel"), environment))
    , m_noBrand(new StatusRow(tr("No brand this week"), environment)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(10, 10, 10, 10);
    column->setSpacing(8);
    column->addWidget(
        new MenuText(systemFont(11, QFont::Medium), HostTheme::faint(), tr("Ad status")));
    column->addWidget(m_left);
    column->addWidget(m_right);
    column->addWidget(m_noBrand);
}

void StatusCard::setWeek(const Assignment& week, const MenuRows& rows, bool live) {
    statusRow(*m_left, rows.leftPanel, week.left, live);
    statusRow(*m_right, rows.rightPanel, week.right, live);
    statusRow(*m_noBrand, rows.noBrand, std::nullopt, live);
    layout()->activate();
}

/// A row that is not shown takes no space and forgets its picture.
void StatusCard::statusRow(StatusRow& row, bool isThere, const std::optional<SlotCreative>& slot,
                           bool live) {
    row.setSlot(slot, live);
    row.setVisible(isThere);
}

void StatusCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double kCorner = 14;
    painter.fillPath(roundedPath(QRectF(rect()), kCorner), HostTheme::card());
    painter.strokePath(roundedPath(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCorner - 0.5),
                       QPen(HostTheme::line(), 1));
}

} // namespace brimlet
