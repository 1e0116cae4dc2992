// SPDX-License-Identifier: MIT
#include "testkit/media/expectedcell.h"
#include "testkit/media/samplekit.h"

#include <QSet>
#include <QtTest>

/// The files that ./run samples writes, and how they are described.
class TestSampleKit : public QObject
{
    Q_OBJECT

private slots:
    void everySituationHasAFileOfItsOwn();
    void expectedTextTellsTimecodeRateAndChannel_data();
    void expectedTextTellsTimecodeRateAndChannel();
    void textNamesEveryFile();
    void folderWithFilesIsRefused();
};

using namespace mediakit;

Q_DECLARE_METATYPE(mediakit::Recording)

void TestSampleKit::everySituationHasAFileOfItsOwn()
{
    QSet<QString> paths;
    QSet<QString> situations;
    const QVector<Sample> samples = sampleKit();
    for (const Sample &sample : samples) {
        paths += sample.recording.path;
        situations += sample.situation;
    }
    QCOMPARE(paths.size(), samples.size());
    QCOMPARE(situations.size(), samples.size());
}

void TestSampleKit::expectedTextTellsTimecodeRateAndChannel_data()
{
    const Channel tone = toneChannel(440);
    const Recording pictures25 = movie("a.mov", "25", "aac", {{tone, timecodeChannel({1, 2, 3, 4}, {25})}});
    Recording partner = soundFile("b.wav", {tone}, 5.0);
    partner.siblingTimecode = timecodeOf(pictures25);
    Recording broken;
    broken.broken = true;

    QTest::addColumn<Recording>("recording");
    QTest::addColumn<QString>("text");
    QTest::newRow("25 on the second channel") << pictures25 << "01:02:03:04@25.00 on ch. 2";
    QTest::newRow("drop-frame on the first channel")
        << movie("a.mov", "30000/1001", "aac", {{timecodeChannel({1, 2, 3, 4}, {30, true, true})}})
        << "01:02:03;04@29.97 DF  on ch. 1";
    QTest::newRow("23.976 on the second track")
        << movie("a.mov", "24000/1001", "aac", {{tone}, {timecodeChannel({1, 2, 3, 4}, {24, true})}})
        << "01:02:03:04@23.98 on ch. 1";
    QTest::newRow("taken over") << partner << "01:02:03:04@(linked)";
    QTest::newRow("none") << soundFile("b.wav", {tone}, 5.0) << "audio TC not found";
    QTest::newRow("broken") << broken << "error while reading file data";
}

void TestSampleKit::expectedTextTellsTimecodeRateAndChannel()
{
    QFETCH(Recording, recording);
    QTEST(expectedAudioTC(recording), "text");
}

void TestSampleKit::textNamesEveryFile()
{
    const QVector<Sample> samples = sampleKit();
    const QString text = describe(samples);
    for (const Sample &sample : samples) {
        QVERIFY(text.contains(sample.recording.path));
        QVERIFY(text.contains(expectedAudioTC(sample.recording)));
    }
}

void TestSampleKit::folderWithFilesIsRefused()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("original.mov"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!writeSampleKit(folder.path()).isEmpty());
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("original.mov"));
}

QTEST_APPLESS_MAIN(TestSampleKit)
#include "tst_samplekit.moc"
