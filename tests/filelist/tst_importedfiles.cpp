// SPDX-License-Identifier: MIT
#include "filelist/importedfiles.h"
#include "testkit/fixtures/row.h"
#include "tests/filelist/linkedfile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

namespace
{

constexpr int found = 0;
constexpr int notFound = 205;
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

FileData probed(double duration, const QString &fileTC = {})
{
    FileData record;
    record.duration = duration;
    record.fileTC = fileTC;
    record.streams = {QJsonObject{{"codec_type", "audio"}, {"sample_rate", "48000"}}};
    return record;
}

QJsonObject result(const QString &timecode)
{
    return {{"Timecode", timecode}, {"FrameRateFound", 25}};
}

/// "row 1: file TC, audio TC; linked 0 2"
QString textOf(const ImportedFiles::Changes &changes)
{
    if (changes.row < 0)
        return "nothing";
    QStringList kinds;
    if (changes.fileTC)
        kinds += "file TC";
    if (changes.duration)
        kinds += "duration";
    if (changes.audioTC)
        kinds += "audio TC";
    QString text = QString("row %1: %2").arg(changes.row).arg(kinds.join(", "));
    for (const int row : changes.linkedRows)
        text += (row == changes.linkedRows.first() ? "; linked " : " ") + QString::number(row);
    return text;
}

QString textOf(RowStatus::AudioTC state)
{
    static const QStringList texts{"unread", "found", "linked", "not found", "read failed", "probe failed"};
    return texts.at(static_cast<int>(state));
}

} // namespace

/// The files of the table as a program without a window uses them.
class TestImportedFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void aFileBecomesARow();
    void aProbeReportsItsChanges_data();
    void aProbeReportsItsChanges();
    void aReadingReportsItsChanges_data();
    void aReadingReportsItsChanges();
    void resultsWithoutARowChangeNothing_data();
    void resultsWithoutARowChangeNothing();
    void timecodesReachTheSiblingsOnly_data();
    void timecodesReachTheSiblingsOnly();
    void anotherDurationMeansOtherSiblings();
    void rowsAreRemovedUnlessAnImportRuns();
    void siblingsFindEachOtherAfterARemoval();
    void aReadingIsPendingWork();

private:
    int add(const QString &name, double duration, int secondsLater = 0);
    QString stateOf(int row) const { return textOf(files->status(row).audioTC); }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<ImportedFiles> files;
};

void TestImportedFiles::init()
{
    folder = std::make_unique<QTemporaryDir>();
    files = std::make_unique<ImportedFiles>();
}

int TestImportedFiles::add(const QString &name, double duration, int secondsLater)
{
    const QFileInfo file = linkedfile::empty(folder->filePath(name), secondsLater);
    const int row = files->add(file);
    files->takeProbe(probed(duration), row, 0);
    return row;
}

void TestImportedFiles::aFileBecomesARow()
{
    QCOMPARE(files->count(), 0);
    QVERIFY(!files->contains(0));
    QCOMPARE(files->add(QFileInfo("/card/a.take.wav")), 0);
    QCOMPARE(files->add(QFileInfo("/card/b.mov")), 1);
    QCOMPARE(files->count(), 2);
    QVERIFY(files->contains(1) && !files->contains(2) && !files->contains(-1));
    QCOMPARE(files->allRows(), (QVector<int>{0, 1}));
    QCOMPARE(files->record(0).baseName, QString("a"));
    QCOMPARE(files->record(0).suffix, QString("wav"));
    QCOMPARE(stateOf(0), QString("unread"));
}

void TestImportedFiles::aProbeReportsItsChanges_data()
{
    QTest::addColumn<QString>("timecode");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("changes");
    QTest::addColumn<bool>("hasFileTC");
    row("with a timecode", "10:00:00:00", 0, "row 0: file TC, duration", true);
    row("without one", "", 0, "row 0: file TC, duration", false);
    row("failed", "", 1000, "row 0: file TC, audio TC", false);
}

void TestImportedFiles::aProbeReportsItsChanges()
{
    QFETCH(QString, timecode);
    QFETCH(int, exitCode);
    files->add(QFileInfo("/card/a.mov"));
    QTEST(textOf(files->takeProbe(probed(5.0, timecode), 0, exitCode)), "changes");
    QTEST(files->record(0).hasFileTC, "hasFileTC");
    QCOMPARE(files->status(0).fileTC,
             timecode.isEmpty() ? RowStatus::FileTC::NotFound : RowStatus::FileTC::Found);
    QCOMPARE(files->record(0).duration, exitCode == 0 ? 5.0 : 0.0);
    QCOMPARE(stateOf(0), QString(exitCode == 0 ? "unread" : "probe failed"));
    QCOMPARE(files->status(0).exitCode, exitCode);
}

void TestImportedFiles::aReadingReportsItsChanges_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("changes");
    QTest::addColumn<QString>("state");
    // The rows 0 to 2 are siblings, 1 has a timecode. Row 3 has none.
    row("found, with siblings", 0, found, "row 0: audio TC; linked 1 2", "found");
    row("found, in the middle", 1, found, "row 1: audio TC; linked 0 2", "found");
    row("found, alone", 3, found, "row 3: audio TC", "found");
    row("not found, alone", 3, notFound, "row 3: audio TC", "not found");
    row("not found, with a source", 2, notFound, "row 2: audio TC", "linked");
    row("failed", 0, 202, "row 0: audio TC", "read failed");
}

void TestImportedFiles::aReadingReportsItsChanges()
{
    QFETCH(int, row);
    QFETCH(int, exitCode);
    for (const char *name : {"a.wav", "b.wav", "c.WAV"})
        add(name, 10.0);
    add("d.mov", 10.0);
    files->takeReading(result("01:00:00:00"), 1, 0, found);
    files->takeForReading(files->allRows());
    QTEST(textOf(files->takeReading(exitCode == found ? result("02:00:00:00") : QJsonObject(), row, 0,
                                    exitCode)),
          "changes");
    QTEST(stateOf(row), "state");
}

void TestImportedFiles::resultsWithoutARowChangeNothing_data()
{
    QTest::addColumn<int>("row");
    row("the row behind the last", 1);
    row("before the first", -1);
    row("a late one", 0);
}

void TestImportedFiles::resultsWithoutARowChangeNothing()
{
    QFETCH(int, row);
    add("a.wav", 10.0);
    files->takeReading(result("01:00:00:00"), 0, 0, found);
    QCOMPARE(textOf(files->takeReading(result("02:00:00:00"), row, 0, found)), QString("nothing"));
    if (row != 0)
        QCOMPARE(textOf(files->takeProbe(probed(1.0), row, 0)), QString("nothing"));
    QCOMPARE(files->record(0).audioTC, QString("01:00:00:00"));
}

void TestImportedFiles::timecodesReachTheSiblingsOnly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("duration");
    QTest::addColumn<int>("secondsLater");
    QTest::addColumn<bool>("reached");
    row("a sibling", "b.WAV", 10.04, 0, true);
    row("a longer one", "b.wav", 10.05, 0, false);
    row("one of another time", "b.wav", 10.0, 1, false);
    row("a picture file", "b.mov", 10.0, 0, false);
    row("one of no duration", "b.wav", noNumber, 0, false);
}

void TestImportedFiles::timecodesReachTheSiblingsOnly()
{
    QFETCH(QString, name);
    QFETCH(double, duration);
    QFETCH(int, secondsLater);
    QFETCH(bool, reached);
    const int row = add("a.wav", 10.0);
    const int other = add(name, duration, secondsLater);
    files->takeReading(result("01:00:00:00"), row, 0, found);
    QCOMPARE(files->record(other).audioTCLinked, reached);
    QCOMPARE(stateOf(other), QString(reached ? "linked" : "unread"));
    if (!reached)
        return;
    QCOMPARE(files->record(other).linkedRow, row);
    QCOMPARE(files->status(other).sourceName, QString("a.wav"));
    QCOMPARE(files->record(other).audioTCResult.value("SampleRate").toInt(), 48000);
}

void TestImportedFiles::anotherDurationMeansOtherSiblings()
{
    const int source = add("a.wav", 0.0);
    const int row = add("b.wav", 10.0);
    files->takeReading(result("01:00:00:00"), source, 0, found);
    files->takeReading({}, row, 0, notFound);
    QCOMPARE(stateOf(row), QString("not found"));
    files->takeProbe(probed(10.0), source, 0);
    files->takeReading({}, row, 0, notFound);
    QCOMPARE(stateOf(row), QString("linked"));
}

void TestImportedFiles::rowsAreRemovedUnlessAnImportRuns()
{
    for (const char *name : {"a.wav", "b.wav", "c.wav", "d.wav"})
        add(name, 10.0);
    files->pendingWork().drop();
    QVERIFY(!files->remove({0, 2}));
    QCOMPARE(files->count(), 4);
    files->pendingWork().takeDrop();
    files->pendingWork().endImport();
    QVERIFY(!files->remove({}));
    QVERIFY(files->remove({0, 2}));
    QCOMPARE(files->count(), 2);
    QCOMPARE(files->record(0).fileName, QString("b.wav"));
    QCOMPARE(files->record(1).fileName, QString("d.wav"));
}

void TestImportedFiles::siblingsFindEachOtherAfterARemoval()
{
    add("a.mov", 10.0);
    add("b.wav", 10.0);
    add("c.wav", 10.02);
    add("d.wav", noNumber);
    add("e.wav", 10.0, 1);
    add("f.wav", 10.0);
    files->takeReading(result("01:00:00:00"), 5, 0, found);
    QVERIFY(files->remove({0, 1})); // what were the rows 2 to 5 are now the rows 0 to 3
    QCOMPARE(stateOf(0), QString("linked"));
    QCOMPARE(files->status(0).sourceName, QString("f.wav"));
    QCOMPARE(files->record(0).linkedRow, 5); // a link is not undone
    files->takeForReading({3});
    QCOMPARE(textOf(files->takeReading(result("02:00:00:00"), 3, 0, found)),
             QString("row 3: audio TC; linked 0"));
    QCOMPARE(files->record(0).audioTC, QString("02:00:00:00"));
}

void TestImportedFiles::aReadingIsPendingWork()
{
    add("a.mov", 10.0);
    QVERIFY(files->takeForReading({}).isEmpty());
    QVERIFY(!files->pendingWork().isBusy());
    const QVector<FileData> taken = files->takeForReading({0});
    QCOMPARE(taken.size(), 1);
    QVERIFY(taken.at(0).audioTCPending && taken.at(0).rowNumber == 0);
    QVERIFY(files->pendingWork().isReading());
}

QTEST_GUILESS_MAIN(TestImportedFiles)
#include "tst_importedfiles.moc"
