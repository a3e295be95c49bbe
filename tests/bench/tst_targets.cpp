#include "bench/report/findings.h"
#include "bench/report/targets.h"
#include "bench/report/text.h"
#include "tests/support/testprogram.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace brimlet;

namespace {

/// A folder with results in it.
class Results final {
public:
    void add(const QString& name, const QByteArray& text) {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    [[nodiscard]] Findings findings() const { return Findings(m_folder.path().toStdString()); }
    [[nodiscard]] Target target(const std::string& what) const {
        const auto targets = targetsOf(findings());
        const auto found = std::find_if(targets.begin(), targets.end(),
                                        [&](const Target& target) { return target.what == what; });
        return found == targets.end() ? Target() : *found;
    }

private:
    QTemporaryDir m_folder;
};

const QByteArray
    kRows("{\"rows\": ["
          "{\"key\": \"brimlet.rest\", \"name\": \"B\", \"median\": {\"pssMib\": 17, "
          "\"cpuMsPerMinute\": 13}},"
          "{\"key\": \"brimlet.cycles\", \"name\": \"B\", \"median\": {\"pssMib\": 18}},"
          "{\"key\": \"floor.rest\", \"name\": \"F\", \"median\": {\"cpuMsPerMinute\": 3.25}},"
          "{\"key\": \"qlipper\", \"name\": \"Q\", \"median\": {\"pssMib\": 18}},"
          "{\"key\": \"copyq\", \"name\": \"C\", \"remark\": \"absent: no such package\"}]}");

} // namespace

class TestTargets final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLimitMayBeReachedButNotPassed() {
        Results results;
        results.add(QStringLiteral("program.json"), kRows);
        QCOMPARE(results.target("PSS, the panel never opened").isMet(), true);
        QCOMPARE(results.target("CPU at rest").isMet(), false);
        QCOMPARE(results.target("CPU at rest beside the floor's").isMet(), true);
    }

    void belowAPeerIsLessThanIt() {
        Results results;
        results.add(QStringLiteral("program.json"), kRows);
        QCOMPARE(results.target("PSS, below that of qlipper").isMet(), false);
    }

    void whatWasNotMeasuredIsNeitherMetNorMissed() {
        const Results results;
        for (const Target& target : targetsOf(results.findings())) {
            QVERIFY2(!target.isMet(), target.what.c_str());
        }
    }

    void ofManyHostsTheWorstCounts() {
        Results results;
        results.add(QStringLiteral("fleet.json"),
                    "[{\"kibPerHost\": 30, \"service\": \"usual\"},"
                    "{\"kibPerHost\": 41, \"service\": \"usual\"},"
                    "{\"kibPerHost\": 99, \"service\": \"no validators\"}]");
        QCOMPARE(results.target("memory of a host among many").value, 41.0);
        QCOMPARE(results.target("memory of a host among many").isMet(), false);
    }

    void absentPartsAreNamedWithTheReason() {
        Results results;
        results.add(QStringLiteral("program.json"), kRows);
        const auto findings = results.findings();
        const auto& absences = findings.absences();
        QCOMPARE(absences.size(), 4U); // fleet, poll, steps, and one peer
        QCOMPARE(absences.back(), std::string("C: absent: no such package."));
    }

    void aBenchmarkThatGaveUpIsAbsent() {
        Results results;
        results.add(QStringLiteral("micro.json"),
                    "{\"benchmarks\": [{\"name\": \"gate\", \"error_occurred\": true, "
                    "\"error_message\": \"the picture was refused\"},"
                    "{\"name\": \"read\", \"cpu_time\": 5}]}");
        const auto findings = results.findings();
        QCOMPARE(findings.micro().size(), 1U);
        QCOMPARE(findings.absences().front(), std::string("gate: the picture was refused."));
    }

    void brokenResultsAreAbsent() {
        Results results;
        for (const char* name : {"program.json", "fleet.json", "poll.json", "micro.json"}) {
            results.add(QString::fromLatin1(name), "{\"rows\": [");
        }
        QVERIFY(!results.target("PSS, the panel never opened").isMet());
        QCOMPARE(results.findings().absences().size(), 5U); // the broken steps are named, too
    }

    void numbersForPeople_data() {
        QTest::addColumn<double>("number");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("nothing") << 0.0 << QByteArray("0");
        QTest::newRow("whole") << 18.0 << QByteArray("18");
        QTest::newRow("tiny") << 0.0486 << QByteArray("0.049");
        QTest::newRow("small") << 9.814 << QByteArray("9.81");
        QTest::newRow("middling") << 12.64 << QByteArray("12.6");
        QTest::newRow("large") << 364.4 << QByteArray("364");
    }
    void numbersForPeople() {
        QFETCH(double, number);
        QTEST(QByteArray::fromStdString(textOf(number)), "text");
    }
};

BRIMLET_TEST(TestTargets, QCoreApplication)
#include "tst_targets.moc"
