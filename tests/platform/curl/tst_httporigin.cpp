#include "platform/httpclient.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

class TestHttpOrigin final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void originsAreCompared_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<bool>("same");
        QTest::newRow("paths differ") << "http://a.test/x"
                                      << "http://a.test/y?z#w" << true;
        QTest::newRow("letter case") << "http://a.test/"
                                     << "HTTP://A.Test/" << true;
        QTest::newRow("http default port") << "http://a.test/"
                                           << "http://a.test:80/" << true;
        QTest::newRow("https default port") << "https://a.test:443/"
                                            << "https://a.test" << true;
        QTest::newRow("empty port") << "https://a.test:/"
                                    << "https://a.test" << true;
        QTest::newRow("user info") << "http://a.test/"
                                   << "http://u:p@a.test/" << true;
        QTest::newRow("bracketed host") << "http://[::1]:8/"
                                        << "http://[::1]:8/x" << true;
        QTest::newRow("other scheme") << "https://a.test/"
                                      << "http://a.test/" << false;
        QTest::newRow("other scheme, same port") << "https://a.test:80/"
                                                 << "http://a.test/" << false;
        QTest::newRow("other host") << "http://a.test/"
                                    << "http://b.test/" << false;
        QTest::newRow("subdomain") << "http://a.test/"
                                   << "http://x.a.test/" << false;
        QTest::newRow("trailing dot") << "http://a.test/"
                                      << "http://a.test./" << false;
        QTest::newRow("other port") << "http://a.test/"
                                    << "http://a.test:81/" << false;
        QTest::newRow("port beyond 65535") << "http://a.test:65536/"
                                           << "http://a.test:65536/" << false;
        QTest::newRow("relative") << "/x"
                                  << "/x" << false;
        QTest::newRow("no host") << "http:///x"
                                 << "http:///x" << false;
        QTest::newRow("unknown scheme, no port") << "ftp://a.test/"
                                                 << "ftp://a.test/" << false;
    }

    void originsAreCompared() {
        QFETCH(const QString, from);
        QFETCH(const QString, to);
        const auto a = Url::fromString(from);
        const auto b = Url::fromString(to);
        QVERIFY(a && b);
        QTEST(isSameOrigin(*a, *b), "same");
        QTEST(isSameOrigin(*b, *a), "same");
    }
};

BRIMLET_TEST(TestHttpOrigin, QCoreApplication)
#include "tst_httporigin.moc"
