#include "platform/qt/instancelock.h"
#include "platform/qt/unixsignals.h"
#include "tests/support/testprogram.h"

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

#include <fcntl.h>

using namespace brimlet;

namespace {

constexpr int kPatience = 15'000;

/// The other process: prints whether it is the first instance, and then each request to it.
int runOther(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    quitOnTerminationSignals();
    const auto print = [](const char* line) {
        std::puts(line);
        std::fflush(stdout);
    };
    InstanceLock lock(QString::fromLocal8Bit(argv[1]));
    QObject::connect(&lock, &InstanceLock::requested, qApp, [print](InstanceRequest request) {
        print(request == InstanceRequest::Open ? "open" : "pause");
    });
    const bool isFirst = lock.claim() == InstanceClaim::First;
    print(isFirst ? "first" : "second");
    return isFirst ? QCoreApplication::exec() : 0;
}

} // namespace

class TestInstanceLock final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    QProcess m_other;

    [[nodiscard]] QString file() const { return m_folder.filePath(QStringLiteral("lock")); }
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
    void cleanup() {
        m_other.kill();
        m_other.waitForFinished();
        QFile::remove(file());
    }

    void withoutARunningInstanceNoneIsAsked() {
        const InstanceLock lock(file());
        QVERIFY(!lock.ask(InstanceRequest::Quit));
        QVERIFY(!QFileInfo::exists(file()));
    }

    void theSecondInstanceAsksTheFirstToOpenItsPanel() {
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
        InstanceLock lock(file());
        QCOMPARE(lock.claim(), InstanceClaim::Second);
        QCOMPARE(nextLine(), QStringLiteral("open"));
    }

    void theFirstInstanceCanBeAskedToPauseAndToQuit() {
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
        const InstanceLock lock(file());
        QVERIFY(lock.ask(InstanceRequest::Pause));
        QCOMPARE(nextLine(), QStringLiteral("pause"));
        QVERIFY(lock.ask(InstanceRequest::Quit));
        QVERIFY(m_other.waitForFinished(kPatience));
        QCOMPARE(m_other.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_other.exitCode(), 0);
        QVERIFY(!lock.ask(InstanceRequest::Quit));
    }

    void aKilledInstanceReleasesTheLock() {
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
        m_other.kill();
        QVERIFY(m_other.waitForFinished(kPatience));
        QVERIFY(QFileInfo::exists(file()));
        startOther();
        QCOMPARE(nextLine(), QStringLiteral("first"));
    }

    void withoutALockFileEveryInstanceIsTheFirst() {
        InstanceLock lock(m_folder.filePath(QStringLiteral("no/such/folder/lock")));
        QCOMPARE(lock.claim(), InstanceClaim::First);
        QVERIFY(!lock.ask(InstanceRequest::Open));
    }

    void aLockWithoutAProcessIsNoAnswer() {
#ifdef F_OFD_SETLK
        // For such a lock the system names no process that holds it.
        QFile held(file());
        QVERIFY(held.open(QIODevice::ReadWrite));
        struct flock whole {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        QCOMPARE(::fcntl(held.handle(), F_OFD_SETLK, &whole), 0);
        InstanceLock lock(file());
        QCOMPARE(lock.claim(), InstanceClaim::NoAnswer);
#else
        QSKIP("no lock without a holder on this system");
#endif
    }
};

BRIMLET_TEST(TestInstanceLock, QCoreApplication)
BRIMLET_TEST_CHILD("--other", runOther)
#include "tst_instancelock.moc"
