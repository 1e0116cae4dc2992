// SPDX-License-Identifier: MIT
#include "app/records/optiontables.h"
#include "ltc/readerarguments.h"
#include "testkit/fixtures/row.h"

#include <QTest>

#include <limits>

class TestReaderArguments : public QObject
{
    Q_OBJECT

private slots:
    void withoutOptionsOnlyGoProChoosesTheAlgorithm_data();
    void withoutOptionsOnlyGoProChoosesTheAlgorithm();
    void optionsBecomeSwitches_data();
    void optionsBecomeSwitches();
    void theDialogsRatesAreWrittenShort_data();
    void theDialogsRatesAreWrittenShort();
};

void TestReaderArguments::withoutOptionsOnlyGoProChoosesTheAlgorithm_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("goPro");
    QTest::addColumn<QStringList>("expected");

    row("any camera", "/t/a_1_4.wav", false, QStringList{"/t/a_1_4.wav"});
    row("GoPro", "/t/a_1_4.wav", true, QStringList{"/t/a_1_4.wav", "-aSLOPE"});
    row("a name like a switch", "-c1 %1.wav", false, QStringList{"-c1 %1.wav"});
}

void TestReaderArguments::withoutOptionsOnlyGoProChoosesTheAlgorithm()
{
    QFETCH(QString, path);
    QFETCH(bool, goPro);
    QFETCH(QStringList, expected);
    QCOMPARE(readerarguments::automatic(path, goPro), expected);
}

void TestReaderArguments::optionsBecomeSwitches_data()
{
    QTest::addColumn<int>("algorithm");
    QTest::addColumn<int>("channel");
    QTest::addColumn<double>("frameRate"); // [frames per second]
    QTest::addColumn<bool>("goPro");
    QTest::addColumn<QStringList>("switches");

    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    row("all automatic", 0, -1, -1.0, false, QStringList());
    row("all automatic, GoPro", 0, -1, -1.0, true, QStringList{"-aSLOPE"});
    row("channel 4 at 29.97 with MID", 2, 3, 29.97, false, QStringList{"-c3", "-f29.97", "-aMID"});
    row("the first channel", 0, 0, -1.0, false, QStringList{"-c0"});
    row("the last channel of the dialog", 0, 7, -1.0, false, QStringList{"-c7"});
    row("channel far below 0", 0, -5, -1.0, false, QStringList());
    row("LOW", 1, -1, -1.0, false, QStringList{"-aLOW"});
    row("MID", 2, -1, -1.0, false, QStringList{"-aMID"});
    row("HIGH", 3, -1, -1.0, false, QStringList{"-aHIGH"});
    row("SLOPE", 4, -1, -1.0, false, QStringList{"-aSLOPE"});
    row("the user's algorithm goes before the camera's", 1, -1, -1.0, true, QStringList{"-aLOW"});
    row("algorithm 5", 5, -1, -1.0, false, QStringList());
    row("algorithm 5, GoPro", 5, -1, -1.0, true, QStringList());
    row("algorithm -1", -1, -1, -1.0, false, QStringList());
    row("algorithm -1, GoPro", -1, -1, -1.0, true, QStringList());
    row("a rate of 0 is a choice", 0, -1, 0.0, false, QStringList{"-f0"});
    row("a rate that is no number", 0, -1, notANumber, false, QStringList());
    row("six digits of a long rate", 0, -1, 24000.0 / 1001.0, false, QStringList{"-f23.976"});
    row("options as they are made", 0, 0, 0.0, false, QStringList{"-c0", "-f0"});
}

void TestReaderArguments::optionsBecomeSwitches()
{
    QFETCH(int, algorithm);
    QFETCH(int, channel);
    QFETCH(double, frameRate);
    QFETCH(bool, goPro);
    QFETCH(QStringList, switches);

    const AudioTCOptions options{algorithm, channel, frameRate, false};
    QCOMPARE(readerarguments::chosen("/t/a.wav", options, goPro), QStringList{"/t/a.wav"} + switches);
}

void TestReaderArguments::theDialogsRatesAreWrittenShort_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QString>("expected");

    row("23.98", "23.98 FPS", "-f23.98");
    row("24, without decimals", "24.00 FPS", "-f24");
    row("25", "25.00 FPS", "-f25");
    row("29.97", "29.97 FPS", "-f29.97");
    row("30", "30.00 FPS", "-f30");
}

void TestReaderArguments::theDialogsRatesAreWrittenShort()
{
    QFETCH(QString, choice);
    QFETCH(QString, expected);
    QVERIFY(frameRates.contains(choice));
    const AudioTCOptions options{0, -1, frameRates[choice], false};
    QCOMPARE(readerarguments::chosen("a.wav", options, false), (QStringList{"a.wav", expected}));
}

QTEST_APPLESS_MAIN(TestReaderArguments)
#include "tst_readerarguments.moc"
