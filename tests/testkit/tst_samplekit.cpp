// SPDX-License-Identifier: MIT
#include "testkit/media/expectedcell.h"
#include "testkit/media/samplekit.h"

#include <QtTest>

/// The files that ./run samples writes, and how they are described.
class TestSampleKit : public QObject
{
    Q_OBJECT

private slots:
    void textNamesEveryFile();
    void folderWithFilesIsRefused();
};

using namespace mediakit;

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
