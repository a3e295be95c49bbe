// What an untrusted text costs from its arrival until it is painted, in a capsule and in the open
// panel: ordinary ones, the tests' collection of odd ones, and texts as long as a reply can hold.
// "slowest ms" is the figure that counts: no text should take 50 ms.

#include "creative/creativeimagecache.h"
#include "menu/hostmenuview.h"
#include "overlay/overlayruntime.h"
#include "overlay/overlayview.h"
#include "tests/support/hostfixture.h"
#include "tests/support/readingdecoder.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>

namespace brimlet {
namespace {

/// A store whose live week is overwritten, and the fakes that both views need.
struct Fixture {
    Fixture() {
        caches.folder = QDir::tempPath();
        week().weekStatus = QStringLiteral("live");
    }
    [[nodiscard]] Assignment& week() { return const_cast<Assignment&>(store->assignment()); }
    void write(const QString& text) {
        week().agreed = false;
        week().agreementText = text;
        week().left = SlotCreative{QStringLiteral("left"), text, text + u'.', {}, {}};
        week().right = SlotCreative{QStringLiteral("right"), text + u'!', text, {}, {}};
    }
    static void paint(QWidget& widget) {
        QImage picture(widget.size(), QImage::Format_ARGB32_Premultiplied);
        widget.render(&picture, {}, {}, QWidget::DrawChildren);
        benchmark::DoNotOptimize(picture.constBits());
    }

    FakeCachesFolder caches;
    ReadingDecoder decoder;
    FakeReduceMotion reduceMotion;
    HostFixture host;
    CreativeImageCache images{{host.http, decoder, caches}, 1};
    std::shared_ptr<HostStore> store = host.makeStore();
    CreativeEnvironment environment{images, host.clock, reduceMotion};
};

struct Capsules final : Fixture {
    Capsules() {
        view.resize(428, 40);
        view.show();
    }
    void show(const QString& text) {
        write(text);
        runtime.apply(*store, 184, 32);
        QCoreApplication::sendPostedEvents();
        paint(view);
    }

    OverlayRuntime runtime{host.workspace};
    OverlayView view{runtime, environment};
};

struct Menu final : Fixture {
    void show(const QString& text) {
        write(text);
        view.hide();
        view.show();
        paint(view);
    }

    HostMenuView view{store, environment};
};

QStringList collection() {
    QStringList texts;
    const QDir folder(QStringLiteral(BRIMLET_CORPORA "/strings"));
    for (const QString& name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            texts += QString::fromUtf8(file.readAll()).split(u'\n');
        }
    }
    return texts;
}

/// One after the other, so that each differs from the one before.
template <typename View>
void show(benchmark::State& state, const QStringList& texts) {
    if (texts.isEmpty()) {
        state.SkipWithError("there is no collection of texts");
        return;
    }
    View view;
    double slowest = 0;
    qsizetype next = 0;
    for ([[maybe_unused]] const auto pass : state) {
        const auto before = std::clock();
        view.show(texts.at(next++ % texts.size()));
        slowest = std::max(slowest, double(std::clock() - before) / CLOCKS_PER_SEC * 1000);
    }
    state.counters["slowest ms"] = slowest;
}

void add(const std::string& name, const QStringList& texts) {
    const auto once = std::max<qsizetype>(texts.size(), 20);
    for (const auto& [where, function] :
         {std::pair("capsules, ", &show<Capsules>), std::pair("menu, ", &show<Menu>)}) {
        benchmark::RegisterBenchmark((where + name).c_str(), function, texts)
            ->Unit(benchmark::kMillisecond)
            ->Iterations(once)
            ->Repetitions(1); // a median of the slowest would say less
    }
}

const bool kAreRegistered = [] {
    const auto two = [](const QString& text) { return QStringList{text, text + u'x'}; };
    constexpr int kMillion = 1'000'000;
    add("ordinary", two(QStringLiteral("Quiet Bicycle")));
    add("an agreement of two pages", two(QStringLiteral("Words of an agreement. ").repeated(250)));
    add("the collection", collection());
    add("5 000 marks", two(u'a' + QString(5'000, QChar(0x0301))));
    add("a million letters", two(QString(kMillion, u'W')));
    add("a million letters in words", two(QStringLiteral("words ").repeated(kMillion / 6)));
    add("a million blanks", two(QString(kMillion, u' ')));
    add("a million breaks", two(QString(kMillion, u'\n')));
    add("a million marks", two(QString(kMillion, QChar(0x0301))));
    add("a million Arabic letters", two(QString(kMillion, QChar(0x0628))));
    add("a million overrides", two(QString(kMillion, QChar(0x202E))));
    return true;
}();

} // namespace
} // namespace brimlet
