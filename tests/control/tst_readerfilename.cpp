// SPDX-License-Identifier: MIT
#include "control/readerfilename.h"

#include <QTest>

class TestReaderFileName : public QObject
{
    Q_OBJECT

private slots:
    void theLastTwoNumbersAreStreamAndRow_data();
    void theLastTwoNumbersAreStreamAndRow();
    void filesOfOtherRowsAreToldByTheirName_data();
    void filesOfOtherRowsAreToldByTheirName();
};

void TestReaderFileName::theLastTwoNumbersAreStreamAndRow_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("stream");
    QTest::addColumn<QString>("shortened");
    QTest::newRow("Windows separators")
        << R"(C:\T\OstrelSyncTemp\clip\clip_1_7.wav)" << 7 << 1 << R"(C:\T\OstrelSyncTemp\clip\clip_1)";
    QTest::newRow("Unix separators") << "/tmp/OstrelSyncTemp/clip/clip_1_7.wav" << 7 << 1
                                     << "/tmp/OstrelSyncTemp/clip/clip_1";
    QTest::newRow("underscores and numbers in the base name")
        << "/tmp/x_y/A_001_2/A_001_2_12_1999.wav" << 1999 << 12 << "/tmp/x_y/A_001_2/A_001_2_12";
    QTest::newRow("dot in a folder") << "/tmp/a.b/clip_0_3.wav" << 3 << 0 << "/tmp/a.b/clip_0";
    QTest::newRow("no number at the end") << "/t/clip_1_x.wav" << 0 << 1 << "/t/clip_1";
    QTest::newRow("no number before") << "/t/clip_x_5.wav" << 5 << 0 << "/t/clip_x";
    QTest::newRow("empty pieces") << "/t/clip__.wav" << 0 << 0 << "/t/clip_";
    QTest::newRow("one underscore") << "/t/clip_5.wav" << 5 << 0 << "/t/clip";
    QTest::newRow("no underscore") << "/t/clip.wav" << 0 << 0 << "";
    QTest::newRow("nothing but the suffix") << ".wav" << 0 << 0 << "";
    QTest::newRow("empty") << "" << 0 << 0 << "";
}

void TestReaderFileName::theLastTwoNumbersAreStreamAndRow()
{
    QFETCH(QString, path);
    const ReaderFileName name = ReaderFileName::parse(path);
    QTEST(name.row, "row");
    QTEST(name.audioStream, "stream");
    QTEST(name.shortenedPath, "shortened");
}

void TestReaderFileName::filesOfOtherRowsAreToldByTheirName_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<bool>("isOfAnotherRow");
    QTest::newRow("own") << "clip_1_7.wav" << false;
    QTest::newRow("another row") << "clip_1_8.wav" << true;
    QTest::newRow("another row that ends alike") << "clip_1_17.wav" << true;
    QTest::newRow("own, numbers in the base name") << "clip_9_9_1_7.wav" << false;
    QTest::newRow("no row: one number") << "clip_8.wav" << false;
    QTest::newRow("no row: no number") << "notes_a_b.wav" << false;
    QTest::newRow("no row: another suffix") << "clip_1_8.wav.part" << false;
    QTest::newRow("no row: capitals") << "clip_1_8.WAV" << false;
}

void TestReaderFileName::filesOfOtherRowsAreToldByTheirName()
{
    QFETCH(QString, fileName);
    QTEST(wasExtractedForAnotherRow(fileName, 7), "isOfAnotherRow");
}

QTEST_APPLESS_MAIN(TestReaderFileName)
#include "tst_readerfilename.moc"
