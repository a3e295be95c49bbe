#import "platform/mac/macreducemotion.h"
#import "platform/mac/macscreens.h"
#import "platform/mac/macworkspace.h"
#import "platform/mac/nativetext.h"
#include "tests/support/testprogram.h"

#import <AppKit/AppKit.h>

#include <QGuiApplication>
#include <QTest>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

using namespace brimlet;

/// Which of the system's notifications the adapters report, and for how long.
class TestMacNotifications final : public QObject {
    Q_OBJECT

    /// Makes an adapter and has it call the block.
    using Observe = std::shared_ptr<void> (*)(std::function<void()> block);

    template <typename Adapter, auto observe>
    static std::shared_ptr<void> observed(std::function<void()> block) {
        const auto adapter = std::make_shared<Adapter>();
        static_cast<void>((*adapter.*observe)(std::move(block)));
        return adapter;
    }

    [[nodiscard]] static NSNotificationCenter* workspaceCenter() {
        return NSWorkspace.sharedWorkspace.notificationCenter;
    }
    static void post(bool inWorkspace, const QString& name) {
        [(inWorkspace ? workspaceCenter()
                      : NSNotificationCenter.defaultCenter) postNotificationName:toNative(name)
                                                                          object:nil];
    }
    [[nodiscard]] static QStringList names() {
        return {fromNative(NSApplicationDidChangeScreenParametersNotification),
                fromNative(NSWorkspaceScreensDidSleepNotification),
                fromNative(NSWorkspaceScreensDidWakeNotification),
                fromNative(NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification)};
    }

    static void addAdapters() {
        QTest::addColumn<Observe>("observe");
        QTest::addColumn<bool>("isWorkspaces");
        QTest::addColumn<QString>("name");
        const QStringList all = names();
        QTest::newRow("screens") << Observe(&observed<MacScreens, &MacScreens::observeChanges>)
                                 << false << all[0];
        QTest::newRow("screens asleep")
            << Observe(&observed<MacWorkspace, &MacWorkspace::observeScreensDidSleep>) << true
            << all[1];
        QTest::newRow("screens awake")
            << Observe(&observed<MacWorkspace, &MacWorkspace::observeScreensDidWake>) << true
            << all[2];
        QTest::newRow("reduced motion")
            << Observe(&observed<MacReduceMotion, &MacReduceMotion::observeChanges>) << true
            << all[3];
    }

private Q_SLOTS:
    void onlyTheNotificationOfTheRightCenterCounts_data() { addAdapters(); }
    void onlyTheNotificationOfTheRightCenterCounts() {
        QFETCH(Observe, observe);
        QFETCH(bool, isWorkspaces);
        QFETCH(QString, name);
        int calls = 0;
        const auto adapter = observe([&] { ++calls; });
        for (const QString& each : names()) {
            post(!isWorkspaces, each);
            QCOMPARE(calls, 0);
            if (each != name) {
                post(isWorkspaces, each);
                QCOMPARE(calls, 0);
            }
        }
        post(isWorkspaces, name);
        QCOMPARE(calls, 1);
        post(isWorkspaces, name);
        QCOMPARE(calls, 2);
    }

    void noneIsReportedAfterDestruction_data() { addAdapters(); }
    void noneIsReportedAfterDestruction() {
        QFETCH(Observe, observe);
        QFETCH(bool, isWorkspaces);
        QFETCH(QString, name);
        int calls = 0;
        observe([&] { ++calls; }).reset();
        post(isWorkspaces, name);
        QCOMPARE(calls, 0);
    }

    void oneOfAnotherThreadIsReportedOnTheMainThread_data() { addAdapters(); }
    void oneOfAnotherThreadIsReportedOnTheMainThread() {
        QFETCH(Observe, observe);
        QFETCH(bool, isWorkspaces);
        QFETCH(QString, name);
        std::atomic<QThread*> reportedOn = nullptr;
        const auto adapter = observe([&] { reportedOn = QThread::currentThread(); });
        std::thread other([&] {
            @autoreleasepool {
                post(isWorkspaces, name);
            }
        });
        const bool isReported = QTest::qWaitFor([&] { return reportedOn.load() != nullptr; });
        other.join();
        QVERIFY(isReported);
        QCOMPARE(reportedOn.load(), thread());
    }
};

BRIMLET_TEST(TestMacNotifications, QGuiApplication)
#include "tst_macnotifications.moc"
