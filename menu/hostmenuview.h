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

/// The content of the menu-bar panel: the week's amount, both slots, the status line, counters, the
/// agreement, the token field and the buttons. Reads the store and calls its actions. Always 320
/// points wide and as high as its content. While shown, it updates at most once per turn of the
/// event loop; while hidden, not at all.
class HostMenuView final : public QWidget {
    Q_OBJECT

public:
    /// Shares ownership of the store. What `environment` refers to outlives the view.
    HostMenuView(std::shared_ptr<HostStore> store, const CreativeEnvironment& environment);

Q_SIGNALS:
    /// The "Quit" button was pressed.
    void quitRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void buildLayout();
    void buildActions();
    void showToken();
    /// Whether the field holds something that the user has typed, or has emptied.
    [[nodiscard]] bool isDraftTouched() const;
    void saveToken();
    void storeWillChange();
    void rebuild();
    void fitHeight();

    std::shared_ptr<HostStore> m_store;
    bool m_hasShownToken = false; ///< The field has shown the stored token, or that there is none.
    OncePerTurn m_rebuild{[this] { rebuild(); }};

    // All children of this widget.
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
