#include "platform/simulated/machine.h"
#include "platform/simulated/notchwindow.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QTest>

using namespace brimlet;

class TestMachine final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anEmptyObjectHasNoValues() {
        const auto result = readMachine("{}");
        QVERIFY(std::holds_alternative<Machine>(result));
        QVERIFY(std::get<Machine>(result) == Machine());
    }

    void everyKeyIsRead() {
        const auto result = readMachine(R"({
            "displays": [
                {"frame": [0, 0, 2560, 1440]},
                {"number": 4294967295, "builtIn": true, "frame": [-1512, 10.5, 1512, 982],
                 "auxiliaryTopLeftArea": [-1512, 950, 664, 32],
                 "auxiliaryTopRightArea": [-664, 950, 664, 32]}],
            "bundlePath": "/Applications/Brimlet.app",
            "infoDictionary": {"BrimletAPIURL": "http:x", "n": 3},
            "cachesFolder": "/tmp/caches", "secretStore": "memory",
            "reduceMotion": true, "screensAsleep": false, "drawNotch": true,
            "speed": 60.5})");
        QVERIFY(std::holds_alternative<Machine>(result));
        const Machine& machine = std::get<Machine>(result);
        QCOMPARE(machine.displays->size(), std::size_t{2});
        QVERIFY(!machine.displays->at(0).screen.number);
        QVERIFY(!machine.displays->at(0).builtIn);
        QVERIFY(!machine.displays->at(0).screen.auxiliaryTopLeftArea);
        QCOMPARE(machine.displays->at(1).screen.number.value_or(0), 4294967295U);
        QVERIFY(machine.displays->at(1).builtIn);
        QCOMPARE(machine.displays->at(1).screen.frame, (Rect{-1512, 10.5, 1512, 982}));
        QCOMPARE(*machine.displays->at(1).screen.auxiliaryTopRightArea, (Rect{-664, 950, 664, 32}));
        QCOMPARE(*machine.bundlePath, QStringLiteral("/Applications/Brimlet.app"));
        QCOMPARE(machine.infoDictionary->value(QStringLiteral("BrimletAPIURL")).toString(),
                 QStringLiteral("http:x"));
        QCOMPARE(*machine.cachesFolder, QStringLiteral("/tmp/caches"));
        QVERIFY(machine.secretStore == MachineSecretStore::Memory);
        QCOMPARE(*machine.reduceMotion, true);
        QCOMPARE(*machine.screensAsleep, false);
        QVERIFY(machine.drawNotch);
        QCOMPARE(machine.speed, 60.5);
    }

    void errorsNameTheirPlace_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* text, const char* error) {
            QTest::newRow(*text == '\0' ? "(empty)" : text)
                << QByteArray(text) << QString::fromUtf8(error);
        };
        row("", "line 1: illegal value");
        row("{\n  \"displays\": [,]\n}", "line 2: illegal value");
        row("[]", "a machine must be a JSON object");
        row("{\"display\": []}", "unknown key \"display\"");
        row("{\"displays\": {}}", "\"displays\" must be a list of objects");
        row("{\"displays\": [3]}", "\"displays\" must be a list of objects");
        row("{\"displays\": [{}]}", "\"displays[0].frame\" must be given");
        row("{\"displays\": [{\"frame\": [0,0,1]}]}",
            "\"displays[0].frame\" must be four numbers [x, y, width, height], none negative but x "
            "and y");
        row("{\"displays\": [{\"frame\": [0,0,1,-1]}]}",
            "\"displays[0].frame\" must be four numbers [x, y, width, height], none negative but x "
            "and y");
        row("{\"displays\": [{\"frame\": [0,0,1,1]}, {\"frame\": [0,0,1,1], \"number\": -1}]}",
            "\"displays[1].number\" must be a whole number of 32 bits");
        row("{\"displays\": [{\"frame\": [0,0,1,1], \"number\": 1.5}]}",
            "\"displays[0].number\" must be a whole number of 32 bits");
        row("{\"displays\": [{\"frame\": [0,0,1,1], \"builtin\": true}]}",
            "unknown key \"displays[0].builtin\"");
        row("{\"bundlePath\": 3}", "\"bundlePath\" must be a string");
        row("{\"infoDictionary\": []}", "\"infoDictionary\" must be an object");
        row("{\"secretStore\": \"disk\"}", "\"secretStore\" must be \"system\" or \"memory\"");
        row("{\"reduceMotion\": 1}", "\"reduceMotion\" must be true or false");
        row("{\"screensAsleep\": null}", "\"screensAsleep\" must be true or false");
        row("{\"speed\": 0.5}", "\"speed\" must be a number from 1 to 1000");
        row("{\"speed\": 1001}", "\"speed\" must be a number from 1 to 1000");
        row("{\"speed\": \"fast\"}", "\"speed\" must be a number from 1 to 1000");
        row("{\"drawNotch\": \"yes\"}", "\"drawNotch\" must be true or false");
    }
    void errorsNameTheirPlace() {
        QFETCH(QByteArray, text);
        const auto result = readMachine(text);
        QVERIFY(std::holds_alternative<QString>(result));
        QTEST(std::get<QString>(result), "error");
    }

    void theShippedMachinesAreWellFormed() {
        const QDir folder(sourcePath(u"docs/machines"));
        const QStringList names = folder.entryList({QStringLiteral("*.json")});
        QCOMPARE(names.size(), 4);
        for (const QString& name : names) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const auto result = readMachine(file.readAll());
            QVERIFY2(std::holds_alternative<Machine>(result), qPrintable(name));
        }
    }

    void theNotchIsTheGapBetweenTheStrips() {
        Screen screen;
        screen.frame = {0, 0, 1512, 982};
        QVERIFY(!notchOf(screen));
        QVERIFY(!notchOf(std::nullopt));
        screen.auxiliaryTopLeftArea = Rect{0, 950, 664, 32};
        screen.auxiliaryTopRightArea = Rect{848, 946, 664, 36};
        QCOMPARE(*notchOf(screen), (Rect{664, 946, 184, 36}));
        screen.auxiliaryTopRightArea = Rect{600, 950, 664, 32};
        QVERIFY(!notchOf(screen));
    }
};

BRIMLET_TEST(TestMachine, brimlet::NoApplication)
#include "tst_machine.moc"
