#include "host/money.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <clocale>
#include <limits>
#include <string>

using namespace brimlet;

class TestMoney final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void centsReadAsEuros_data() {
        QTest::addColumn<qint64>("cents");
        QTest::addColumn<QString>("shown");
        QTest::newRow("1234") << qint64{1234} << QStringLiteral("€12.34");
        QTest::newRow("5") << qint64{5} << QStringLiteral("€0.05");
        QTest::newRow("0") << qint64{0} << QStringLiteral("€0.00");
        QTest::newRow("-50") << qint64{-50} << QStringLiteral("€-0.50");
        QTest::newRow("no grouping") << qint64{123456} << QStringLiteral("€1234.56");
        QTest::newRow("whole euros") << qint64{1500} << QStringLiteral("€15.00");
        // The amount is converted to a double, which has about sixteen digits.
        QTest::newRow("largest") << std::numeric_limits<qint64>::max()
                                 << QStringLiteral("€92233720368547760.00");
        QTest::newRow("smallest") << std::numeric_limits<qint64>::min()
                                  << QStringLiteral("€-92233720368547760.00");
    }
    void centsReadAsEuros() {
        QFETCH(qint64, cents);
        QTEST(eurosWithCents(cents), "shown");
    }

    void theLocaleMakesNoDifference() {
        const std::string before = std::setlocale(LC_ALL, nullptr);
        for (const char* name : {"de_DE.UTF-8", "tr_TR.UTF-8", "C"}) {
            if (std::setlocale(LC_ALL, name) == nullptr) {
                qInfo("the C locale %s is not installed here; only Qt's is tried", name);
            }
            QLocale::setDefault(QLocale(QString::fromLatin1(name).left(5)));
            QCOMPARE(eurosWithCents(123456), QStringLiteral("€1234.56"));
        }
        std::setlocale(LC_ALL, before.c_str());
        QLocale::setDefault(QLocale::system());
    }
};

BRIMLET_TEST(TestMoney, brimlet::NoApplication)
#include "tst_money.moc"
