#include "platform/qt/instancelock.h"
#include "platform/qt/unixsignals.h"
#include "tests/support/testprogram.h"

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <optional>

#include <fcntl.h>

using namespace brimlet;

namespace {

constexpr int kPatience = 15'000;

/// The other process: prints whether it is the first, then each request it receives.
int runOther(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    quitOnTerminationSignals();
    const auto say = [](const char* line) {
        std::puts(line);
        std::fflush(stdout);
    };
    InstanceLock lock(QString::fromLocal8Bit(argv[1]));
    QObject::connect(&lock, &InstanceLock::requested, qApp, [say](InstanceRequest request) {
        say(request == InstanceRequest::Open ? "open" : "pause");
    });
    const bool isFirst = !lock.claim();
    say(isFirst ? "first" : "second");
    return isFirst ? QCoreApplication::exec() : 0;
}

} // namespace

class TestInstanceLock final : public QObject {
    Q_OBJECT

    std::optional<QTemporaryDir> m_folder;
    QProcess m_other;

    [[nodiscard]] QString file() const { return m_folder->filePath(QStringLiteral("lock")); }
    void startOther() {
        m_other.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--other"), file()});
    }
    [[nodiscard]] QString nextLine() {
        if (!m_other.canReadLine()) {
            m_other.waitForReadyRead(kPatience);
        }
        return QString::fromUtf8(m_other.readLine().trimmed());
    }

private Q_SLOTS:
    void initTestCase() { m_folder.emplace(); }
    void cleanup() {
        m_other.kill();
        m_other.waitForFinished();
        QFile::remove(file());
    }

    void withNoneRunningNoRequestIsSent() {
        const InstanceLock lock(file());
        QCOMPARE(lock.ask(InstanceRequest::Quit), InstanceAnswer::NotRunning);
        QVERIFY(!QFileInfo::exists(file()));
    }

    void aSecondProcessHasTheFirstOpenItsPanel() {
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
        InstanceLock lock(file());
        QCOMPARE(lock.claim(), std::optional(InstanceAnswer::Done));
        QCOMPARE(nextLine(), QStringLiteral("open"));
    }

    void aSecondProcessOfTheSessionEndsWithoutARequest() {
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
        InstanceLock lock(file());
        QCOMPARE(lock.claim(StartReason::Session), std::optional(InstanceAnswer::Done));
        QCOMPARE(lock.ask(InstanceRequest::Pause), InstanceAnswer::Done);
        QCOMPARE(nextLine(), QStringLiteral("pause")); // the first line of all
    }

    void theFirstCanBeAskedToPauseAndToQuit() {
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
        const InstanceLock lock(file());
        QCOMPARE(lock.ask(InstanceRequest::Pause), InstanceAnswer::Done);
        QCOMPARE(nextLine(), QStringLiteral("pause"));
        QCOMPARE(lock.ask(InstanceRequest::Quit), InstanceAnswer::Done);
        QVERIFY(m_other.waitForFinished(kPatience));
        QCOMPARE(m_other.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_other.exitCode(), 0);
        QCOMPARE(lock.ask(InstanceRequest::Quit), InstanceAnswer::NotRunning);
    }

    void aKilledProcessReleasesTheLock() {
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
        m_other.kill();
        QVERIFY(m_other.waitForFinished(kPatience));
        QVERIFY(QFileInfo::exists(file()));
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
    }

    void withoutALockFileEveryProcessRuns() {
        InstanceLock lock(m_folder->filePath(QStringLiteral("no/such/folder/lock")));
        QVERIFY(!lock.claim());
        QCOMPARE(lock.ask(InstanceRequest::Open), InstanceAnswer::NotRunning);
    }

    void aHolderThatCannotBeReachedGivesNoAnswer() {
#ifdef F_OFD_SETLK
        // The kernel names no process as the holder of such a lock.
        QFile held(file());
        QVERIFY(held.open(QIODevice::ReadWrite));
        struct flock whole {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        QCOMPARE(::fcntl(held.handle(), F_OFD_SETLK, &whole), 0);
        InstanceLock lock(file());
        QCOMPARE(lock.claim(), std::optional(InstanceAnswer::NoAnswer));
#else
        QSKIP("this system has no locks without a process ID");
#endif
    }
};

BRIMLET_TEST(TestInstanceLock, QCoreApplication)
BRIMLET_TEST_CHILD("--other", runOther)
#include "tst_instancelock.moc"
