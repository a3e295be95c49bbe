#include "menu/statusrow.h"

#include "creative/marqueetext.h"
#include "creative/notchfont.h"
#include "menu/hosttheme.h"
#include "menu/livedot.h"
#include "menu/markview.h"
#include "menu/menutext.h"

#include <QHBoxLayout>

namespace brimlet {
namespace {

QString nameOf(const SlotCreative& creative) {
    return creative.brandName.isEmpty() ? StatusRow::tr("Brand") : singleLine(creative.brandName);
}

} // namespace

StatusRow::StatusRow(const QString& label, const CreativeEnvironment& environment)
    : m_mark(new MarkView(environment))
    , m_name(new MenuText(systemFont(12, QFont::DemiBold), Qt::white))
    , m_dot(new LiveDot(false, true)) {
    m_name->setMaximumLines(2); // brand names have no limit

    auto* const texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(m_name);
    texts->addWidget(new MenuText(systemFont(11, QFont::Normal), HostTheme::faint(), label));

    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->setSpacing(8);
    row->addWidget(m_mark, 0, Qt::AlignVCenter);
    row->addLayout(texts, 1);
    row->addSpacing(8);
    row->addWidget(m_dot, 0, Qt::AlignVCenter);
}

void StatusRow::setSlot(const std::optional<SlotCreative>& slot, bool live) {
    m_mark->setCreative(slot);
    m_name->setText(slot ? nameOf(*slot) : tr("Unfilled"));
    m_dot->setLive(live);
    m_dot->setVisible(slot.has_value());
    layout()->activate(); // the menu needs the height at once
}

} // namespace brimlet
