// SPDX-License-Identifier: MIT
#include "filelist/linking.h"
#include "tests/filelist/linkedfile.h"

#include <QTest>

#include <limits>

using linkedfile::file;
using linkedfile::noon;

class TestLinking : public QObject
{
    Q_OBJECT

private slots:
    void filesOfOneRecordingAreSiblings_data();
    void filesOfOneRecordingAreSiblings();
    void siblingsLearnTheSampleRateOfWhatTheyTakeOver();
};

void TestLinking::filesOfOneRecordingAreSiblings_data()
{
    QTest::addColumn<FileData>("first");
    QTest::addColumn<FileData>("second");
    QTest::addColumn<bool>("together");
    QTest::newRow("same time, same length") << file("wav", 10.0) << file("wav", 10.0) << true;
    QTest::newRow("0.04 s longer") << file("WAV", 10.0) << file("wav", 10.04) << true;
    QTest::newRow("0.04 s shorter") << file("wav", 10.04) << file("Wav", 10.0) << true;
    QTest::newRow("exactly 0.05 s") << file("wav", 10.0) << file("wav", 10.05) << false;
    QTest::newRow("exactly 0.05 s at other decimals") << file("wav", 5.0) << file("wav", 4.95) << false;
    QTest::newRow("exactly 0.05 s from nothing") << file("wav", 0.0) << file("wav", 0.05) << false;
    QTest::newRow("a sample short of 0.05 s") << file("wav", 10.0) << file("wav", 10.049979) << true;
    QTest::newRow("a millisecond apart in time")
        << file("wav", 10.0) << file("wav", 10.0, noon().addMSecs(1)) << false;
    QTest::newRow("the same moment in another time zone")
        << file("wav", 10.0) << file("wav", 10.0, noon().toUTC()) << true;
    const double noNumber = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    QTest::newRow("durations that are no numbers") << file("wav", noNumber) << file("wav", noNumber) << false;
    QTest::newRow("endless durations") << file("wav", endless) << file("wav", endless) << false;
    QTest::newRow("a picture file") << file("mov", 10.0) << file("wav", 10.0) << false;
    QTest::newRow("two picture files") << file("mov", 10.0) << file("mov", 10.0) << false;
}

void TestLinking::filesOfOneRecordingAreSiblings()
{
    QFETCH(FileData, first);
    QFETCH(FileData, second);
    QTEST(linking::recordedTogether(first, second), "together");
    QTEST(linking::recordedTogether(second, first), "together");
}

void TestLinking::siblingsLearnTheSampleRateOfWhatTheyTakeOver()
{
    FileData source = file("wav", 10.0);
    source.audioTCResult = QJsonObject{{"SamplesSinceMidnight", 5}};
    source.audioStreamIndex = 0;
    QCOMPARE(linking::passedOnResult(source), source.audioTCResult); // it does not know its own

    source.streams = QJsonArray{QJsonObject{{"sample_rate", "44100"}}};
    const QJsonObject expected{{"SamplesSinceMidnight", 5}, {"SampleRate", 44100}};
    QCOMPARE(linking::passedOnResult(source), expected);

    FileData sibling = file("wav", 10.0);
    sibling.streams = QJsonArray{QJsonObject{{"sample_rate", "48000"}}};
    sibling.setLinkedAudioTC(0, "00:00:00:00", expected);
    QCOMPARE(linking::passedOnResult(sibling), expected); // passed on once more
}

QTEST_APPLESS_MAIN(TestLinking)
#include "tst_linking.moc"
