// What a text of strangers costs from the moment that it is there until it is painted, in a capsule
// and in the open menu: ordinary ones, a whole collection of odd ones, and those as long as a reply
// can hold.

#include "creative/creativeimagecache.h"
#include "menu/hostmenuview.h"
#include "overlay/overlayruntime.h"
#include "overlay/overlayview.h"
#include "tests/support/hostfixture.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>

namespace brimlet {
namespace {

/// Folders and fakes below both views, and a live week that is written by hand.
struct Stage {
    Stage() {
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
    /// Paints what the widget shows.
    static void paint(QWidget& widget) {
        QImage picture(widget.size(), QImage::Format_ARGB32_Premultiplied);
        widget.render(&picture, {}, {}, QWidget::DrawChildren);
        benchmark::DoNotOptimize(picture.constBits());
    }

    FakeCachesFolder caches;
    FakeReduceMotion reduceMotion;
    HostFixture host;
    CreativeImageCache images{{host.http, caches}, 1};
    std::shared_ptr<HostStore> store = host.makeStore();
    CreativeEnvironment environment{images, host.clock, reduceMotion};
};

struct Capsules final : Stage {
    Capsules() {
        view.resize(428, 40);
        view.show();
    }
    void show(const QString& text) {
        write(text);
        runtime.apply(*store, 184, 32);
        QCoreApplication::sendPostedEvents(&view);
        paint(view);
    }

    OverlayRuntime runtime{host.workspace};
    OverlayView view{runtime, environment};
};

struct Menu final : Stage {
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

/// One after the other, so that each is new. The slowest is what counts: it has 50 ms.
template <typename View>
void show(benchmark::State& state, const QStringList& texts) {
    if (texts.isEmpty()) {
        state.SkipWithError("there is no collection of texts");
        return;
    }
    View view;
    double slowest = 0;
    int at = 0;
    for ([[maybe_unused]] const auto pass : state) {
        const QString& text = texts.at(at++ % int(texts.size()));
        const auto before = std::clock();
        view.show(text);
        const double cost = double(std::clock() - before) / CLOCKS_PER_SEC * 1000;
        slowest = std::max(slowest, cost);
    }
    state.counters["slowest ms"] = slowest;
}

void add(const std::string& name, const QStringList& texts) {
    const auto run = [&](const char* where, void (*each)(benchmark::State&, const QStringList&)) {
        const auto once = std::max<qsizetype>(texts.size(), 20);
        benchmark::RegisterBenchmark((where + name).c_str(), each, texts)
            ->Unit(benchmark::kMillisecond)
            ->Iterations(once);
    };
    run("capsules, ", &show<Capsules>);
    run("menu, ", &show<Menu>);
}

/// Two that differ, so that showing one after the other is never showing the same.
void addTwo(const char* name, const QString& text) {
    add(name, {text, text + u'x'});
}

void addAll() {
    constexpr int kMillion = 1'000'000;
    addTwo("ordinary", QStringLiteral("Quiet Bicycle"));
    addTwo("an agreement of two pages", QStringLiteral("Words of an agreement. ").repeated(250));
    add("the collection", collection());
    addTwo("5 000 marks", u'a' + QString(5'000, QChar(0x0301)));
    addTwo("a million letters", QString(kMillion, u'W'));
    addTwo("a million letters in words", QStringLiteral("words ").repeated(kMillion / 6));
    addTwo("a million blanks", QString(kMillion, u' '));
    addTwo("a million breaks", QString(kMillion, u'\n'));
    addTwo("a million marks", QString(kMillion, QChar(0x0301)));
    addTwo("a million Arabic letters", QString(kMillion, QChar(0x0628)));
    addTwo("a million overrides", QString(kMillion, QChar(0x202E)));
}

} // namespace
} // namespace brimlet

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    brimlet::addAll();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
