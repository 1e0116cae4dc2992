// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "filelist/filelist.h"
#include "testkit/windowdriver/dropon.h"
#include "tests/filelist/linkedfile.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

namespace
{

constexpr int audioColumn = 3;

QJsonObject result(const QString &timecode, int channel = 0)
{
    return {{"Timecode", timecode},
            {"DropFrame", false},
            {"NTSC", false},
            {"FrameRateFound", 25},
            {"FrameRateBaseFound", 25},
            {"ChannelFound", channel},
            {"SamplesSinceMidnight", 1728000000}};
}

FileData probed(double duration)
{
    FileData record;
    record.duration = duration;
    record.streams = {QJsonObject{{"codec_type", "audio"}, {"channel_layout", "stereo"}},
                      QJsonObject{{"codec_type", "audio"}, {"channel_layout", "mono"}}};
    return record;
}

} // namespace

/// A table over real files, so that their modification times can be set.
class TestFileListTimecode : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void aFoundTimecodeIsShownAndKept();
    void anEmptyResultIsShownAndSetsNoFlag();
    void otherFailuresShowTheirText_data();
    void otherFailuresShowTheirText();
    void aPictureFileWithoutTimecodeSaysSoAtOnce();
    void aSoundFileWithoutTimecodeTakesThatOfItsSibling_data();
    void aSoundFileWithoutTimecodeTakesThatOfItsSibling();
    void theLastSourceWins();
    void aFoundTimecodeIsPassedOnToTheSiblings();
    void cellsThatFollowALinkArePaintedAnew();
    void siblingsWithTheirOwnTimecodeAreOverwritten();
    void aLateResultIsDropped();
    void aSecondReadingIsTakenOnce();
    void aSecondReadingWithoutTimecodeTakesTheTimecodeAway();
    void aSecondReadingWithoutTimecodeKeepsALinkedOne();
    void anEmptyResultIsNotExported();
    void aSecondReadingThatFailsKeepsTheTimecodeAndSaysSo();
    void linkedRowsNameTheirSourceInTheToolTip();
    void cellsKeepTheDefaultAlignment();

private:
    int add(const QString &name, double duration, int secondsLater = 0);
    void readAgain();
    QString cell(int row) const { return list->item(row, audioColumn)->text(); }
    QString toolTip(int row) const { return list->item(row, audioColumn)->toolTip(); }
    FileData record(int row) const;

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<FileList> list;
};

void TestFileListTimecode::initTestCase()
{
    registerRecordTypes();
}

void TestFileListTimecode::init()
{
    folder = std::make_unique<QTemporaryDir>();
    list = std::make_unique<FileList>(nullptr);
    dropOn(*list, {folder->path()});
}

void TestFileListTimecode::cleanup()
{
    list.reset();
    folder.reset();
}

int TestFileListTimecode::add(const QString &name, double duration, int secondsLater)
{
    const QFileInfo file = linkedfile::empty(folder->filePath(name), secondsLater);
    list->addItemToTable(file);
    const int row = list->rowCount() - 1;
    list->onFFProbeResult(probed(duration), row, 0);
    return row;
}

void TestFileListTimecode::readAgain()
{
    AudioTCOptions options;
    options.allFiles = true;
    list->onAudioTCReadReq(options);
}

FileData TestFileListTimecode::record(int row) const
{
    QSignalSpy updates(list.get(), &FileList::updateFileInfo);
    emit list->cellClicked(row, 0);
    return updates.at(0).at(0).value<FileData>();
}

void TestFileListTimecode::aFoundTimecodeIsShownAndKept()
{
    const int row = add("a.mov", 10.0);
    list->onAudioTCReadReturn(result("10:00:00:00", 1), row, 0, 0);
    QCOMPARE(cell(row), QString("10:00:00:00@25.00 on ch. 2"));
    QCOMPARE(toolTip(row), QString("Frame rate: 25.00 fps\nDrop-frame: no\nStream: 0\nChannel: 2\n"
                                   "Samples since midnight: 1728000000"));
    const FileData file = record(row);
    QCOMPARE(file.audioTC, QString("10:00:00:00"));
    QCOMPARE(file.audioStreamIndex, 0);
    QCOMPARE(file.audioChannel, 1);
    QCOMPARE(file.tcChannelLayout, QString("stereo"));
    QCOMPARE(file.audioTCResult, result("10:00:00:00", 1));
    QVERIFY(file.hasAudioTC);
    QVERIFY(!file.audioTCLinked);
}

void TestFileListTimecode::anEmptyResultIsShownAndSetsNoFlag()
{
    const int row = add("a.mov", 10.0);
    list->onAudioTCReadReturn({}, row, 0, 0);
    QCOMPARE(cell(row), QString("@0.00 on ch. 1"));
    QVERIFY(!record(row).hasAudioTC);
}

void TestFileListTimecode::otherFailuresShowTheirText_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("no arguments") << 100 << "innsufficient arguments for LTCReader";
    QTest::newRow("channel out of range") << 202 << "channel number out of range";
    QTest::newRow("no extraction") << 2001 << "couldn't get audio track from file";
    QTest::newRow("an unknown code") << 7 << "";
}

void TestFileListTimecode::otherFailuresShowTheirText()
{
    QFETCH(int, code);
    const int row = add("a.wav", 10.0);
    const int sibling = add("b.wav", 10.0);
    list->onAudioTCReadReturn(result("10:00:00:00"), row, 0, code);
    QTEST(cell(row), "text");
    QCOMPARE(toolTip(row), QString());
    QCOMPARE(cell(sibling), QString("init audio TC"));
    QVERIFY(record(row).audioTC.isEmpty());
}

void TestFileListTimecode::aPictureFileWithoutTimecodeSaysSoAtOnce()
{
    const int source = add("a.wav", 10.0);
    const int row = add("a.mov", 10.0);
    list->onAudioTCReadReturn(result("10:00:00:00"), source, 0, 0);
    list->onAudioTCReadReturn({}, row, 0, 205);
    QCOMPARE(cell(row), QString("audio TC not found"));
}

void TestFileListTimecode::aSoundFileWithoutTimecodeTakesThatOfItsSibling_data()
{
    QTest::addColumn<QString>("sourceName");
    QTest::addColumn<double>("sourceDuration");
    QTest::addColumn<int>("secondsLater");
    QTest::addColumn<QString>("text");
    const QString linked("10:00:00:00@(linked)");
    const QString none("audio TC not found");
    QTest::newRow("0.04 s longer") << "b.wav" << 10.04 << 0 << linked;
    QTest::newRow("exactly 0.05 s longer") << "b.wav" << 10.05 << 0 << none;
    QTest::newRow("another modification time") << "b.wav" << 10.0 << 1 << none;
    QTest::newRow("a picture file") << "b.mov" << 10.0 << 0 << none;
}

void TestFileListTimecode::aSoundFileWithoutTimecodeTakesThatOfItsSibling()
{
    QFETCH(QString, sourceName);
    QFETCH(double, sourceDuration);
    QFETCH(int, secondsLater);
    QFETCH(QString, text);
    const int source = add(sourceName, sourceDuration, secondsLater);
    list->onAudioTCReadReturn(result("10:00:00:00"), source, 0, 0);
    const int row = add("a.WAV", 10.0);
    list->onAudioTCReadReturn({}, row, 0, 205);
    QCOMPARE(cell(row), text);
    const FileData file = record(row);
    const bool linked = text.endsWith("(linked)");
    QCOMPARE(file.audioTCLinked, linked);
    QCOMPARE(file.hasAudioTC, linked);
    QCOMPARE(file.linkedRow, linked ? source : -1);
    QCOMPARE(file.audioTCResult, linked ? result("10:00:00:00") : QJsonObject());
    QCOMPARE(file.audioStreamIndex, -1);
}

void TestFileListTimecode::theLastSourceWins()
{
    // The durations make both sources siblings of the last row, but not of each other.
    const int first = add("a.wav", 9.97);
    const int second = add("b.wav", 10.03);
    list->onAudioTCReadReturn(result("01:00:00:00"), first, 0, 0);
    list->onAudioTCReadReturn(result("02:00:00:00"), second, 0, 0);
    const int row = add("c.wav", 10.0);
    list->onAudioTCReadReturn({}, row, 0, 205);
    QCOMPARE(cell(row), QString("02:00:00:00@(linked)"));
    QCOMPARE(record(row).linkedRow, second);
}

void TestFileListTimecode::aFoundTimecodeIsPassedOnToTheSiblings()
{
    const int before = add("a.wav", 10.01);
    const int row = add("b.wav", 10.0);
    const int after = add("c.WAV", 9.99);
    const int longer = add("d.wav", 10.06);
    const int picture = add("e.mov", 10.0);
    list->onAudioTCReadReturn({}, before, 0, 205);
    list->onAudioTCReadReturn(result("10:00:00:00"), row, 0, 0);
    for (const int sibling : {before, after}) {
        QCOMPARE(cell(sibling), QString("10:00:00:00@(linked)"));
        const FileData file = record(sibling);
        QVERIFY(file.audioTCLinked && file.hasAudioTC);
        QCOMPARE(file.linkedRow, row);
        QCOMPARE(file.audioTCResult, result("10:00:00:00"));
    }
    QCOMPARE(cell(longer), QString("init audio TC"));
    QCOMPARE(cell(picture), QString("init audio TC"));
    QVERIFY(!record(row).audioTCLinked);
}

void TestFileListTimecode::cellsThatFollowALinkArePaintedAnew()
{
    const int first = add("a.wav", 10.0);
    const int second = add("b.wav", 10.0);
    const auto reports = [this, second](const QSignalSpy &changes) {
        return std::any_of(changes.cbegin(), changes.cend(), [this, second](const QList<QVariant> &change) {
            const QItemSelectionRange range(change.at(0).toModelIndex(), change.at(1).toModelIndex());
            return range.contains(list->model()->index(second, audioColumn));
        });
    };
    for (const char *timecode : {"10:00:00:00", "11:00:00:00"}) { // a new link, then another in its place
        readAgain();
        QSignalSpy changes(list->model(), &QAbstractItemModel::dataChanged);
        list->onAudioTCReadReturn(result(timecode), first, 0, 0);
        QTRY_VERIFY(reports(changes));
    }
}

void TestFileListTimecode::siblingsWithTheirOwnTimecodeAreOverwritten()
{
    const int first = add("a.wav", 9.97);
    const int second = add("b.wav", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), first, 0, 0);
    QCOMPARE(cell(second), QString("01:00:00:00@(linked)"));
    readAgain();
    list->onAudioTCReadReturn(result("02:00:00:00"), second, 0, 0);
    QCOMPARE(cell(second), QString("02:00:00:00@25.00 on ch. 1"));
    QCOMPARE(cell(first), QString("02:00:00:00@(linked)"));
    QCOMPARE(record(first).audioTC, QString("02:00:00:00"));
    QVERIFY2(record(second).audioTCLinked, "a link is never taken back");
}

void TestFileListTimecode::aLateResultIsDropped()
{
    const int row = add("a.mov", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), row, 0, 0);
    list->onAudioTCReadReturn(result("02:00:00:00"), row, 1, 0);
    list->onAudioTCReadReturn({}, row, 1, 205);
    list->onAudioTCReadReturn({}, row, 1, 202);
    QCOMPARE(cell(row), QString("01:00:00:00@25.00 on ch. 1"));
    QCOMPARE(record(row).audioStreamIndex, 0);
}

void TestFileListTimecode::aSecondReadingIsTakenOnce()
{
    const int row = add("a.mov", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), row, 0, 0);
    readAgain();
    QVERIFY(record(row).audioTCPending);
    list->onAudioTCReadReturn(result("02:00:00:00"), row, 1, 0);
    QVERIFY(!record(row).audioTCPending);
    list->onAudioTCReadReturn(result("03:00:00:00"), row, 0, 0);
    QCOMPARE(cell(row), QString("02:00:00:00@25.00 on ch. 1"));
    QCOMPARE(record(row).tcChannelLayout, QString("mono"));
}

void TestFileListTimecode::aSecondReadingWithoutTimecodeTakesTheTimecodeAway()
{
    const int row = add("a.mov", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), row, 0, 0);
    readAgain();
    list->onAudioTCReadReturn({}, row, 0, 205);
    QCOMPARE(cell(row), QString("audio TC not found"));
    QCOMPARE(toolTip(row), QString());
    QVERIFY(!record(row).hasAudioTC);
    QVERIFY2(record(row).audioTCPending, "only a taken timecode ends the waiting");
}

void TestFileListTimecode::aSecondReadingWithoutTimecodeKeepsALinkedOne()
{
    const int source = add("a.wav", 10.0);
    const int row = add("b.wav", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), source, 0, 0);
    readAgain();
    list->onAudioTCReadReturn({}, row, 0, 205);
    QCOMPARE(cell(row), QString("01:00:00:00@(linked)"));
    QVERIFY(record(row).hasAudioTC);
}

void TestFileListTimecode::anEmptyResultIsNotExported()
{
    const int row = add("a.wav", 10.0);
    const int sibling = add("b.wav", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), row, 0, 0);
    QVERIFY(record(row).hasAudioTC && record(sibling).hasAudioTC);
    readAgain();
    list->onAudioTCReadReturn({}, row, 0, 0);
    QCOMPARE(cell(row), QString("@0.00 on ch. 1"));
    QCOMPARE(cell(sibling), QString("@(linked)"));
    QVERIFY2(!record(row).hasAudioTC, "it would be written as an empty timecode, or as midnight");
    QVERIFY(!record(sibling).hasAudioTC);
}

void TestFileListTimecode::aSecondReadingThatFailsKeepsTheTimecodeAndSaysSo()
{
    const int row = add("a.mov", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), row, 0, 0);
    readAgain();
    list->onAudioTCReadReturn({}, row, 0, 202);
    QCOMPARE(cell(row), QString("channel number out of range"));
    QCOMPARE(toolTip(row), QString("kept for export: 01:00:00:00"));
    QVERIFY(record(row).hasAudioTC);
    list->onAudioTCReadReturn(result("02:00:00:00"), row, 0, 0);
    QVERIFY(toolTip(row).startsWith("Frame rate"));
}

void TestFileListTimecode::linkedRowsNameTheirSourceInTheToolTip()
{
    const int source = add("a.wav", 10.0);
    const int row = add("b.wav", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), source, 0, 0);
    QVERIFY(toolTip(row).startsWith("Linked to: a.wav\n"));
}

void TestFileListTimecode::cellsKeepTheDefaultAlignment()
{
    const int row = add("a.mov", 10.0);
    list->onAudioTCReadReturn(result("01:00:00:00"), row, 0, 0);
    QCOMPARE(list->item(row, audioColumn)->type(), 1);
    QVERIFY(!list->item(row, audioColumn)->data(Qt::TextAlignmentRole).isValid());
}

QTEST_MAIN(TestFileListTimecode)
#include "tst_filelisttimecode.moc"
