#include "menu/agreementtext.h"
#include "menu/textlines.h"
#include "tests/menu/shownmenu.h"
#include "tests/support/testprogram.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace brimlet;

namespace {

/// The agreement in a column like the menu's.
struct Column final {
    Column() {
        column->setContentsMargins({});
        column->setSizeConstraint(QLayout::SetNoConstraint);
        column->addWidget(agreement);
        window.resize(288, 90);
    }

    void show(const QString& text) {
        agreement->setText(text);
        column->activate();
        window.resize(288, column->totalHeightForWidth(288));
        window.show();
    }
    [[nodiscard]] QScrollBar& bar() const { return *agreement->verticalScrollBar(); }
    /// Scrolls to the end until no more lines are added.
    void readToTheEnd() const {
        int last = -1;
        while (bar().value() != last) {
            last = bar().value();
            QTest::keyClick(agreement, Qt::Key_End);
        }
    }

    QWidget window;
    QVBoxLayout* column = new QVBoxLayout(&window);
    AgreementText* agreement = new AgreementText;
};

int lineOf(const Column& column) {
    return lineHeight(column.agreement->widget()->font());
}

} // namespace

class TestAgreementText final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itsHeightIsThatOfItsTextUpToNinetyPoints_data() {
        QTest::addColumn<int>("lines");
        QTest::addColumn<bool>("scrolls");
        for (const int lines : {1, 2, 5}) {
            QTest::addRow("%d", lines) << lines << false;
        }
        for (const int lines : {20, 299, 300, 301, 5000}) {
            QTest::addRow("%d", lines) << lines << true;
        }
    }
    void itsHeightIsThatOfItsTextUpToNinetyPoints() {
        QFETCH(int, lines);
        QFETCH(bool, scrolls);
        Column column;
        column.show(QStringLiteral("Line.\n").repeated(lines - 1) + QStringLiteral("The end."));
        QCOMPARE(column.agreement->height(), scrolls ? 90 : lines * lineOf(column));
        QCOMPARE(column.agreement->focusPolicy(), scrolls ? Qt::StrongFocus : Qt::NoFocus);
        QCOMPARE(column.bar().isVisible(), scrolls);
        // The text leaves room for the bar only if there is one.
        QCOMPARE(column.agreement->widget()->width(), scrolls ? 276 : 288);
        column.readToTheEnd();
        QCOMPARE(column.agreement->widget()->height(), lines * lineOf(column));
        QCOMPARE(column.bar().value(), scrolls ? lines * lineOf(column) - 90 : 0);
    }

    // If each step laid out all lines before it again, this would exceed the test's time limit.
    void scrollingOnLaysOutOnlyNewLines() {
        Column column;
        column.show(QStringLiteral("a\n").repeated(150'000));
        column.readToTheEnd();
        QCOMPARE(column.agreement->widget()->height(), 150'001 * lineOf(column));
    }

    void itsEndFadesWhileMoreFollows() {
        Column column;
        column.show(QStringLiteral("MMMMMMMMMM\n").repeated(20) + QStringLiteral("MMMMMMMMMM"));
        // The brightest pixel of the rows from `top` up to `end`.
        const auto brightest = [&](int top, int end) {
            const QImage picture = column.agreement->grab().toImage();
            int level = 0;
            for (int y = top; y < end; ++y) {
                for (int x = 0; x < 200; ++x) {
                    level = std::max(level, qGray(picture.pixel(x, y)));
                }
            }
            return level;
        };
        const int full = brightest(0, 76);
        QVERIFY(brightest(88, 90) < full / 3);
        QVERIFY(brightest(76, 84) > full / 3);
        QTest::keyClick(column.agreement, Qt::Key_Down);
        QVERIFY(brightest(88, 90) < full / 3);
        column.readToTheEnd();
        QCOMPARE(brightest(76, 90), full);
        // Nor does a text that is not scrolled.
        column.show(QStringLiteral("MMMMMMMMMM\nMMMMMMMMMM"));
        QCOMPARE(brightest(14, column.agreement->height()), full);
    }

    void aLongAgreementIsNinetyPointsHighAndScrolls() {
        ShownMenu menu;
        menu.reply(ShownMenu::with(ShownMenu::with(ShownMenu::liveWeek(), "agreed", false),
                                   "agreementText", QStringLiteral("Many words. ").repeated(200)));
        menu.show();
        auto* const agreement = menu.view().findChild<AgreementText*>();
        QCOMPARE(agreement->height(), 90);
        QVERIFY(agreement->verticalScrollBar()->isVisible());
        agreement->setFocus();
        QTest::keyClick(agreement, Qt::Key_Down);
        const int step = agreement->verticalScrollBar()->value();
        QVERIFY(step > 0);
        QTest::keyClick(agreement, Qt::Key_PageDown);
        QVERIFY(agreement->verticalScrollBar()->value() > step);
        QTest::keyClick(agreement, Qt::Key_End);
        QCOMPARE(agreement->verticalScrollBar()->value(),
                 agreement->verticalScrollBar()->maximum());
        QTest::keyClick(agreement, Qt::Key_Home);
        QCOMPARE(agreement->verticalScrollBar()->value(), 0);
        // A click beside the handle moves the bar by a page.
        auto* const bar = agreement->verticalScrollBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(4, 88));
        QCOMPARE(bar->value(), qMin(bar->pageStep(), bar->maximum()));
        bar->setValue(0);
        // All of the text can be scrolled to.
        QCOMPARE(agreement->widget()->height(), 90 + agreement->verticalScrollBar()->maximum());
    }

    void aVeryLongAgreementAppearsAtOnceAndCanBeReadToItsEnd() {
        const QString text = QStringLiteral("Line.\n").repeated(2000) + QStringLiteral("The end.");
        ShownMenu menu;
        menu.reply(ShownMenu::with(ShownMenu::with(ShownMenu::liveWeek(), "agreed", false),
                                   "agreementText", text));
        menu.show();
        auto* const agreement = menu.view().findChild<AgreementText*>();
        QCOMPARE(agreement->height(), 90);
        const int first = agreement->widget()->height();
        int last = -1;
        for (int i = 0; i < 100 && agreement->verticalScrollBar()->value() != last; ++i) {
            last = agreement->verticalScrollBar()->value();
            QTest::keyClick(agreement, Qt::Key_End);
        }
        const int line = lineHeight(agreement->widget()->font());
        QCOMPARE(agreement->widget()->height(), 2001 * line);
        QVERIFY(first < 400 * line);
        QCOMPARE(agreement->verticalScrollBar()->value(), 2001 * line - 90);
        // Its accessible name is the whole text from the start.
        QVERIFY(menu.texts().contains(text));
    }

    void aNewTextStartsAtTheTopAnEqualOneKeepsItsPosition() {
        Column column;
        const QString text = QStringLiteral("Many words. ").repeated(400);
        column.show(text);
        column.bar().setValue(200);
        column.show(text + QString()); // equal, but a copy
        QCOMPARE(column.bar().value(), 200);
        column.show(text + QStringLiteral("More."));
        QCOMPARE(column.bar().value(), 0);
    }

    void aNewTextAfterOneReadToItsEndHasOnlyItsFirstLines() {
        Column column;
        column.show(QStringLiteral("a\n").repeated(3000));
        column.readToTheEnd();
        column.show(QStringLiteral("b\n").repeated(3000));
        QVERIFY(column.agreement->widget()->height() < 400 * lineOf(column));
    }

    void aLongTextAfterAShortOneScrolls() {
        Column column;
        column.show(QStringLiteral("Be kind."));
        column.show(QStringLiteral("Many words. ").repeated(400));
        QCOMPARE(column.agreement->height(), 90);
        QVERIFY(column.bar().isVisible());
        column.show(QStringLiteral("Be kind."));
        QCOMPARE(column.agreement->height(), lineOf(column));
        QVERIFY(!column.bar().isVisible());
    }

    void onceSignedTheTextIsDropped() {
        const QString text = QStringLiteral("Line.\n").repeated(2000);
        const QJsonObject open = ShownMenu::with(
            ShownMenu::with(ShownMenu::liveWeek(), "agreed", false), "agreementText", text);
        ShownMenu menu;
        menu.reply(open);
        menu.show();
        const auto* const agreement = menu.view().findChild<AgreementText*>();
        QCOMPARE(agreement->widget()->accessibleName(), text);
        QVERIFY(agreement->widget()->height() > 100 * 10);
        menu.reply(ShownMenu::with(open, "agreed", true));
        QTest::mouseClick(menu.named<QAbstractButton>(QStringLiteral("I agree · not a guarantee")),
                          Qt::LeftButton);
        QCoreApplication::sendPostedEvents();
        QVERIFY(!agreement->isVisible());
        QVERIFY(agreement->widget()->accessibleName().isEmpty());
        QVERIFY(agreement->widget()->height() < 20);
    }

    void itsAccessibleRoleIsADocument() {
        ShownMenu menu; // installs the accessible interfaces
        menu.show();
        auto* const agreement = menu.view().findChild<AgreementText*>();
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(agreement);
        QCOMPARE(accessible->role(), QAccessible::Document);
        QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Host agreement"));
    }
};

BRIMLET_TEST(TestAgreementText, QApplication)
#include "tst_agreementtext.moc"
