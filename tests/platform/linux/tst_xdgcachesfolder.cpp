#include "platform/linux/xdgcachesfolder.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <pwd.h>
#include <unistd.h>

using namespace brimlet;

class XdgCachesFolderTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theEnvironmentDecides_data() {
        QTest::addColumn<QByteArray>("caches");
        QTest::addColumn<QByteArray>("home");
        QTest::addColumn<QString>("path");
        const QByteArray unset;
        QTest::newRow("caches folder named") << QByteArray("/var/tmp/mine") << QByteArray("/home/h")
                                             << QStringLiteral("/var/tmp/mine");
        QTest::newRow("slash at the end") << QByteArray("/var/tmp/mine/") << QByteArray("/home/h")
                                          << QStringLiteral("/var/tmp/mine");
        QTest::newRow("not absolute")
            << QByteArray("mine") << QByteArray("/home/h") << QStringLiteral("/home/h/.cache");
        QTest::newRow("empty") << QByteArray("") << QByteArray("/home/h")
                               << QStringLiteral("/home/h/.cache");
        QTest::newRow("unset") << unset << QByteArray("/home/h/")
                               << QStringLiteral("/home/h/.cache");
        QTest::newRow("home beyond ASCII")
            << unset << QByteArray("/home/J\xc3\xb6rg") << QStringLiteral("/home/Jörg/.cache");
        QTest::newRow("without a home")
            << QByteArray("/var/tmp/mine") << unset << QStringLiteral("/var/tmp/mine");
        const passwd* const user = getpwuid(getuid());
        const QString noted =
            user == nullptr ? QStringLiteral("/nonexistent") : QFile::decodeName(user->pw_dir);
        const QString notedCaches = QDir::cleanPath(noted + QStringLiteral("/.cache"));
        QTest::newRow("nothing at all") << unset << unset << notedCaches;
        QTest::newRow("nothing absolute")
            << QByteArray("mine") << QByteArray("home") << notedCaches;
    }

    void theEnvironmentDecides() {
        QFETCH(const QByteArray, caches);
        QFETCH(const QByteArray, home);
        QFETCH(const QString, path);
        const auto set = [](const char* name, const QByteArray& value) {
            return value.isNull() ? qunsetenv(name) : qputenv(name, value);
        };
        QVERIFY(set("XDG_CACHE_HOME", caches));
        QVERIFY(set("HOME", home));
        QCOMPARE(XdgCachesFolder().path(), std::optional(path));
    }
};

BRIMLET_TEST(XdgCachesFolderTest, QCoreApplication)
#include "tst_xdgcachesfolder.moc"
