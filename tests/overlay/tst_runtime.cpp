#include "overlay/overlayruntime.h"
#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QSignalSpy>
#include <QTest>

using namespace brimlet;

namespace {

SlotCreative creativeWith(const QString& link) {
    SlotCreative creative;
    creative.brandURL = Url::fromString(link);
    return creative;
}

} // namespace

class TestRuntime final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aNewRuntimeShowsNothing() {
        FakeWorkspace workspace;
        const OverlayRuntime runtime(workspace);
        QVERIFY(!runtime.visible());
        QVERIFY(!runtime.left());
        QVERIFY(!runtime.right());
        QCOMPARE(runtime.notchWidth(), 180.0);
        QCOMPARE(runtime.notchHeight(), 32.0);
    }

    void applyingAnnouncesFiveFieldsInOrderEvenIfEqual() {
        HostFixture host;
        host.http.answer(
            QStringLiteral("/api/display"), 200,
            R"({"weekStatus":"live","creatives":[{"slotId":"left"},{"slotId":"right"}]})");
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        OverlayRuntime runtime(host.workspace);
        QStringList seen;
        QObject::connect(&runtime, &OverlayRuntime::objectWillChange, [&] {
            seen << QStringLiteral("%1%2%3 %4 %5")
                        .arg(runtime.visible())
                        .arg(runtime.left().has_value())
                        .arg(runtime.right().has_value())
                        .arg(runtime.notchWidth())
                        .arg(runtime.notchHeight());
        });
        runtime.apply(*store, 200, 40);
        const QStringList expected{QStringLiteral("000 180 32"), QStringLiteral("100 180 32"),
                                   QStringLiteral("110 180 32"), QStringLiteral("111 180 32"),
                                   QStringLiteral("111 200 32")};
        QCOMPARE(seen, expected);
        QCOMPARE(runtime.notchHeight(), 40.0);
        runtime.apply(*store, 200, 40);
        QCOMPARE(seen.count(), 10);
    }

    void creativesAreCopiedEvenWhileAdsAreHidden() {
        HostFixture host;
        host.http.answer(QStringLiteral("/api/display"), 200,
                         R"({"creatives":[{"slotId":"left","brandName":"L"}]})");
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        OverlayRuntime runtime(host.workspace);
        runtime.apply(*store, 184, 32);
        QVERIFY(!runtime.visible());
        QVERIFY(runtime.left());
        QCOMPARE(runtime.left()->brandName, QStringLiteral("L"));
    }

    void allowedLinksAreOpenedInTheFormThatWasChecked() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        OverlayRuntime runtime(host.workspace);
        runtime.apply(*store, 184, 32);
        runtime.open(creativeWith(QStringLiteral("https://Example.org/a b?c=ä")));
        QCOMPARE(host.workspace.opened,
                 std::vector<QString>{QStringLiteral("https://Example.org/a%20b?c=%C3%A4")});
    }

    void whileNotVisibleAnAllowedLinkIsNotOpened() {
        HostFixture host;
        OverlayRuntime runtime(host.workspace);
        runtime.open(creativeWith(QStringLiteral("https://example.org/")));
        QVERIFY(host.workspace.opened.empty());
    }

    void openingNeedsACreativeAndAnAllowedLink() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        OverlayRuntime runtime(host.workspace);
        runtime.apply(*store, 184, 32);
        runtime.open(std::nullopt);
        runtime.open(SlotCreative());
        for (const char* link : {"http://example.org/", "HTTPS://example.org/", "ftp://127.0.0.1/",
                                 "mailto:a@example.org", "javascript:alert(1)", "file:///etc"}) {
            runtime.open(creativeWith(QString::fromLatin1(link)));
        }
        QVERIFY(host.workspace.opened.empty());
    }

    void canOpenFollowsTheLinkRule_data() {
        QTest::addColumn<QString>("link");
        QTest::addColumn<bool>("canOpen");
        const auto row = [](const char* link, bool canOpen) {
            QTest::newRow(link) << QString::fromLatin1(link) << canOpen;
        };
        row("https://anything.test/", true);
        row("http://localhost:8791/", true);
        row("http://127.0.0.1/", true);
        row("http://[::1]/", true);
        row("http://anything.test/", false);
        row("HTTPS://anything.test/", false);
        row("ftp://127.0.0.1/", false);
        row("mailto:a@b.test", false);
    }
    void canOpenFollowsTheLinkRule() {
        QFETCH(QString, link);
        QTEST(OverlayRuntime::canOpen(*Url::fromString(link)), "canOpen");
    }
};

BRIMLET_TEST(TestRuntime, QCoreApplication)
#include "tst_runtime.moc"
