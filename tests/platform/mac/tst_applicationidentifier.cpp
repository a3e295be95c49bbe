#include "platform/mac/rules/applicationidentifier.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

class TestApplicationIdentifier final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aBundleHasItsOwnIdentifier() {
        QCOMPARE(applicationIdentifier(QStringLiteral("org.example.other")),
                 QStringLiteral("org.example.other"));
    }

    void aBareExecutableHasTheBundledProgramsIdentifier() {
        QCOMPARE(applicationIdentifier(QString()), QStringLiteral("app.brimlet.host"));
    }
};

BRIMLET_TEST(TestApplicationIdentifier, brimlet::NoApplication)
#include "tst_applicationidentifier.moc"
