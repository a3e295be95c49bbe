#include "creative/creativeimagecache.h"
#include "host/linkrule.h"
#include "platform/deferred.h"
#include "platform/starttask.h"
#include "tests/support/fakehttpclient.h"
#include "tests/support/fakes.h"
#include "tests/support/pngbytes.h"
#include "tests/support/readingdecoder.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <deque>
#include <utility>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QString kAddress = QStringLiteral("https://images.test/a.png");
const QString kPath = QStringLiteral("/a.png");

Url url(const QString& text) {
    return *Url::fromString(text);
}

/// The result of one call: none yet, no image, or an image.
struct Answer final {
    bool isThere = false;
    std::optional<QImage> image;
};

QCoro::Task<> askFor(CreativeImageCache& cache, std::optional<Url> address,
                     std::shared_ptr<Answer> answer) {
    answer->image = co_await cache.image(std::move(address));
    answer->isThere = true;
}

struct CacheFixture final {
    CacheFixture() { caches.folder = home.filePath(QStringLiteral("caches")); }

    std::shared_ptr<Answer> ask(const std::optional<Url>& address) {
        auto answer = std::make_shared<Answer>();
        startTask(askFor(*cache, address, answer));
        return answer;
    }
    std::shared_ptr<Answer> ask() { return ask(url(kAddress)); }

    /// Makes a new cache over the same folder, as after a restart.
    void restart(std::uint64_t seed) {
        cache = std::make_unique<CreativeImageCache>(ImagePorts{http, decoder, caches}, seed);
    }
    [[nodiscard]] QString folder() const {
        return *caches.folder + QStringLiteral("/Brimlet/creatives");
    }
    [[nodiscard]] QStringList files() const {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    /// The path of the image's file: loads the image once, restarts the cache and removes the file.
    [[nodiscard]] QString findPath() {
        http.answer(kPath, 200, pngOf(Qt::red));
        (void)ask();
        http.clear();
        restart(1);
        const QString path = files().size() == 1 ? folder() + u'/' + files().at(0) : QString();
        QFile::remove(path);
        return path;
    }

    QTemporaryDir home;
    FakeCachesFolder caches;
    FakeClock clock;
    FakeHttpClient http{clock};
    ReadingDecoder decoder;
    std::unique_ptr<CreativeImageCache> cache =
        std::make_unique<CreativeImageCache>(ImagePorts{http, decoder, caches}, 1);
};

/// Answers when a test says so.
class PatientDecoder final : public PictureDecoder {
public:
    [[nodiscard]] QCoro::Task<std::optional<Picture>> decode(QByteArray bytes) override {
        const Deferred<std::optional<Picture>> result;
        waiting.push_back({readPicture(bytes), result});
        co_return co_await result;
    }
    void answer() {
        const auto [picture, result] = waiting.front();
        waiting.pop_front();
        result.resolve(picture);
    }

    std::deque<std::pair<std::optional<Picture>, Deferred<std::optional<Picture>>>> waiting;
};

/// Returns a body whatever the status and its length, as a client must not.
class FaultyClient final : public HttpClient {
public:
    explicit FaultyClient(HttpReply reply)
        : m_reply(std::move(reply)) {}
    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest /*request*/) override {
        HttpResult result = m_reply;
        co_return result;
    }

private:
    HttpReply m_reply;
};

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Makes writes of this process beyond this size fail, as on a full disk.
void limitFileSizes(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

/// Gives a folder and all in it to another user if this is root, for whom no folder is read-only.
bool giveToNobody(const QString& path) {
    if (geteuid() != 0) {
        return true;
    }
    constexpr uid_t kNobody = 65534;
    QDirIterator each(path, QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        if (chown(QFile::encodeName(each.next()).constData(), kNobody, kNobody) != 0) {
            return false;
        }
    }
    return chown(QFile::encodeName(path).constData(), kNobody, kNobody) == 0;
}

/// Makes root that user during its lifetime.
class Nobody final {
public:
    Nobody() {
        if (m_isRoot && seteuid(65534) != 0) {
            qFatal("root cannot be anybody else");
        }
    }
    ~Nobody() {
        if (m_isRoot && seteuid(0) != 0) {
            qFatal("root cannot be root again");
        }
    }
    Nobody(const Nobody&) = delete;
    Nobody& operator=(const Nobody&) = delete;

private:
    bool m_isRoot = geteuid() == 0;
};

} // namespace

class TestImageCache final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theImageComesFromTheNetworkOnceThenFromMemory() {
        CacheFixture f;
        const QByteArray bytes = pngOf(Qt::red);
        f.http.answer(kPath, 200, bytes);
        const auto first = f.ask();
        QVERIFY(first->isThere);
        QCOMPARE(first->image->size(), QSize(32, 32));
        QCOMPARE(first->image->pixelColor(5, 5), QColor(Qt::red));
        QCOMPARE(f.http.log(), QStringList{QStringLiteral("GET /a.png")});
        // From memory: the file is gone.
        QVERIFY(QDir(f.folder()).removeRecursively());
        const auto second = f.ask();
        QVERIFY(second->isThere);
        QCOMPARE(second->image->cacheKey(), first->image->cacheKey());
        QCOMPARE(f.http.requests().size(), std::size_t{1});
        QVERIFY(!QDir(f.folder()).exists());
    }

    void anImageInMemoryIsReturnedAgainAndAgain() {
        CacheFixture f;
        f.http.answer(kPath, 200, pngOf(Qt::red));
        for (int i = 0; i < 5; ++i) {
            const auto answer = f.ask();
            QVERIFY(answer->isThere);
            QVERIFY(answer->image);
            QCOMPARE(answer->image->pixelColor(5, 5), QColor(Qt::red));
        }
        QCOMPARE(f.http.requests().size(), std::size_t{1});
    }

    void theRequestContainsNothingButTheAddress() {
        CacheFixture f;
        (void)f.ask();
        const HttpRequest& request = f.http.requests().at(0);
        QCOMPARE(request.url.absoluteString(), kAddress);
        QCOMPARE(request.method, QByteArray("GET"));
        QVERIFY(request.headers.empty());
        QVERIFY(!request.body);
        QCOMPARE(request.bodyLimit, 4 * 1024 * 1024);
        QCOMPARE(request.lastStatusWithBody, 299);
    }

    void everyHopPassesTheLinkRule_data() {
        QTest::addColumn<QString>("to");
        QTest::newRow("elsewhere, encrypted") << QStringLiteral("https://other.test/b.png");
        QTest::newRow("this machine") << QStringLiteral("http://127.0.0.1:8791/b.png");
        QTest::newRow("not encrypted") << QStringLiteral("http://other.test/b.png");
        QTest::newRow("a file") << QStringLiteral("file:///etc/passwd");
        QTest::newRow("in capitals") << QStringLiteral("HTTPS://other.test/b.png");
    }
    void everyHopPassesTheLinkRule() {
        QFETCH(QString, to);
        CacheFixture f;
        (void)f.ask();
        const HttpRequest& request = f.http.requests().at(0);
        QCOMPARE(request.mayFollow(request.url, url(to)), isAllowedLink(url(to)));
    }

    void anAbsentOrRefusedAddressCausesNoRequestAndNoFile_data() {
        QTest::addColumn<QString>("address");
        QTest::newRow("absent") << QString();
        QTest::newRow("not encrypted") << QStringLiteral("http://images.test/a.png");
        QTest::newRow("in capitals") << QStringLiteral("HTTPS://images.test/a.png");
        QTest::newRow("a file") << QStringLiteral("file:///a.png");
        QTest::newRow("a look-alike of this machine") << QStringLiteral("http://127.1/a.png");
        QTest::newRow("relative") << QStringLiteral("/a.png");
        QTest::newRow("data") << QStringLiteral("data:image/png;base64,AAAA");
    }
    void anAbsentOrRefusedAddressCausesNoRequestAndNoFile() {
        QFETCH(QString, address);
        CacheFixture f;
        const auto answer = f.ask(Url::fromString(address));
        QVERIFY(answer->isThere);
        QVERIFY(!answer->image);
        QVERIFY(f.http.requests().empty());
        QVERIFY(!QDir(*f.caches.folder).exists());
    }

    void imagesFromThisMachineAreAllowed() {
        CacheFixture f;
        f.http.answer(kPath, 200, pngOf(Qt::red));
        QVERIFY(f.ask(url(QStringLiteral("http://127.0.0.1:8791/a.png")))->image);
        QVERIFY(f.ask(url(QStringLiteral("http://[::1]/a.png")))->image);
    }

    void concurrentCallsShareOneDownload() {
        CacheFixture f;
        f.http.answer(kPath, HttpReply{200, pngOf(Qt::red)}, 2s);
        const auto first = f.ask();
        f.clock.advance(1s);
        const auto second = f.ask();
        const auto third = f.ask();
        const auto other = f.ask(url(kAddress + u'?'));
        QVERIFY(!first->isThere && !second->isThere && !third->isThere);
        f.clock.advance(1s);
        QVERIFY(first->isThere && second->isThere && third->isThere);
        QVERIFY(!other->isThere);
        QCOMPARE(second->image->cacheKey(), first->image->cacheKey());
        QCOMPARE(third->image->cacheKey(), first->image->cacheKey());
        QCOMPARE(f.http.requests().size(), std::size_t{2}); // the other address has its own
    }

    void concurrentCallsShareAFailure() {
        CacheFixture f;
        f.http.hang(kPath);
        const auto first = f.ask();
        const auto second = f.ask();
        f.clock.advance(60s);
        QVERIFY(first->isThere && second->isThere);
        QVERIFY(!first->image && !second->image);
        QCOMPARE(f.http.requests().size(), std::size_t{1});
    }

    void whatIsNoImageLeavesNoFileAndIsTriedAgain_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("not found") << 404 << pngOf(Qt::red);
        QTest::newRow("moved") << 302 << pngOf(Qt::red);
        QTest::newRow("not modified") << 304 << QByteArray();
        QTest::newRow("failing") << 503 << pngOf(Qt::red);
        QTest::newRow("just above") << 300 << pngOf(Qt::red);
        QTest::newRow("just below") << 199 << pngOf(Qt::red);
        QTest::newRow("a page") << 200 << QByteArray("<!DOCTYPE html><html></html>");
        QTest::newRow("a drawing")
            << 200 << QByteArray("<svg xmlns='http://www.w3.org/2000/svg'/>");
        QTest::newRow("nothing") << 200 << QByteArray();
        QTest::newRow("cut short") << 200 << pngOf(Qt::red).chopped(20);
        QTest::newRow("too large a body") << 200 << QByteArray(4 * 1024 * 1024 + 1, '\0');
    }
    void whatIsNoImageLeavesNoFileAndIsTriedAgain() {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        CacheFixture f;
        f.http.answer(kPath, status, body);
        const auto failed = f.ask();
        QVERIFY(failed->isThere);
        QVERIFY(!failed->image);
        QCOMPARE(f.files(), QStringList());
        f.http.answer(kPath, 200, pngOf(Qt::red));
        QVERIFY(f.ask()->image);
        QCOMPARE(f.http.requests().size(), std::size_t{2});
    }

    void aBodyUpToTheLimitIsShownAndKept_data() {
        QTest::addColumn<qsizetype>("size");
        QTest::addColumn<bool>("isShown");
        constexpr qsizetype limit = qsizetype{4} * 1024 * 1024;
        QTest::newRow("just below") << limit - 1 << true;
        QTest::newRow("at the limit") << limit << true;
        QTest::newRow("just above") << limit + 1 << false;
    }
    void aBodyUpToTheLimitIsShownAndKept() {
        QFETCH(qsizetype, size);
        QFETCH(bool, isShown);
        CacheFixture f;
        const HttpReply reply{200, pngOf(Qt::red).leftJustified(size, ' ')};
        FaultyClient http(reply); // even if the client returns too long a body
        f.cache = std::make_unique<CreativeImageCache>(ImagePorts{http, f.decoder, f.caches}, 1);
        QCOMPARE(f.ask()->image.has_value(), isShown);
        QCOMPARE(f.files().size(), isShown ? 1 : 0);
        f.restart(2);
        f.http.answer(kPath, reply);
        QCOMPARE(f.ask()->image.has_value(), isShown);
    }

    void callsWhileAPictureIsDecodedShareItAndNoFileIsWrittenBefore() {
        CacheFixture f;
        PatientDecoder decoder;
        f.cache = std::make_unique<CreativeImageCache>(ImagePorts{f.http, decoder, f.caches}, 1);
        f.http.answer(kPath, 200, pngOf(Qt::red));
        const auto first = f.ask();
        const auto second = f.ask();
        QVERIFY(!first->isThere && !second->isThere);
        QCOMPARE(decoder.waiting.size(), std::size_t{1});
        QCOMPARE(f.files(), QStringList());
        decoder.answer();
        QVERIFY(first->image && second->image);
        QCOMPARE(*first->image, *second->image);
        QCOMPARE(f.http.requests().size(), std::size_t{1});
        QCOMPARE(f.files().size(), 1);
    }

    void aLoadOutlivesTheCache() {
        CacheFixture f;
        PatientDecoder decoder;
        f.cache = std::make_unique<CreativeImageCache>(ImagePorts{f.http, decoder, f.caches}, 1);
        f.http.answer(kPath, 200, pngOf(Qt::red));
        const auto answer = f.ask();
        f.cache.reset();
        decoder.answer();
        QVERIFY(answer->image);
    }

    void anotherStatusIsNoImageEvenWithABody_data() {
        QTest::addColumn<int>("status");
        for (const int status : {199, 300, 302, 304, 404, 503}) {
            QTest::addRow("%d", status) << status;
        }
    }
    void anotherStatusIsNoImageEvenWithABody() {
        QFETCH(int, status);
        CacheFixture f;
        FaultyClient http({status, pngOf(Qt::red)});
        f.cache = std::make_unique<CreativeImageCache>(ImagePorts{http, f.decoder, f.caches}, 1);
        QVERIFY(!f.ask()->image);
        QCOMPARE(f.files(), QStringList());
    }

    void everyStatusOfSuccessCounts_data() {
        QTest::addColumn<int>("status");
        QTest::newRow("200") << 200;
        QTest::newRow("203") << 203;
        QTest::newRow("299") << 299;
    }
    void everyStatusOfSuccessCounts() {
        QFETCH(int, status);
        CacheFixture f;
        f.http.answer(kPath, status, pngOf(Qt::red));
        QVERIFY(f.ask()->image);
    }

    void transfersThatFailAreTriedAgain_data() {
        QTest::addColumn<int>("error");
        QTest::newRow("refused") << int(HttpError::Unreachable);
        QTest::newRow("cut") << int(HttpError::Broken);
        QTest::newRow("too large") << int(HttpError::TooLarge);
        QTest::newRow("not fetchable") << int(HttpError::BadRequest);
    }
    void transfersThatFailAreTriedAgain() {
        QFETCH(int, error);
        CacheFixture f;
        f.http.answer(kPath, static_cast<HttpError>(error));
        QVERIFY(!f.ask()->image);
        QVERIFY(!f.ask()->image);
        QCOMPARE(f.http.requests().size(), std::size_t{2});
        QCOMPARE(f.files(), QStringList());
    }

    void theFileHoldsTheBytesAsReceived() {
        CacheFixture f;
        const QByteArray bytes = pngOf(Qt::red, {300, 200}) + "bytes after the end";
        f.http.answer(kPath, 200, bytes);
        const auto answer = f.ask();
        QCOMPARE(answer->image->size(), QSize(128, 85));
        QCOMPARE(f.files().size(), 1);
        QCOMPARE(contentOf(f.folder() + u'/' + f.files().at(0)), bytes);
    }

    void theFilesNameIsADecimalMagnitude() {
        CacheFixture f;
        f.http.answer(kPath, 200, pngOf(Qt::red));
        QSet<QString> names;
        for (std::uint64_t seed = 0; seed < 200; ++seed) {
            f.restart(seed);
            (void)f.ask();
            QCOMPARE(f.files().size(), 1);
            const QString name = f.files().at(0);
            names << name;
            bool isNumber = false;
            const quint64 number = name.toULongLong(&isNumber);
            QVERIFY(isNumber);
            QCOMPARE(QString::number(number), name);
            QVERIFY(number <= quint64{1} << 63);
            QVERIFY(QFile::remove(f.folder() + u'/' + name));
        }
        QCOMPARE(names.size(), 200);
    }

    void withinARunTheFileIsFoundByName() {
        CacheFixture f;
        f.http.answer(kPath, 200, pngOf(Qt::red));
        (void)f.ask();
        const QStringList before = f.files();
        const QString path = f.folder() + u'/' + before.at(0);
        // An open file that was replaced would have no link any more.
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        f.restart(1);
        const auto answer = f.ask();
        QVERIFY(answer->image);
        QCOMPARE(f.http.requests().size(), std::size_t{1});
        QCOMPARE(f.files(), before);
        struct stat open {};
        QCOMPARE(fstat(file.handle(), &open), 0);
        QCOMPARE(open.st_nlink, nlink_t{1});
    }

    void aNewRunDoesNotFindEarlierFiles() {
        CacheFixture f;
        f.http.answer(kPath, 200, pngOf(Qt::red));
        (void)f.ask();
        f.restart(2);
        (void)f.ask();
        QCOMPARE(f.http.requests().size(), std::size_t{2});
        QCOMPARE(f.files().size(), 2); // and the earlier one is not removed
    }

    void theSeedIsOnePerRun() {
        CacheFixture f;
        f.http.answer(kPath, 200, pngOf(Qt::red));
        for (int i = 0; i < 2; ++i) {
            f.cache = std::make_unique<CreativeImageCache>(ImagePorts{f.http, f.decoder, f.caches});
            QVERIFY(f.ask()->image);
        }
        QCOMPARE(f.http.requests().size(), std::size_t{1});
        QCOMPARE(f.files().size(), 1);
    }

    void anotherAddressIsAnotherFile() {
        CacheFixture f;
        f.http.answer(kPath, 200, pngOf(Qt::red));
        f.http.answer(kPath + u'?', 200, pngOf(Qt::blue));
        (void)f.ask();
        QCOMPARE(f.ask(url(kAddress + u'?'))->image->pixelColor(1, 1), QColor(Qt::blue));
        QCOMPARE(f.files().size(), 2);
    }

    void aBrokenFileIsFetchedAgainAndReplaced_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("garbage") << QByteArray("garbage");
        QTest::newRow("too long") << pngOf(Qt::green) + QByteArray(4 * 1024 * 1024, '\0');
    }
    void aBrokenFileIsFetchedAgainAndReplaced() {
        QFETCH(QByteArray, content);
        CacheFixture f;
        const QString path = f.findPath();
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        const QByteArray bytes = pngOf(Qt::red);
        f.http.answer(kPath, 200, bytes);
        QVERIFY(f.ask()->image);
        QCOMPARE(contentOf(path), bytes);
    }

    void aBadCachesFolderLeavesTheImageInMemory_data() {
        QTest::addColumn<QByteArray>("fault");
        for (const char* fault : {"missing", "read-only", "a file in its place", "a file as parent",
                                  "a folder as the file", "full", "nowhere"}) {
            QTest::newRow(fault) << QByteArray(fault);
        }
    }
    void aBadCachesFolderLeavesTheImageInMemory() {
        QFETCH(QByteArray, fault);
        CacheFixture f;
        const auto fill = [](const QString& path) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
        };
        const QString folder = f.folder();
        std::optional<Nobody> nobody;
        if (fault == "read-only") {
            QVERIFY(QDir().mkpath(folder));
            QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
            QVERIFY(f.home.isValid() && giveToNobody(f.home.path()));
            nobody.emplace();
            QVERIFY(QDir(folder).isReadable());
            QVERIFY(!QFile(folder + QStringLiteral("/file")).open(QIODevice::WriteOnly));
        } else if (fault == "a file in its place") {
            QVERIFY(QDir().mkpath(*f.caches.folder + QStringLiteral("/Brimlet")));
            fill(folder);
        } else if (fault == "a file as parent") {
            fill(*f.caches.folder);
        } else if (fault == "a folder as the file") {
            QVERIFY(QDir().mkpath(f.findPath()));
        } else if (fault == "full") {
            limitFileSizes(10);
        } else if (fault == "nowhere") {
            f.caches.folder = QStringLiteral("/proc/brimlet");
        }
        f.http.answer(kPath, 200, pngOf(Qt::red));
        QVERIFY(f.ask()->image);
        QVERIFY(f.ask()->image);
        QCOMPARE(f.http.requests().size(), std::size_t{1});
        limitFileSizes(RLIM_INFINITY);
        QVERIFY(fault == "missing" || fault == "a folder as the file" || f.files().isEmpty());
        nobody.reset();
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void withoutACachesFolderTheProgramEnds() {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--no-folder")});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        QVERIFY(program.readAllStandardError().contains("no caches folder"));
    }

    void aLoadMayOutliveItsCache() {
        CacheFixture f;
        f.http.answer(kPath, HttpReply{200, pngOf(Qt::red)}, 1s);
        const auto first = f.ask();
        const auto second = f.ask();
        f.cache.reset();
        f.clock.advance(1s);
        QVERIFY(first->image && second->image);
    }
};

/// What ends the program.
static int askWithoutCachesFolder(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    CacheFixture f;
    f.caches.folder.reset();
    (void)f.ask();
    return 0;
}

BRIMLET_TEST(TestImageCache, QCoreApplication)
BRIMLET_TEST_CHILD("--no-folder", askWithoutCachesFolder)

#include "tst_imagecache.moc"
