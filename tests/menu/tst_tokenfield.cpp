#include "menu/tokenfield.h"
#include "tests/menu/shownmenu.h"
#include "tests/support/testprogram.h"

#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPalette>
#include <QRegularExpression>

using namespace brimlet;

namespace {

const QString kQuit = QStringLiteral("Quit");

/// A menu whose window is active.
struct ActiveMenu final {
    explicit ActiveMenu(bool hasToken = true) {
        menu.hasToken = hasToken;
        menu.show();
        isActive = QTest::qWaitForWindowActive(menu.view().window());
        field = menu.view().findChild<TokenField*>();
    }

    void leaveField() { menu.named<QAbstractButton>(kQuit)->setFocus(); }
    void save() {
        QTest::mouseClick(menu.named<QAbstractButton>(QStringLiteral("Save token")),
                          Qt::LeftButton);
    }
    [[nodiscard]] bool showsDots() const {
        return field->displayText() == QString(field->text().size(), QChar(0x25CF));
    }

    ShownMenu menu;
    bool isActive = false;
    TokenField* field = nullptr; ///< The menu's.
};

void openContextMenu(QWidget& widget) {
    const QPoint middle = widget.rect().center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, middle, widget.mapToGlobal(middle));
    QApplication::sendEvent(&widget, &event);
}

} // namespace

class TestTokenField final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qunsetenv("QT_FATAL_WARNINGS"); }
    void init() {
        // Offscreen, Qt warns that the platform cannot grab for a popup. No other warning is
        // allowed.
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not )")));
    }

    void itShowsDotsUnlessItHasTheFocus() {
        ActiveMenu active;
        QVERIFY(active.isActive);
        active.leaveField();
        QVERIFY(active.showsDots());
        active.field->setFocus();
        QCOMPARE(active.field->displayText(), QStringLiteral("kept-token"));
        active.leaveField();
        QVERIFY(active.showsDots());
    }

    void signingDoesNotShowTheToken() {
        ActiveMenu active;
        QVERIFY(active.isActive);
        active.menu.week().agreed = false;
        Q_EMIT active.menu.store()->objectWillChange();
        auto* const agree =
            active.menu.named<QAbstractButton>(QStringLiteral("I agree · not a guarantee"));
        QTRY_VERIFY(agree->isVisible());
        agree->setFocus();
        QTest::mouseClick(agree, Qt::LeftButton); // the service replies that it is signed
        QTRY_VERIFY(!agree->isVisible());
        QVERIFY(!active.field->hasFocus());
        QVERIFY(active.showsDots());
    }

    void enterSavesAndHidesTheToken() {
        ActiveMenu active(false);
        QVERIFY(active.isActive);
        active.field->setFocus();
        QTest::keyClicks(active.field, QStringLiteral("secret"));
        QTest::keyClick(active.field, Qt::Key_Return);
        QCOMPARE(active.menu.store()->token(), QStringLiteral("secret"));
        QVERIFY(!active.field->hasFocus());
        QVERIFY(active.showsDots());
    }

    void noInputMethodLearnsTheToken() {
        ActiveMenu active;
        QVERIFY(active.isActive);
        const Qt::InputMethodHints wanted =
            Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase;
        const auto hints = [&active] {
            // As an input method reads them.
            return Qt::InputMethodHints(active.field->inputMethodQuery(Qt::ImHints).toInt());
        };
        QCOMPARE(hints() & wanted, wanted);
        QCOMPARE(active.field->inputMethodHints() & wanted, wanted);
        active.field->setFocus();
        QCOMPARE(active.field->echoMode(), QLineEdit::Normal);
        QCOMPARE(hints() & wanted, wanted);
        active.leaveField();
        QCOMPARE(active.field->echoMode(), QLineEdit::Password);
        QCOMPARE(hints() & wanted, wanted);
    }

    void aTokenOfAnyLengthIsSavedWhole() {
        ActiveMenu active(false);
        const QString token = QStringLiteral("0123456789").repeated(4000);
        active.field->insert(token);
        QCOMPARE(active.field->text(), token);
        active.save();
        QCOMPARE(active.menu.store()->token(), token);
    }

    // The store trims blanks at both ends; everything between must stay the same.
    void theInsideOfATokenIsUnchanged_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("kept");
        const auto row = [](const char* name, const char* typed, const char* kept) {
            QTest::newRow(name) << QString::fromUtf8(typed) << QString::fromUtf8(kept);
        };
        row("plain", "token", "token");
        row("capitals", "ToKeN", "ToKeN");
        row("blanks", " a  b   c ", "a  b   c");
        row("line breaks", "a\nb\r\nc", "a\nb\r\nc");
        row("tabulator", "a\tb", "a\tb");
        row("quotes", "\"to'ken\"", "\"to'ken\"");
        row("other scripts", "ключ", "ключ");
        row("nothing", "", "");
        row("nothing but blanks", "   ", "");
    }
    void theInsideOfATokenIsUnchanged() {
        QFETCH(QString, typed);
        QFETCH(QString, kept);
        ActiveMenu active(false);
        active.field->insert(typed);
        QCOMPARE(active.field->text(), typed);
        active.save();
        QCOMPARE(active.menu.store()->token(), kept);
        if (!kept.isEmpty()) {
            QCOMPARE(std::get<QByteArray>(active.menu.host.keptToken()), kept.toUtf8());
            const auto& headers = active.menu.host.http.requests().back().headers;
            QCOMPARE(headers.front().value, "Bearer " + kept.toUtf8());
        }
    }

    void aDraftIsForgottenOnceTheMenuIsHidden() {
        ActiveMenu active(false);
        QVERIFY(active.isActive);
        active.field->setFocus();
        QTest::keyClicks(active.field, QStringLiteral("secret"));
        QVERIFY(active.field->isUndoAvailable());
        active.menu.view().hide();
        QCOMPARE(active.field->text(), QString());
        QVERIFY(!active.field->isUndoAvailable());
        active.menu.view().show();
        active.field->setFocus();
        QTest::keySequence(active.field, QKeySequence::Undo);
        active.field->undo();
        QCOMPARE(active.field->text(), QString());
        QTest::keySequence(active.field, QKeySequence::Redo);
        QCOMPARE(active.field->text(), QString());
    }

    void undoDoesNotRestoreADraft() {
        ActiveMenu active;
        active.field->insert(QStringLiteral("secret"));
        active.menu.view().hide();
        QCOMPARE(active.field->text(), QString());
        active.menu.view().show();
        QCOMPARE(active.field->text(), QStringLiteral("kept-token"));
        active.field->undo();
        QCOMPARE(active.field->text(), QStringLiteral("kept-token"));
    }

    void itsContextMenuIsDarkAndTheTextStaysReadable() {
        ActiveMenu active;
        QVERIFY(active.isActive);
        active.field->setFocus();
        openContextMenu(*active.field);
        auto* const menu = active.field->findChild<QMenu*>();
        QVERIFY(menu != nullptr && menu->isVisible());
        QCOMPARE(menu->palette().color(QPalette::Window).rgb(), qRgb(18, 18, 18));
        QCOMPARE(menu->palette().color(QPalette::WindowText).rgb(), qRgb(255, 255, 255));
        QCOMPARE(menu->palette().color(QPalette::Highlight).rgb(), qRgb(53, 93, 222));
        QCOMPARE(active.field->displayText(), QStringLiteral("kept-token"));
        // The focus goes to the menu and back.
        QFocusEvent away(QEvent::FocusOut, Qt::PopupFocusReason);
        QApplication::sendEvent(active.field, &away);
        QCOMPARE(active.field->displayText(), QStringLiteral("kept-token"));
        menu->close();
        QCOMPARE(active.field->displayText(), QStringLiteral("kept-token"));
        QTRY_VERIFY(active.field->findChild<QMenu*>() == nullptr);
        active.leaveField();
        QVERIFY(active.showsDots());
    }

    void theTokenIsHiddenWhileAnotherWindowIsActive() {
        ActiveMenu active;
        active.field->setFocus();
        QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        QApplication::sendEvent(active.field, &away);
        QVERIFY(active.showsDots());
    }
};

BRIMLET_TEST(TestTokenField, QApplication)
#include "tst_tokenfield.moc"
