#include "platform/curl/authorities.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <curl/curl.h>

using namespace brimlet;

class TestTrust final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachSystemHasItsOptions_data() {
        QTest::addColumn<TrustStore>("store");
        QTest::addColumn<QByteArray>("defaultFolder");
        QTest::addColumn<QByteArray>("more");
        QTest::addColumn<bool>("isMoreFolder");
        QTest::addColumn<TrustOptions>("expected");
        constexpr long kNative = CURLSSLOPT_NATIVE_CA;
        const QByteArray none;

        QTest::newRow("Linux, nothing")
            << TrustStore::Files << none << none << false << TrustOptions{0, none, none, false};
        QTest::newRow("Linux, folder") << TrustStore::Files << QByteArray("/certs") << none << false
                                       << TrustOptions{0, "/certs", none, true};
        QTest::newRow("Linux, more in a file")
            << TrustStore::Files << none << QByteArray("/more.pem") << false
            << TrustOptions{0, none, "/more.pem", false};
        QTest::newRow("Linux, folder, more in a file")
            << TrustStore::Files << QByteArray("/certs") << QByteArray("/more.pem") << false
            << TrustOptions{0, "/certs", "/more.pem", false};
        QTest::newRow("Linux, folder, more in a folder")
            << TrustStore::Files << QByteArray("/certs") << QByteArray("/more") << true
            << TrustOptions{0, "/more", none, true};
        QTest::newRow("Mac, nothing") << TrustStore::System << none << none << false
                                      << TrustOptions{kNative, none, none, false};
        // libcurl's default file stays in use beside the system's store.
        QTest::newRow("Mac, folder") << TrustStore::System << QByteArray("/certs") << none << false
                                     << TrustOptions{kNative, none, none, false};
        // Without the option a file would be in place of the system's store.
        QTest::newRow("Mac, more in a file")
            << TrustStore::System << none << QByteArray("/more.pem") << false
            << TrustOptions{kNative, none, "/more.pem", false};
        QTest::newRow("Mac, more in a folder")
            << TrustStore::System << none << QByteArray("/more") << true
            << TrustOptions{kNative, "/more", none, false};
    }

    void eachSystemHasItsOptions() {
        QFETCH(const TrustStore, store);
        QFETCH(const QByteArray, defaultFolder);
        QFETCH(const QByteArray, more);
        QFETCH(const bool, isMoreFolder);
        QFETCH(const TrustOptions, expected);
        const TrustOptions options = trustOptions(store, defaultFolder, more, isMoreFolder);
        QCOMPARE(options.sslOptions, expected.sslOptions);
        QCOMPARE(options.folder, expected.folder);
        QCOMPARE(options.file, expected.file);
        QCOMPARE(options.isDefaultFileOff, expected.isDefaultFileOff);
    }
};

BRIMLET_TEST(TestTrust, QCoreApplication)
#include "tst_trust.moc"
