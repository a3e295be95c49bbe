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

/// The other program: says whether it runs from now on, and then what is asked of it.
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
    const bool isFirst = lock.claim() == InstanceClaim::First;
    say(isFirst ? "first" : "second");
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
    [[nodiscard]] QString heard() {
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

    void withNobodyThereNobodyIsAsked() {
        const InstanceLock lock(file());
        QVERIFY(!lock.ask(InstanceRequest::Quit));
        QVERIFY(!QFileInfo::exists(file()));
    }

    void theSecondAsksTheFirstForItsPanel() {
        startOther();
        QCOMPARE(heard(), QStringLiteral("first"));
        InstanceLock lock(file());
        QCOMPARE(lock.claim(), InstanceClaim::Second);
        QCOMPARE(heard(), QStringLiteral("open"));
    }

    void theFirstIsAskedToPauseAndToQuit() {
        startOther();
        QCOMPARE(heard(), QStringLiteral("first"));
        const InstanceLock lock(file());
        QVERIFY(lock.ask(InstanceRequest::Pause));
        QCOMPARE(heard(), QStringLiteral("pause"));
        QVERIFY(lock.ask(InstanceRequest::Quit));
        QVERIFY(m_other.waitForFinished(kPatience));
        QCOMPARE(m_other.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_other.exitCode(), 0);
        QVERIFY(!lock.ask(InstanceRequest::Quit));
    }

    void oneThatWasKilledLeavesTheLock() {
        startOther();
        QCOMPARE(heard(), QStringLiteral("first"));
        m_other.kill();
        QVERIFY(m_other.waitForFinished(kPatience));
        QVERIFY(QFileInfo::exists(file()));
        startOther();
        QCOMPARE(heard(), QStringLiteral("first"));
    }

    void whereNoFileCanBeEveryoneIsTheFirst() {
        InstanceLock lock(m_folder.filePath(QStringLiteral("no/such/folder/lock")));
        QCOMPARE(lock.claim(), InstanceClaim::First);
        QVERIFY(!lock.ask(InstanceRequest::Open));
    }

    void oneThatCannotBeAskedIsNoAnswer() {
#ifdef F_OFD_SETLK
        // Such a lock is nobody's: the system names no process that holds it.
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
