#include "creative/creativeimagecache.h"
#include "menu/hostmenuview.h"
#include "overlay/overlaycontroller.h"
#include "overlay/overlayview.h"
#include "tests/overlay/shownoverlay.h"
#include "tests/support/hostfixture.h"
#include "tests/support/memoryuse.h"
#include "tests/support/paintcounter.h"
#include "tests/support/pngbytes.h"
#include "tests/support/readingdecoder.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kMebibyte = qint64{1024} * 1024;

/// The number of replies: `standard`, or the value of BRIMLET_REPLIES.
int replies(int standard) {
    bool isNumber = false;
    const int asked = qEnvironmentVariableIntValue("BRIMLET_REPLIES", &isNumber);
    return isNumber ? asked : standard;
}

QByteArray body(const char* brand, const char* picture, int cents) {
    const QByteArray creative = "\"brandName\":\"" + QByteArray(brand) +
                                "\",\"tagline\":\"A line that is wider than its capsule is, of " +
                                brand + "\",\"assetUrl\":\"https://a.test/" + picture +
                                "\",\"brandUrl\":\"https://a.test/" + brand + "\"}";
    return "{\"weekStatus\":\"live\",\"agreed\":false,\"agreementText\":\"Terms of " +
           QByteArray(brand).repeated(100) + "\",\"estimatedCents\":" + QByteArray::number(cents) +
           ",\"creatives\":[{\"slotId\":\"left\"," + creative + ",{\"slotId\":\"right\"," +
           creative + "]}";
}

const QByteArray kOne = body("one", "one.png", 1234);
const QByteArray kTwo = body("two", "two.png", 5600);

/// A store, the controller that follows it, and the record of the overlay's window.
struct Life final {
    Life() {
        caches.folder = folder.path();
        host.keepToken("t");
        host.http.answer(QStringLiteral("one.png"), 200, pngOf(Qt::red));
        host.http.answer(QStringLiteral("two.png"), 200, pngOf(Qt::blue));
        store = host.makeStore();
        QObject::connect(store.get(), &HostStore::overlayNeedsRender,
                         [this] { controller.refresh(); });
        controller.start(store);
    }

    /// Replies with both bodies alternately, `count` times in all.
    void live(int count) {
        for (int i = 0; i < count; ++i) {
            host.http.answer(QStringLiteral("/api/host/me"), 200, i % 2 == 0 ? kOne : kTwo);
            startTask(store->refreshEstimate());
            QCoreApplication::sendPostedEvents();
            host.clock.advance(3s);
            host.http.clear();
            window.calls.clear();
        }
    }

    QTemporaryDir folder;
    FakeCachesFolder caches;
    ReadingDecoder decoder;
    FakeReduceMotion reduceMotion;
    HostFixture host;
    CreativeImageCache images{{host.http, decoder, caches}, 1};
    CreativeEnvironment environment{images, host.clock, reduceMotion};
    std::shared_ptr<HostStore> store;
    FakeOverlayWindow::Record window;
    OverlayRuntime* runtimeOfPanel = nullptr;
    OverlayController controller{{host.screens, host.workspace, [this](OverlayRuntime& runtime) {
                                      runtimeOfPanel = &runtime;
                                      return std::make_unique<FakeOverlayWindow>(window);
                                  }}};
};

} // namespace

/// Two different replies alternately for a long time.
class TestManyReplies final : public QObject {
    Q_OBJECT

    /// Compares the memory in use after some replies with that after many.
    static void check(Life& life, int count) {
        if (isMemoryDistorted()) {
            life.live(200); // for the sanitizer's leak check
            QSKIP("the sanitizer has memory of its own");
        }
        life.live(count / 10);
        const qint64 before = memoryInUse();
        life.live(count);
        const qint64 growth = memoryInUse() - before;
        QVERIFY2(growth <= kMebibyte, qPrintable(QString::number(growth)));
        QVERIFY(life.controller.panel()->runtime().left());
        QCOMPARE(life.controller.panel()->runtime().left()->brandName,
                 count % 2 == 0 ? QStringLiteral("two") : QStringLiteral("one"));
    }

private Q_SLOTS:
    void theSameReplyAgainPaintsAndFetchesNothing() {
        Life life;
        OverlayView capsules(*life.runtimeOfPanel, life.environment);
        paintChangesOf(capsules);
        capsules.resize(428, 40);
        capsules.show();
        HostMenuView menu(life.store, life.environment);
        menu.show();
        QVERIFY(QTest::qWaitForWindowExposed(&capsules));
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        life.host.http.answer(QStringLiteral("/api/host/me"), 200, kOne);
        const auto poll = [&life] {
            startTask(life.store->refreshEstimate());
            QCoreApplication::processEvents(); // rebuilds
            QCoreApplication::processEvents(); // paints what was rebuilt
        };
        poll();
        QCoreApplication::processEvents(); // paints the pills, which the rebuild has shown
        // Overlay and menu show both slots, and their picture was fetched once.
        QCOMPARE(life.host.http.log().count(QStringLiteral("GET /one.png")), 1);
        const PaintCounter counter(*qApp);
        for (int i = 0; i < 100; ++i) {
            poll();
        }
        QCOMPARE(counter.paints, 0);
        QCOMPARE(life.host.http.log().count(QStringLiteral("GET /one.png")), 1);
        // Another reply is painted, and its picture fetched.
        life.host.http.answer(QStringLiteral("/api/host/me"), 200, kTwo);
        poll();
        QVERIFY(counter.paints > 0);
        QCOMPARE(life.host.http.log().count(QStringLiteral("GET /two.png")), 1);
    }

    void thePanelNeedsNoMoreMemory() {
        Life life;
        // Enough for a mebibyte if each reply leaked only malloc's smallest block, 32 bytes.
        check(life, replies(40'000));
        QVERIFY(life.window.isShown);
    }

    void theCapsulesNeedNoMoreMemory() {
        Life life;
        OverlayView view(*life.runtimeOfPanel, life.environment);
        paintChangesOf(view);
        view.resize(428, 40);
        view.show();
        check(life, replies(5'000));
        QCOMPARE(life.host.clock.runningSleeps(), 2); // one for each line
    }

    void theOpenMenuNeedsNoMoreMemory() {
        Life life;
        HostMenuView view(life.store, life.environment);
        view.show();
        check(life, replies(2'000));
    }
};

BRIMLET_TEST(TestManyReplies, QApplication)
#include "tst_manyreplies.moc"
