#include "platform/qt/pictureprocess.h"
#include "platform/starttask.h"
#include "tests/support/emulated.h"
#include "tests/support/goodfiles.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <unistd.h>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const int kPatience = 15'000 * slowness();

using Answers = std::vector<std::optional<Picture>>;

QCoro::Task<> ask(PictureDecoder& decoder, QByteArray bytes, std::shared_ptr<Answers> answers) {
    auto picture = co_await decoder.decode(std::move(bytes));
    answers->push_back(std::move(picture));
}

/// Waits for the answer.
std::optional<Picture> decoded(PictureDecoder& decoder, const QByteArray& bytes) {
    const auto answers = std::make_shared<Answers>();
    startTask(ask(decoder, bytes, answers));
    return QTest::qWaitFor([&answers] { return !answers->empty(); }, kPatience) ? answers->front()
                                                                                : std::nullopt;
}

/// The processes that this one has started and not yet reaped.
QByteArray childProcesses() {
    const QString self = QString::number(getpid());
    QFile file(QStringLiteral("/proc/%1/task/%1/children").arg(self));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray("unknown");
}

} // namespace

class TestPictureProcess final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

    /// A program that runs this shell script.
    [[nodiscard]] QString scripted(const QByteArray& script, QFile::Permissions more = {}) const {
        const QString path = m_folder.filePath(QStringLiteral("script"));
        QFile::remove(path);
        QFile file(path);
        [&] { QVERIFY(file.open(QIODevice::WriteOnly)); }();
        file.write("#!/bin/sh\n" + script + '\n');
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | more);
        return path;
    }
    [[nodiscard]] static QString realProgram() { return programPath(u"brimlet-picture"); }

private Q_SLOTS:
    void goodPicturesAreDecoded_data() {
        QTest::addColumn<QByteArray>("bytes");
        for (const auto& [name, bytes] : samples::goodFiles()) {
            QTest::newRow(name) << bytes;
        }
    }
    void goodPicturesAreDecoded() {
        QFETCH(QByteArray, bytes);
        PictureProcess process(realProgram());
        const auto picture = decoded(process, bytes);
        QVERIFY(picture);
        QCOMPARE(picture->width, 40);
        QCOMPARE(picture->height, 30);
        QCOMPARE(childProcesses(), QByteArray());
    }

    void theLargestPicturesAreDecoded_data() {
        QTest::addColumn<QByteArray>("bytes");
        const auto plain = [](QImage::Format format) {
            QImage picture(4096, 4096, format);
            picture.fill(QColor(200, 100, 50));
            return picture;
        };
        QTest::newRow("PNG") << samples::png(plain(QImage::Format_ARGB32));
        QTest::newRow("PNG of one bit") << samples::png(plain(QImage::Format_Mono));
        QTest::newRow("deep PNG") << samples::png(plain(QImage::Format_RGBA64));
        QTest::newRow("interlaced PNG") << samples::interlacedPng(plain(QImage::Format_ARGB32));
        QTest::newRow("JPEG") << samples::jpeg(plain(QImage::Format_RGB32));
        QTest::newRow("progressive JPEG") << samples::jpeg(plain(QImage::Format_RGB32), true);
        QTest::newRow("GIF") << samples::plainGif(QSize(4096, 4096));
        QTest::newRow("lossy WebP") << samples::webp(plain(QImage::Format_RGB32), false);
        QTest::newRow("lossless WebP") << samples::webp(plain(QImage::Format_ARGB32), true);
    }
    void theLargestPicturesAreDecoded() {
        QFETCH(QByteArray, bytes);
        // Patient, since the machine may be busy.
        PictureProcess process(realProgram(), 10s);
        QElapsedTimer time;
        time.start();
        const auto picture = decoded(process, bytes);
        if (!picture && slowness() > 1 && time.elapsed() > 3000) {
            QSKIP(
                "an emulated processor needs more than the three seconds of CPU that it is given");
        }
        QVERIFY(picture);
        QCOMPARE(picture->width, 128);
        QCOMPARE(picture->height, 128);
    }

    void aPictureThatTakesTooLongIsGivenUp() {
        PictureProcess process(realProgram());
        // Some hundred million pixels for a picture of 256.
        QVERIFY(!decoded(process, samples::endlessGif(QSize(16, 16), 2'000'000)));
        QVERIFY(decoded(process, samples::goodFiles().front().second));
    }

    void manyAreDecodedOneAfterTheOther() {
        PictureProcess process(realProgram());
        const auto answers = std::make_shared<Answers>();
        const auto files = samples::goodFiles();
        for (const auto& [name, bytes] : files) {
            startTask(ask(process, bytes, answers));
            startTask(ask(process, "no picture", answers));
            QVERIFY(childProcesses().split(' ').size() <= 1);
        }
        QTRY_COMPARE_WITH_TIMEOUT(answers->size(), std::size_t(2 * files.size()), kPatience);
        for (std::size_t i = 0; i < answers->size(); ++i) {
            QCOMPARE(answers->at(i).has_value(), i % 2 == 0);
        }
    }

    void picturesThatWaitTakeABoundedAmountOfMemory() {
        PictureProcess process(realProgram());
        const auto answers = std::make_shared<Answers>();
        const QByteArray large(4 * 1024 * 1024, 'x');
        for (int i = 0; i < 4; ++i) {
            startTask(ask(process, large, answers));
        }
        QCOMPARE(answers->size(), std::size_t{0});
        startTask(ask(process, "one byte too many is no picture", answers));
        QCOMPARE(*answers, Answers{std::nullopt});
        QTRY_COMPARE_WITH_TIMEOUT(answers->size(), std::size_t{5}, kPatience);
        QVERIFY(decoded(process, samples::goodFiles().front().second));
    }

    void whatACaptiveTriesIsNoPictureAndTheNextOneLoads_data() {
        QTest::addColumn<QByteArray>("deed");
        for (const char* const deed : {"open", "connect", "fork", "exec", "descriptor", "print",
                                       "code", "kill", "memory", "loop", "crash", "flood"}) {
            QTest::newRow(deed) << QByteArray(deed);
        }
    }
    void whatACaptiveTriesIsNoPictureAndTheNextOneLoads() {
        QFETCH(QByteArray, deed);
        const QByteArray captive = QFile::encodeName(programPath(u"brimlet-captive"));
        {
            PictureProcess idle(scripted("exec " + captive + " nothing"), 2s * slowness());
            QVERIFY(decoded(idle, "any")); // it does answer when it tries nothing
        }
        PictureProcess process(scripted("test \"$(cat)\" = good && exec " + captive +
                                        " nothing; exec " + captive + ' ' + deed),
                               700ms * slowness());
        QVERIFY(!decoded(process, "bad"));
        QVERIFY(decoded(process, "good"));
        QCOMPARE(childProcesses(), QByteArray());
    }

    void anyOtherEndIsNoPicture_data() {
        QTest::addColumn<QByteArray>("script");
        QTest::newRow("says nothing") << QByteArray("exit 0");
        QTest::newRow("fails") << QByteArray("exit 1");
        QTest::newRow("takes nothing and waits") << QByteArray("exec sleep 60");
        QTest::newRow("says something else") << QByteArray("echo picture");
        QTest::newRow("never ends a flood") << QByteArray("exec yes");
        QTest::newRow("segmentation fault") << QByteArray("kill -SEGV $$");
        QTest::newRow("system call") << QByteArray("kill -SYS $$");
        QTest::newRow("killed") << QByteArray("kill -KILL $$");
        QTest::newRow("stopped") << QByteArray("kill -STOP $$");
    }
    void anyOtherEndIsNoPicture() {
        QFETCH(QByteArray, script);
        PictureProcess process(scripted(script), 300ms * slowness());
        // More than a pipe takes.
        QVERIFY(!decoded(process, QByteArray(1'000'000, 'x')));
        QCOMPARE(childProcesses(), QByteArray());
    }

    void onlyATrustworthyProgramIsStarted_data() {
        QTest::addColumn<QFile::Permissions>("more");
        QTest::addColumn<bool>("isStarted");
        QTest::newRow("its owner's alone") << QFile::Permissions() << true;
        QTest::newRow("readable by all")
            << (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther) << true;
        QTest::newRow("writable by the group") << QFile::Permissions(QFile::WriteGroup) << false;
        QTest::newRow("writable by others") << QFile::Permissions(QFile::WriteOther) << false;
    }
    void onlyATrustworthyProgramIsStarted() {
        QFETCH(QFile::Permissions, more);
        QFETCH(bool, isStarted);
        PictureProcess process(scripted(
            "exec " + QFile::encodeName(programPath(u"brimlet-captive")) + " nothing", more));
        QCOMPARE(decoded(process, "any").has_value(), isStarted);
    }

    void aProgramOfSomebodyElseIsNotStarted() {
        if (geteuid() != 0) {
            QSKIP("only root can give a file away");
        }
        const QString path =
            scripted("exec " + QFile::encodeName(programPath(u"brimlet-captive")) + " nothing",
                     QFile::ReadOther | QFile::ExeOther);
        QCOMPARE(chown(QFile::encodeName(path).constData(), 65534, 65534), 0);
        PictureProcess process(path, 2s * slowness());
        QVERIFY(!decoded(process, "any"));
    }

    void aMissingProgramIsNoPicture_data() {
        QTest::addColumn<QString>("program");
        QTest::newRow("missing") << QStringLiteral("/no/such/program");
        QTest::newRow("a folder") << m_folder.path();
        QTest::newRow("no program") << scripted("").append(QStringLiteral(".txt"));
        QTest::newRow("nothing") << QString();
    }
    void aMissingProgramIsNoPicture() {
        QFETCH(QString, program);
        PictureProcess process(program);
        QVERIFY(!decoded(process, "any"));
        QVERIFY(!decoded(process, "any"));
    }

    void aProgramOfAnotherVersionDecodesNothing() {
        PictureProcess process(scripted("exec " + QFile::encodeName(realProgram()) + " 0.0.0"));
        QVERIFY(!decoded(process, samples::goodFiles().front().second));
    }

    void noOtherDecoderIsInTheProgram() {
        QProcess program;
        program.start(realProgram(), {QStringLiteral(BRIMLET_VERSION)});
        QVERIFY(program.waitForStarted());
        const auto read = [&program](const char* name) {
            QFile file(QStringLiteral("/proc/%1/%2")
                           .arg(program.processId())
                           .arg(QLatin1StringView(name)));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        // It waits for bytes when the filter is in effect.
        QTRY_VERIFY_WITH_TIMEOUT(read("status").contains("Seccomp:\t2"), kPatience);
        const QList<QByteArray> maps = read("maps").split('\n');
        program.kill();
        QVERIFY(program.waitForFinished());
        if (maps.size() < 2) {
            QSKIP("only root can look into a process that cannot be dumped");
        }
        QStringList loaded;
        for (const QByteArray& line : maps) {
            const QString name = QFileInfo(QString::fromLocal8Bit(line)).baseName();
            if (line.contains("/plugins/") && !loaded.contains(name)) {
                loaded << name;
            }
        }
        loaded.sort();
        QCOMPARE(loaded, (QStringList{QStringLiteral("libqgif"), QStringLiteral("libqjpeg"),
                                      QStringLiteral("libqwebp")}));
    }

    void theProgramInheritsNothing() {
        qputenv("BRIMLET_TEST_SECRET", "secret");
        const QString told = m_folder.filePath(QStringLiteral("told"));
        PictureProcess process(scripted("env > " + QFile::encodeName(told)));
        QVERIFY(!decoded(process, "any"));
        qunsetenv("BRIMLET_TEST_SECRET");
        QFile file(told);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray environment = file.readAll();
        QVERIFY(environment.contains("LC_ALL=C"));
        QVERIFY(!environment.contains("secret"));
        QVERIFY(!environment.contains("HOME="));
    }

    void quittingKillsTheProcessAndAnswersAll() {
        const auto answers = std::make_shared<Answers>();
        {
            PictureProcess process(scripted("exec sleep 60"));
            startTask(ask(process, "one", answers));
            startTask(ask(process, "two", answers));
            QTRY_VERIFY_WITH_TIMEOUT(!childProcesses().isEmpty(), kPatience);
        }
        QCOMPARE(childProcesses(), QByteArray());
        QCOMPARE(*answers, (Answers{std::nullopt, std::nullopt}));
    }
};

BRIMLET_TEST(TestPictureProcess, QCoreApplication)
#include "tst_process.moc"
