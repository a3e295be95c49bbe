#include "menu/hostmenuview.h"

#include "creative/notchfont.h"
#include "menu/agreementtext.h"
#include "menu/amounttext.h"
#include "menu/hostbuttons.h"
#include "menu/hosttheme.h"
#include "menu/livedot.h"
#include "menu/menuaccessibility.h"
#include "menu/menurows.h"
#include "menu/menutext.h"
#include "menu/menutexts.h"
#include "menu/statuscard.h"
#include "menu/tokenfield.h"
#include "platform/starttask.h"

#include <QVBoxLayout>

namespace brimlet {
namespace {

constexpr int kWidth = 320; // points

MenuText* dimText(const QString& text = {}) {
    return new MenuText(NotchFont::tagline(), HostTheme::dim(), text);
}

MenuText* faintText(const QString& text = {}) {
    return new MenuText(NotchFont::tagline(), HostTheme::faint(), text);
}

/// Sets every role, so that no colour of the desktop's palette is used.
QPalette darkPalette() {
    QPalette palette(Qt::white, HostTheme::card(), Qt::white, Qt::black, Qt::gray, Qt::white,
                     Qt::white, HostTheme::card(), HostTheme::bg());
    palette.setColor(QPalette::Highlight,
                     HostTheme::accent().darker(115)); // white text on it reaches 4.5:1
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Mid, HostTheme::line()); // the window's hairline
    palette.setColor(QPalette::PlaceholderText, HostTheme::dim());
    palette.setColor(QPalette::Disabled, QPalette::WindowText, HostTheme::dim());
    palette.setColor(QPalette::Disabled, QPalette::Text, HostTheme::dim());
    return palette;
}

} // namespace

HostMenuView::HostMenuView(std::shared_ptr<HostStore> store, const CreativeEnvironment& environment)
    : m_store(std::move(store))
    , m_live(new LiveDot(false, false))
    , m_amount(new AmountText)
    , m_earnings(dimText())
    , m_notchedOnly(dimText(tr("Notched MacBooks only.")))
    , m_moveToApplications(
          dimText(tr("Drag this app into Applications. Time only counts from there, so "
                     "a copy in Downloads cannot farm the pool.")))
    , m_card(new StatusCard(environment))
    , m_statusLine(dimText())
    , m_recorded(faintText())
    , m_split(faintText())
    , m_banked(dimText())
    , m_agreement(new AgreementText)
    , m_agree(new HostPrimaryButton(tr("I agree · not a guarantee")))
    , m_draftToken(new TokenField)
    , m_saveToken(new HostPrimaryButton(tr("Save token")))
    , m_pause(new HostGhostButton(tr("Pause ads 24h")))
    , m_quit(new HostGhostButton(tr("Quit"))) {
    describeMenuToScreenReaders();
    setAccessibleName(tr("Brimlet"));
    setPalette(darkPalette());
    buildLayout();
    buildActions();
    connect(m_store.get(), &HostStore::objectWillChange, this, &HostMenuView::storeWillChange);
    rebuild();
}

void HostMenuView::buildLayout() {
    auto* const title = new QHBoxLayout;
    title->addWidget(new MenuText(systemFont(15, QFont::DemiBold), Qt::white, tr("Brimlet")));
    title->addStretch();
    title->addWidget(m_live, 0, Qt::AlignVCenter);

    auto* const earnings = new QVBoxLayout;
    earnings->setSpacing(6);
    earnings->addWidget(m_amount);
    earnings->addWidget(m_earnings);
    earnings->addWidget(faintText(tr("Estimate, not a guarantee")));

    auto* const column = new QVBoxLayout(this);
    column->setSizeConstraint(QLayout::SetNoConstraint); // fitHeight() sets the size
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(14);
    column->addLayout(title);
    column->addLayout(earnings);
    for (QWidget* const each : std::initializer_list<QWidget*>{
             m_notchedOnly, m_moveToApplications, m_card, m_statusLine, m_recorded, m_split,
             m_banked, m_agreement, m_agree, m_draftToken, m_saveToken, m_pause, m_quit}) {
        column->addWidget(each);
    }
    const std::initializer_list<QWidget*> tabOrder{m_agreement, m_agree, m_draftToken,
                                                   m_saveToken, m_pause, m_quit};
    for (const auto* each = tabOrder.begin(); each + 1 != tabOrder.end(); ++each) {
        setTabOrder(*each, *(each + 1));
    }
}

void HostMenuView::buildActions() {
    connect(m_agree, &QAbstractButton::clicked, this, [this] { startTask(m_store->agree()); });
    connect(m_saveToken, &QAbstractButton::clicked, this, &HostMenuView::saveToken);
    connect(m_draftToken, &QLineEdit::returnPressed, this, [this] {
        saveToken();
        m_saveToken->setFocus(); // which hides the token
    });
    connect(m_pause, &QAbstractButton::clicked, this, [this] { m_store->pause24h(); });
    connect(m_quit, &QAbstractButton::clicked, this, &HostMenuView::quitRequested);
}

void HostMenuView::showToken() {
    m_hasShownToken = m_store->isTokenKnown();
    m_draftToken->setText(m_store->token());
}

bool HostMenuView::isDraftTouched() const {
    // Assistive technology sets the text without marking it as modified.
    return m_draftToken->isModified() || !m_draftToken->text().isEmpty();
}

void HostMenuView::saveToken() {
    // An empty field must not delete a token that it could not show.
    if (m_hasShownToken || isDraftTouched()) {
        m_store->saveToken(m_draftToken->text());
    }
}

void HostMenuView::showEvent(QShowEvent* /*event*/) {
    showToken();
    rebuild();
}

void HostMenuView::hideEvent(QHideEvent* /*event*/) {
    // A token that was typed and not saved is forgotten.
    m_draftToken->setText(QString()); // unlike clear(), cannot be undone
}

void HostMenuView::storeWillChange() {
    if (isVisible()) {
        m_rebuild.schedule();
    }
}

void HostMenuView::rebuild() {
    if (!m_hasShownToken && m_store->isTokenKnown() && !isDraftTouched()) {
        showToken();
    }
    const Assignment& week = m_store->assignment();
    const MenuRows rows = menuRows(week, m_store->hasNotch());
    const bool live = m_store->adsVisible();
    m_live->setLive(live);
    m_amount->setAmount(eurosShort(week.estimatedCents));
    m_earnings->setText(earningsText(week.estimatedCents));
    m_notchedOnly->setVisible(rows.notchedOnly);
    m_moveToApplications->setVisible(rows.moveToApplications);
    m_card->setWeek(week, rows, live);
    m_statusLine->setText(m_store->statusLine());
    m_recorded->setText(
        recordedText(week.liveBucketsToday, week.liveBucketsNeeded, week.liveDaysThisWeek));
    m_split->setText(splitText(week.liveHostCount));
    m_split->setVisible(rows.split);
    m_banked->setText(bankedText(week.pendingStipendCents));
    m_banked->setVisible(rows.banked);
    if (!rows.agreement) {
        // Else the focus of what goes would move on, to the token, which would be shown.
        m_agreement->clearFocus();
        m_agree->clearFocus();
    }
    m_agreement->setText(rows.agreement ? week.agreementText : QString());
    m_agreement->setVisible(rows.agreement && !week.agreementText.isEmpty());
    m_agree->setVisible(rows.agreement);
    fitHeight();
}

void HostMenuView::fitHeight() {
    layout()->activate();
    resize(kWidth, layout()->totalHeightForWidth(kWidth));
}

} // namespace brimlet
