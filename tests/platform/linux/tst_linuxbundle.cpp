#include "platform/linux/linuxbundle.h"
#include "tests/platform/linux/writefile.h"
#include "tests/support/testprogram.h"

#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;

class LinuxBundleTest final : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    [[nodiscard]] QString executable() const {
        return m_folder.filePath(QStringLiteral("bin/brimlet"));
    }
    [[nodiscard]] bool writeInfo(const QByteArray& text) const {
        return writeFile(m_folder.filePath(QStringLiteral("share/brimlet/info.json")), text);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(writeFile(executable(), "")); }

    void onlyAPackagedProgramCountsAsAnApplication_data() {
        const QString application = QStringLiteral("/Applications/Brimlet.app");
        QTest::addColumn<QString>("executable");
        QTest::addColumn<QString>("path");
        QTest::newRow("usr") << QStringLiteral("/usr/bin/brimlet") << application;
        QTest::newRow("usr local") << QStringLiteral("/usr/local/bin/brimlet") << application;
        QTest::newRow("opt") << QStringLiteral("/opt/brimlet/bin/brimlet") << application;
        QTest::newRow("home") << QStringLiteral("/home/host/.local/bin/brimlet")
                              << QStringLiteral("/home/host/.local");
        QTest::newRow("name that begins alike")
            << QStringLiteral("/usrlocal/bin/brimlet") << QStringLiteral("/usrlocal");
        QTest::newRow("optional") << QStringLiteral("/optional/bin/brimlet")
                                  << QStringLiteral("/optional");
        QTest::newRow("usr further down")
            << QStringLiteral("/home/usr/bin/brimlet") << QStringLiteral("/home/usr");
        QTest::newRow("in capitals")
            << QStringLiteral("/USR/bin/brimlet") << QStringLiteral("/USR");
        QTest::newRow("root's own bin") << QStringLiteral("/bin/brimlet") << QStringLiteral("/");
    }

    void onlyAPackagedProgramCountsAsAnApplication() {
        QFETCH(const QString, executable);
        QFETCH(const QString, path);
        QCOMPARE(bundlePath(executable), path);
    }

    void anUnpackedCopyRunsFromItsOwnFolder() {
        QCOMPARE(LinuxBundle(executable()).path(), QFileInfo(m_folder.path()).canonicalFilePath());
    }

    void aLinkIsFollowedToTheProgram() {
        const QString link = m_folder.filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(QStringLiteral("/usr/bin/env"), link));
        QCOMPARE(LinuxBundle(link).path(), QStringLiteral("/Applications/Brimlet.app"));
    }

    void aMissingExecutableKeepsItsPath() {
        const QString gone = QStringLiteral("/nowhere/lib/../bin/brimlet");
        QCOMPARE(LinuxBundle(gone).path(), QStringLiteral("/nowhere"));
    }

    void valuesKeepTheirType_data() {
        QTest::addColumn<QByteArray>("info");
        QTest::addColumn<QVariant>("value");
        const QVariant missing;
        QTest::newRow("text") << QByteArray("{\"key\":\"http://localhost:1/\"}")
                              << QVariant(QStringLiteral("http://localhost:1/"));
        QTest::newRow("empty text") << QByteArray(R"({"key":""})") << QVariant(QString());
        QTest::newRow("blanks") << QByteArray(R"({"key":" a "})")
                                << QVariant(QStringLiteral(" a "));
        QTest::newRow("truth") << QByteArray(R"({"key":true})") << QVariant(true);
        QTest::newRow("number") << QByteArray(R"({"key":1.5})") << QVariant(1.5);
        QTest::newRow("null") << QByteArray(R"({"key":null})") << QVariant::fromValue(nullptr);
        QTest::newRow("list") << QByteArray(R"({"key":["a"]})")
                              << QVariant(QVariantList{QStringLiteral("a")});
        QTest::newRow("other key") << QByteArray(R"({"Key":"a"})") << missing;
        QTest::newRow("no object") << QByteArray(R"(["key"])") << missing;
        QTest::newRow("cut short") << QByteArray("{\"key\":\"a\"") << missing;
        QTest::newRow("empty file") << QByteArray() << missing;
        QTest::newRow("no JSON") << QByteArray("key=a") << missing;
    }

    void valuesKeepTheirType() {
        QFETCH(const QByteArray, info);
        QFETCH(const QVariant, value);
        QVERIFY(writeInfo(info));
        const QVariant found = LinuxBundle(executable()).infoDictionaryValue(QStringLiteral("key"));
        QCOMPARE(found.isValid(), value.isValid());
        QCOMPARE(found, value);
    }

    void theFileIsReadAtEachCall() {
        const LinuxBundle bundle(executable());
        QVERIFY(writeInfo(R"({"key":"before"})"));
        QCOMPARE(bundle.infoDictionaryValue(QStringLiteral("key")), QStringLiteral("before"));
        QVERIFY(writeInfo(R"({"key":"after"})"));
        QCOMPARE(bundle.infoDictionaryValue(QStringLiteral("key")), QStringLiteral("after"));
        QVERIFY(QFile::remove(m_folder.filePath(QStringLiteral("share/brimlet/info.json"))));
        QVERIFY(!bundle.infoDictionaryValue(QStringLiteral("key")).isValid());
    }

    void theIdentifierIsFixed() {
        QCOMPARE(LinuxBundle(executable()).identifier(), QStringLiteral("app.brimlet.host"));
    }
};

BRIMLET_TEST(LinuxBundleTest, QCoreApplication)
#include "tst_linuxbundle.moc"
