// SPDX-License-Identifier: MIT
#include "filelist/linking.h"

#include <QRandomGenerator>
#include <QTest>

namespace
{

const QDateTime noon(QDate(2024, 5, 4), QTime(12, 0));

FileData file(const QString &suffix, double duration, const QDateTime &modified = noon)
{
    FileData record;
    record.suffix = suffix;
    record.duration = duration;
    record.lastModified = modified;
    return record;
}

} // namespace

class TestLinking : public QObject
{
    Q_OBJECT

private slots:
    void filesOfOneRecordingAreSiblings_data();
    void filesOfOneRecordingAreSiblings();
    void siblingsComeInRowOrderWithoutTheRowItself();
    void theIndexFindsWhatThePlainScanFinds();
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
        << file("wav", 10.0) << file("wav", 10.0, noon.addMSecs(1)) << false;
    QTest::newRow("the same moment in another time zone")
        << file("wav", 10.0) << file("wav", 10.0, noon.toUTC()) << true;
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

void TestLinking::siblingsComeInRowOrderWithoutTheRowItself()
{
    const QVector<FileData> files{file("wav", 10.0), file("mov", 10.0), file("wav", 10.01), file("wav", 11.0),
                                  file("WAV", 9.99)};
    QCOMPARE(linking::siblings(files, 2), (QVector<int>{0, 4}));
    QCOMPARE(linking::siblings(files, 1), QVector<int>());
    QCOMPARE(linking::siblings(files, 3), QVector<int>());
}

void TestLinking::theIndexFindsWhatThePlainScanFinds()
{
    QRandomGenerator random(4711);
    for (int table = 0; table < 200; ++table) {
        QVector<FileData> files;
        linking::Index index;
        const int rows = random.bounded(40);
        for (int row = 0; row < rows; ++row) {
            static const QStringList suffixes{"wav", "WAV", "mov"};
            const QDateTime modified = random.bounded(10) ? noon.addMSecs(random.bounded(3)) : QDateTime();
            files.append(file(suffixes.at(random.bounded(3)), random.bounded(10) * 0.02, modified));
            index.add(row, files.last());
        }
        if (rows > 4 && random.bounded(2)) {
            files.remove(1, 3);
            index.rebuild(files);
        }
        for (int row = 0; row < files.size(); ++row)
            QCOMPARE(index.siblings(files, row), linking::siblings(files, row));
    }
}

QTEST_APPLESS_MAIN(TestLinking)
#include "tst_linking.moc"
