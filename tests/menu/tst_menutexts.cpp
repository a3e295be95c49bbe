#include "menu/menutexts.h"
#include "tests/support/testprogram.h"

#include <QLocale>
#include <QTest>

#include <limits>

using namespace brimlet;

class TestMenuTexts final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wholeEurosHaveNoDecimals_data() {
        QTest::addColumn<qint64>("cents");
        QTest::addColumn<QString>("text");
        const auto row = [](qint64 cents, const char* text) {
            QTest::newRow(text) << cents << QString::fromUtf8(text);
        };
        row(0, "€0");
        row(1, "€0.01");
        row(5, "€0.05");
        row(99, "€0.99");
        row(100, "€1");
        row(101, "€1.01");
        row(1234, "€12.34");
        row(1500, "€15");
        row(1550, "€15.50");
        row(100'000'000, "€1000000");
        row(100'000'001, "€1000000.01");
        row(-1, "€-0.01");
        row(-200, "€-2");
        row(-250, "€-2.50");
        row(std::numeric_limits<qint64>::max(), "€92233720368547760.00");
        row(std::numeric_limits<qint64>::min(), "€-92233720368547760.00");
        row(std::numeric_limits<qint64>::max() - 7, "€92233720368547758");
    }
    void wholeEurosHaveNoDecimals() {
        QFETCH(qint64, cents);
        QFETCH(QString, text);
        QCOMPARE(eurosShort(cents), text);
        QCOMPARE(earningsText(cents), QStringLiteral("You'll earn %1 this week").arg(text));
    }

    void theUsersLocaleChangesNothing() {
        const QLocale before;
        for (const QLocale& locale : {QLocale(QLocale::German), QLocale(QLocale::Turkish),
                                      QLocale(QLocale::Arabic, QLocale::Egypt)}) {
            QLocale::setDefault(locale);
            QCOMPARE(eurosShort(1234567), QStringLiteral("€12345.67"));
            QCOMPARE(eurosShort(1234500), QStringLiteral("€12345"));
            QCOMPARE(bankedText(123456789),
                     QStringLiteral("Banked €1234567.89. Cash-out at €15 via Stripe or PayPal."));
            QCOMPARE(
                recordedText(1000, 2000, 3000),
                QStringLiteral("Recorded 1000/2000 live windows today · 3000 live days this week"));
        }
        QLocale::setDefault(before);
    }

    void recordedTextContainsItsNumbers() {
        QCOMPARE(recordedText(2, 4, 1),
                 QStringLiteral("Recorded 2/4 live windows today · 1 live days this week"));
        QCOMPARE(recordedText(-1, 0, -7),
                 QStringLiteral("Recorded -1/0 live windows today · -7 live days this week"));
    }

    void oneHostIsSingular_data() {
        QTest::addColumn<qint64>("hosts");
        QTest::addColumn<QString>("text");
        QTest::newRow("one") << qint64{1} << QStringLiteral("Split with 1 live host");
        QTest::newRow("two") << qint64{2} << QStringLiteral("Split with 2 live hosts");
        QTest::newRow("eleven") << qint64{11} << QStringLiteral("Split with 11 live hosts");
        QTest::newRow("very many") << std::numeric_limits<qint64>::max()
                                   << QStringLiteral("Split with 9223372036854775807 live hosts");
    }
    void oneHostIsSingular() {
        QFETCH(qint64, hosts);
        QFETCH(QString, text);
        QCOMPARE(splitText(hosts), text);
    }

    void theBankedAmountAlwaysHasTwoDecimals_data() {
        QTest::addColumn<qint64>("cents");
        QTest::addColumn<QString>("amount");
        QTest::newRow("whole") << qint64{1500} << QStringLiteral("€15.00");
        QTest::newRow("broken") << qint64{1234} << QStringLiteral("€12.34");
        QTest::newRow("a cent") << qint64{1} << QStringLiteral("€0.01");
    }
    void theBankedAmountAlwaysHasTwoDecimals() {
        QFETCH(qint64, cents);
        QFETCH(QString, amount);
        QCOMPARE(bankedText(cents),
                 QStringLiteral("Banked %1. Cash-out at €15 via Stripe or PayPal.").arg(amount));
    }
};

BRIMLET_TEST(TestMenuTexts, QCoreApplication)
#include "tst_menutexts.moc"
