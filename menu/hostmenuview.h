#pragma once

#include "creative/creativeenvironment.h"
#include "host/hoststore.h"
#include "platform/onceperturn.h"

#include <QWidget>

#include <memory>

class QAbstractButton;

namespace brimlet {

class AgreementText;
class AmountText;
class LiveDot;
class MenuText;
class StatusCard;
class TokenField;

/// What the menu-bar panel shows: what the week is worth, both slots, the status line, counters,
/// the agreement, the token field and the buttons. It reads the store and calls its actions. Always
/// 320 points wide and as high as its content. While it is shown it is rebuilt at most once per
/// turn of the event loop, while it is not it does nothing.
class HostMenuView final : public QWidget {
    Q_OBJECT

public:
    HostMenuView(std::shared_ptr<HostStore> store, const CreativeEnvironment& environment);

Q_SIGNALS:
    /// "Quit" was pressed.
    void quitRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void buildLayout();
    void buildActions();
    void storeWillChange();
    void rebuild();
    void fitHeight();

    std::shared_ptr<HostStore> m_store;
    OncePerTurn m_rebuild{[this] { rebuild(); }};

    LiveDot* m_live;
    AmountText* m_amount;
    MenuText* m_earnings;
    MenuText* m_notchedOnly;
    MenuText* m_moveToApplications;
    StatusCard* m_card;
    MenuText* m_statusLine;
    MenuText* m_recorded;
    MenuText* m_split;
    MenuText* m_banked;
    AgreementText* m_agreement;
    QAbstractButton* m_agree;
    TokenField* m_draftToken;
    QAbstractButton* m_saveToken;
    QAbstractButton* m_pause;
    QAbstractButton* m_quit;
};

} // namespace brimlet
