// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "filelist/filelist.h"

#include <QClipboard>
#include <QDropEvent>
#include <QFile>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMimeData>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace
{

constexpr int centred = Qt::AlignCenter;

/// Its handlers are called by their names, as the desktop's drag has no part in these tests.
class OpenFileList : public FileList
{
public:
    using FileList::dragEnterEvent;
    using FileList::dragMoveEvent;
    using FileList::dropEvent;
    using FileList::FileList;
};

struct Table {
    OpenFileList list{nullptr};
    QStringList columnTexts(int column) const
    {
        QStringList texts;
        for (int row = 0; row < list.rowCount(); ++row)
            texts += list.item(row, column)->text();
        return texts;
    }
    bool drop(const QMimeData &data)
    {
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        list.dropEvent(&event);
        return event.isAccepted();
    }
    /// A table that holds \a names, the import of which has ended.
    void fill(const QStringList &names)
    {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile("/card")});
        drop(data);
        for (const QString &name : names)
            list.addItemToTable(QFileInfo("/card/" + name));
        list.importReady();
    }
    void select(const QVector<int> &rows)
    {
        list.clearSelection();
        for (const int row : rows) {
            list.selectionModel()->select(list.model()->index(row, 0),
                                          QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
};

FileData probed(double duration, const QString &timecode = {})
{
    FileData record;
    record.duration = duration;
    if (!timecode.isEmpty())
        record.setFileTC(timecode);
    return record;
}

QStringList names(const QVector<FileData> &files)
{
    QStringList result;
    for (const FileData &file : files)
        result += file.fileName;
    return result;
}

} // namespace

class TestFileList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void aNewTableInvitesToDropFiles();
    void theTableLooksAsItShould();
    void aDropOfFilesReplacesTheInvitation();
    void aDropOfNothingIsAcceptedAndChangesNothing();
    void aDropOfTextAddsNothing();
    void draggedFilesAreWelcome_data();
    void draggedFilesAreWelcome();
    void aFoundFileBecomesARow();
    void theBaseNameEndsAtTheFirstDot();
    void aProbedFileShowsItsDurationAndTimecode();
    void aFileWithoutTimecodeSaysSo();
    void aProbeKeepsNameAndPathOfTheRow();
    void aFailedProbeShowsItsError_data();
    void aFailedProbeShowsItsError();
    void resultsForRowsThatAreNotThereAreIgnored_data();
    void resultsForRowsThatAreNotThereAreIgnored();
    void aClickTellsTheFile();
    void aClickOnTheInvitationTellsNothing();
    void readingTakesTheChosenRows_data();
    void readingTakesTheChosenRows();
    void readingIsPendingUntilItHasEnded();
    void exportTakesTheChosenRows_data();
    void exportTakesTheChosenRows();
    void mutedExportLeavesOutFilesOfNothingButTimecode_data();
    void mutedExportLeavesOutFilesOfNothingButTimecode();
    void deletingRemovesTheSelectedRows_data();
    void deletingRemovesTheSelectedRows();
    void deletingIsRefusedWhileAnImportRuns();
    void deletedRowsShiftTheResultsThatFollow();
    void theInvitationIsNeverDeletedAndNeverComesBack();
    void columnsFitAsIfEveryCellWereLookedAt();
    void aColumnOfShortTextsIsAsWideAsItsTitleInTheFontOfTheMoment();
    void copyingGivesATableForSpreadsheets();
    void longNamesAreElidedAndShownWholeInTheToolTip();
};

void TestFileList::initTestCase()
{
    registerRecordTypes();
}

void TestFileList::aNewTableInvitesToDropFiles()
{
    const Table table;
    QCOMPARE(table.list.rowCount(), 1);
    QCOMPARE(table.list.item(0, 0)->text(), QString("Drop files here..."));
}

void TestFileList::theTableLooksAsItShould()
{
    const Table table;
    const FileList &list = table.list;
    QStringList headers;
    for (int column = 0; column < list.columnCount(); ++column)
        headers += list.horizontalHeaderItem(column)->text();
    QCOMPARE(headers, (QStringList{"File name", "Duration", "File TC", "Audio TC"}));
    QVERIFY(list.verticalHeader()->isHidden());
    QVERIFY(!list.horizontalHeader()->highlightSections());
    QCOMPARE(list.horizontalHeader()->styleSheet(),
             QString("QHeaderView::section{background-color: lightgrey;border:none;font:normal;}"
                     "QHeaderView::section:checked{font: normal;}"));
    QCOMPARE(list.styleSheet(), QString("QTableView{selection-background-color: #f2ff4900;selection-color: "
                                        "white; show-decoration-selected: 10}\n"));
    QCOMPARE(list.horizontalHeader()->sectionResizeMode(0), QHeaderView::Stretch);
    QCOMPARE(list.columnWidth(3), 300);
    QCOMPARE(list.selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(list.selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(list.editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(list.dragDropMode(), QAbstractItemView::DropOnly);
    QVERIFY(list.acceptDrops() && list.showDropIndicator());
    QVERIFY(list.alternatingRowColors());
}

void TestFileList::aDropOfFilesReplacesTheInvitation()
{
    Table table;
    QSignalSpy asked(&table.list, &FileList::iterateThroughDirReq);
    const QList<QUrl> urls{QUrl::fromLocalFile("/card/DCIM"), QUrl::fromLocalFile("/card/a.mov")};
    QMimeData data;
    data.setUrls(urls);
    QVERIFY(table.drop(data));
    QCOMPARE(table.list.rowCount(), 0);
    QCOMPARE(asked.count(), 1);
    QCOMPARE(asked.at(0).at(0).value<QList<QUrl>>(), urls);
    QVERIFY(table.drop(data));
    QCOMPARE(asked.count(), 2);
}

void TestFileList::aDropOfNothingIsAcceptedAndChangesNothing()
{
    Table table;
    QSignalSpy asked(&table.list, &FileList::iterateThroughDirReq);
    QMimeData data;
    data.setUrls({});
    QVERIFY(data.hasUrls());
    QVERIFY(data.urls().isEmpty());
    QVERIFY(table.drop(data));
    QCOMPARE(asked.count(), 0);
    QCOMPARE(table.list.rowCount(), 1);
}

void TestFileList::aDropOfTextAddsNothing()
{
    Table table;
    QSignalSpy asked(&table.list, &FileList::iterateThroughDirReq);
    QMimeData data;
    data.setText("/card/a.mov");
    QVERIFY(!table.drop(data));
    QCOMPARE(asked.count(), 0);
    QCOMPARE(table.list.rowCount(), 1);
    QCOMPARE(table.list.item(0, 0)->text(), QString("Drop files here..."));
}

void TestFileList::draggedFilesAreWelcome_data()
{
    QTest::addColumn<bool>("files");
    QTest::addColumn<bool>("welcome");
    QTest::newRow("files") << true << true;
    QTest::newRow("plain text") << false << false;
}

void TestFileList::draggedFilesAreWelcome()
{
    QFETCH(bool, files);
    Table table;
    QMimeData data;
    if (files)
        data.setUrls({QUrl::fromLocalFile("/card/a.mov")});
    else
        data.setText("hello");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    table.list.dragEnterEvent(&enter);
    QTEST(enter.isAccepted(), "welcome");
    QDragMoveEvent move(QPoint(6, 6), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    move.ignore();
    table.list.dragMoveEvent(&move);
    QTEST(move.isAccepted(), "welcome");
}

void TestFileList::aFoundFileBecomesARow()
{
    Table table;
    table.fill({});
    QSignalSpy asked(&table.list, &FileList::ffprobeFileReq);
    QTemporaryDir folder;
    QFile file(folder.filePath("A001.take1.MOV"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    const QFileInfo info(file);
    table.list.addItemToTable(info);
    table.list.addItemToTable(info);

    QCOMPARE(table.list.rowCount(), 2);
    const QStringList texts{"A001.take1.MOV", "00:00:00", "init file TC", "init audio TC"};
    for (int column = 0; column < 4; ++column) {
        QCOMPARE(table.list.item(1, column)->text(), texts.at(column));
        QCOMPARE(table.list.item(1, column)->type(), 1);
    }
    QCOMPARE(table.list.item(1, 1)->textAlignment(), centred);
    QCOMPARE(asked.count(), 2);
    QCOMPARE(asked.at(0).at(1).toInt(), 0);
    QCOMPARE(asked.at(1).at(1).toInt(), 1);
    const auto record = asked.at(1).at(0).value<FileData>();
    QCOMPARE(record.fileName, QString("A001.take1.MOV"));
    QCOMPARE(record.baseName, QString("A001"));
    QCOMPARE(record.suffix, QString("MOV"));
    QCOMPARE(record.absoluteFilePath, info.absoluteFilePath());
    QCOMPARE(record.lastModified, info.lastModified());
    QCOMPARE(record.rowNumber, -1);
}

void TestFileList::theBaseNameEndsAtTheFirstDot()
{
    Table table;
    table.fill({});
    QSignalSpy asked(&table.list, &FileList::ffprobeFileReq);
    table.list.addItemToTable(QFileInfo("/card/100% take %2.a.wav"));
    const auto record = asked.at(0).at(0).value<FileData>();
    QCOMPARE(record.baseName, QString("100% take %2"));
    QCOMPARE(record.suffix, QString("wav"));
}

void TestFileList::aProbedFileShowsItsDurationAndTimecode()
{
    Table table;
    table.fill({"a.mov"});
    QSignalSpy asked(&table.list, &FileList::initAudioTCInfoReq);
    table.list.onFFProbeResult(probed(59.5, "10:00:00:00"), 0, 0);
    QCOMPARE(table.list.item(0, 1)->text(), QString("00:01:00"));
    QCOMPARE(table.list.item(0, 1)->textAlignment(), centred);
    QCOMPARE(table.list.item(0, 2)->text(), QString("10:00:00:00"));
    QCOMPARE(table.list.item(0, 2)->textAlignment(), centred);
    QCOMPARE(table.list.item(0, 3)->text(), QString("init audio TC"));
    QCOMPARE(asked.count(), 1);
    QCOMPARE(asked.at(0).at(1).toInt(), 0);
    const auto record = asked.at(0).at(0).value<FileData>();
    QCOMPARE(record.fileTC, QString("10:00:00:00"));
    QVERIFY(record.hasFileTC);
    QCOMPARE(record.duration, 59.5);
}

void TestFileList::aFileWithoutTimecodeSaysSo()
{
    Table table;
    table.fill({"a.mov"});
    QSignalSpy asked(&table.list, &FileList::initAudioTCInfoReq);
    table.list.onFFProbeResult(probed(1.0), 0, 0);
    QCOMPARE(table.list.item(0, 2)->text(), QString("file TC not found"));
    QVERIFY(!asked.at(0).at(0).value<FileData>().hasFileTC);
}

void TestFileList::aProbeKeepsNameAndPathOfTheRow()
{
    Table table;
    table.fill({"a.wav"});
    QSignalSpy asked(&table.list, &FileList::initAudioTCInfoReq);
    FileData answer;
    answer.fileName = "other";
    answer.absoluteFilePath = "/other";
    answer.baseName = "other";
    answer.suffix = "other";
    answer.lastModified = QDateTime::currentDateTime();
    answer.rowNumber = 77;
    answer.format = {{"format_name", "wav"}};
    answer.streams = {QJsonObject{{"codec_type", "audio"}}};
    answer.audioStreams = answer.streams;
    answer.audioStreamMap = QByteArray(1, '\0');
    answer.mainStream = {{"index", 1}};
    answer.audioChannelCount = 8;
    answer.isGoPro = true;
    answer.setTimeReference(qint64{48000} * 86400 * 2, 48000);
    table.list.onFFProbeResult(answer, 0, 0);
    const auto record = asked.at(0).at(0).value<FileData>();
    QCOMPARE(record.fileName, QString("a.wav"));
    QCOMPARE(record.absoluteFilePath, QString("/card/a.wav"));
    QCOMPARE(record.baseName, QString("a"));
    QCOMPARE(record.suffix, QString("wav"));
    QVERIFY(record.lastModified != answer.lastModified);
    QCOMPARE(record.rowNumber, -1);
    QCOMPARE(record.format, answer.format);
    QCOMPARE(record.streams, answer.streams);
    QCOMPARE(record.audioStreams, answer.audioStreams);
    QCOMPARE(record.audioStreamMap, answer.audioStreamMap);
    QCOMPARE(record.mainStream, answer.mainStream);
    QCOMPARE(record.audioChannelCount, 8);
    QCOMPARE(record.timeReference, answer.timeReference);
    QCOMPARE(record.fileTC, QString("48:00:00.000"));
    QVERIFY(record.isGoPro);
}

void TestFileList::aFailedProbeShowsItsError_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("the tool failed") << 1000 << "error while reading file data";
    QTest::newRow("the tool reported nothing") << 1001 << "couldn't read file data";
    QTest::newRow("an unknown code") << 7 << "";
}

void TestFileList::aFailedProbeShowsItsError()
{
    QFETCH(int, code);
    Table table;
    table.fill({"a.mov"});
    QSignalSpy asked(&table.list, &FileList::initAudioTCInfoReq);
    table.list.onFFProbeResult(FileData(), 0, code);
    QCOMPARE(table.list.item(0, 1)->text(), QString("00:00:00"));
    QCOMPARE(table.list.item(0, 2)->text(), QString("file TC not found"));
    QTEST(table.list.item(0, 3)->text(), "text");
    QCOMPARE(asked.count(), 0);
}

void TestFileList::resultsForRowsThatAreNotThereAreIgnored_data()
{
    QTest::addColumn<int>("row");
    QTest::newRow("the row behind the last") << 2;
    QTest::newRow("far behind") << 2000000;
    QTest::newRow("before the first") << -1;
}

void TestFileList::resultsForRowsThatAreNotThereAreIgnored()
{
    QFETCH(int, row);
    Table table;
    table.fill({"a.mov", "b.mov"});
    QSignalSpy asked(&table.list, &FileList::initAudioTCInfoReq);
    table.list.onFFProbeResult(probed(5.0, "10:00:00:00"), row, 0);
    table.list.onFFProbeResult(FileData(), row, 1000);
    table.list.onAudioTCReadReturn({{"Timecode", "01:00:00:00"}}, row, 0, 0);
    table.list.onAudioTCReadReturn({}, row, 0, 205);
    QCOMPARE(table.columnTexts(1), (QStringList{"00:00:00", "00:00:00"}));
    QCOMPARE(table.columnTexts(2), (QStringList{"init file TC", "init file TC"}));
    QCOMPARE(table.columnTexts(3), (QStringList{"init audio TC", "init audio TC"}));
    QCOMPARE(asked.count(), 0);

    // The row of the invitation has no file behind it.
    Table empty;
    empty.list.onFFProbeResult(probed(5.0, "10:00:00:00"), 0, 0);
    empty.list.onAudioTCReadReturn({{"Timecode", "01:00:00:00"}}, 0, 0, 0);
    QCOMPARE(empty.list.item(0, 0)->text(), QString("Drop files here..."));
    QVERIFY(!empty.list.item(0, 3));
}

void TestFileList::aClickTellsTheFile()
{
    Table table;
    table.fill({"a.mov", "b.mov"});
    QSignalSpy updates(&table.list, &FileList::updateFileInfo);
    emit table.list.cellClicked(1, 2);
    QCOMPARE(updates.count(), 1);
    QCOMPARE(updates.at(0).at(0).value<FileData>().fileName, QString("b.mov"));
}

void TestFileList::aClickOnTheInvitationTellsNothing()
{
    Table table;
    QSignalSpy updates(&table.list, &FileList::updateFileInfo);
    emit table.list.cellClicked(0, 0);
    QCOMPARE(updates.count(), 0);
}

void TestFileList::readingTakesTheChosenRows_data()
{
    QTest::addColumn<bool>("all");
    QTest::addColumn<QVector<int>>("selected");
    QTest::addColumn<QStringList>("taken");
    QTest::newRow("selected rows, ascending") << false << QVector<int>{2, 0} << QStringList{"a.mov", "c.mov"};
    QTest::newRow("no row selected") << false << QVector<int>{} << QStringList{};
    QTest::newRow("all rows") << true << QVector<int>{1} << QStringList{"a.mov", "b.mov", "c.mov"};
}

void TestFileList::readingTakesTheChosenRows()
{
    QFETCH(bool, all);
    QFETCH(QVector<int>, selected);
    QFETCH(QStringList, taken);
    Table table;
    table.fill({"a.mov", "b.mov", "c.mov"});
    table.select(selected);
    QSignalSpy asked(&table.list, &FileList::updateAudioTCInfoReq);
    AudioTCOptions options;
    options.allFiles = all;
    options.channel = 3;
    table.list.onAudioTCReadReq(options);
    QCOMPARE(asked.count(), 1);
    QCOMPARE(asked.at(0).at(1).value<AudioTCOptions>().channel, 3);
    const auto files = asked.at(0).at(0).value<QVector<FileData>>();
    QCOMPARE(names(files), taken);
    const QStringList tableNames = table.columnTexts(0);
    for (const FileData &file : files) {
        QVERIFY(file.audioTCPending);
        QCOMPARE(file.rowNumber, tableNames.indexOf(file.fileName));
    }
}

void TestFileList::readingIsPendingUntilItHasEnded()
{
    Table table;
    table.list.onAudioTCReadReq({});
    QVERIFY2(!table.list.pendingWork().isReading(), "nothing to read");
    table.fill({"a.mov"});
    AudioTCOptions options;
    options.allFiles = true;
    table.list.onAudioTCReadReq(options);
    QVERIFY(table.list.pendingWork().isReading());
    table.list.readingFinished();
    QVERIFY(!table.list.pendingWork().isReading());

    table.list.onAudioTCReadReq(options);
    table.list.importReady(); // the end of a reading whose last file failed
    QVERIFY(!table.list.pendingWork().isReading());

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile("/card")});
    table.drop(data);
    table.list.onAudioTCReadReq(options);
    table.list.importReady();
    QVERIFY2(table.list.pendingWork().isReading(), "the import ends first, the reading is still to come");
    table.list.readingFinished();
    QVERIFY(!table.list.pendingWork().isReading());
}

void TestFileList::exportTakesTheChosenRows_data()
{
    readingTakesTheChosenRows_data();
}

void TestFileList::exportTakesTheChosenRows()
{
    QFETCH(bool, all);
    QFETCH(QVector<int>, selected);
    QFETCH(QStringList, taken);
    Table table;
    table.fill({"a.mov", "b.mov", "c.mov"});
    AudioTCOptions pending;
    pending.allFiles = true;
    table.list.onAudioTCReadReq(pending);
    table.select(selected);
    QSignalSpy asked(&table.list, &FileList::exportFilesReq);
    ExportOptions options;
    options.exportDir = "/target";
    options.exportAll = all;
    table.list.exportFiles(options);
    QCOMPARE(asked.count(), 1);
    QCOMPARE(asked.at(0).at(1).value<ExportOptions>().exportDir, QString("/target"));
    const auto files = asked.at(0).at(0).value<QVector<FileData>>();
    QCOMPARE(names(files), taken);
    const QStringList tableNames = table.columnTexts(0);
    for (const FileData &file : files) {
        QCOMPARE(file.rowNumber, tableNames.indexOf(file.fileName));
        QVERIFY(file.audioTCPending);
    }
}

void TestFileList::mutedExportLeavesOutFilesOfNothingButTimecode_data()
{
    QTest::addColumn<bool>("mute");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("hasAudioTC");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<int>("channels");
    QTest::addColumn<bool>("exported");
    QTest::newRow("mono with its own timecode") << true << "a.WAV" << true << false << 1 << false;
    QTest::newRow("no channel counted") << true << "a.wav" << true << false << 0 << false;
    QTest::newRow("two channels") << true << "a.wav" << true << false << 2 << true;
    QTest::newRow("without timecode") << true << "a.wav" << false << false << 1 << true;
    QTest::newRow("linked") << true << "a.wav" << false << true << 1 << true;
    QTest::newRow("not muted") << false << "a.wav" << true << false << 1 << true;
    QTest::newRow("a picture file") << true << "a.mov" << true << false << 1 << true;
}

void TestFileList::mutedExportLeavesOutFilesOfNothingButTimecode()
{
    QFETCH(bool, mute);
    QFETCH(QString, name);
    QFETCH(bool, hasAudioTC);
    QFETCH(bool, linked);
    QFETCH(int, channels);
    QFETCH(bool, exported);
    Table table;
    table.fill({name, "sibling.wav"});
    FileData answer = probed(3.0);
    answer.audioChannelCount = channels;
    table.list.onFFProbeResult(answer, 0, 0);
    table.list.onFFProbeResult(probed(3.0), 1, 0);
    if (hasAudioTC)
        table.list.onAudioTCReadReturn({{"Timecode", "01:00:00:00"}}, 0, 0, 0);
    if (linked)
        table.list.onAudioTCReadReturn({{"Timecode", "01:00:00:00"}}, 1, 0, 0);
    table.select({0});
    QSignalSpy asked(&table.list, &FileList::exportFilesReq);
    ExportOptions options;
    options.muteAudioTC = mute;
    table.list.exportFiles(options);
    const auto files = asked.at(0).at(0).value<QVector<FileData>>();
    QCOMPARE(files.size(), exported ? 1 : 0);
    if (exported)
        QCOMPARE(files.at(0).hasAudioTC, hasAudioTC || linked);
}

void TestFileList::deletingRemovesTheSelectedRows_data()
{
    QTest::addColumn<QVector<int>>("selected");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("none") << QVector<int>{} << QStringList{"a", "b", "c", "d", "e"};
    QTest::newRow("the first") << QVector<int>{0} << QStringList{"b", "c", "d", "e"};
    QTest::newRow("the last") << QVector<int>{4} << QStringList{"a", "b", "c", "d"};
    QTest::newRow("neighbours") << QVector<int>{1, 2} << QStringList{"a", "d", "e"};
    QTest::newRow("scattered, selected upwards") << QVector<int>{4, 2, 0} << QStringList{"b", "d"};
    QTest::newRow("two groups") << QVector<int>{0, 1, 3, 4} << QStringList{"c"};
    QTest::newRow("all") << QVector<int>{0, 1, 2, 3, 4} << QStringList{};
}

void TestFileList::deletingRemovesTheSelectedRows()
{
    QFETCH(QVector<int>, selected);
    QFETCH(QStringList, left);
    Table table;
    table.fill({"a", "b", "c", "d", "e"});
    table.select(selected);
    table.list.deleteSelectedRows();
    QCOMPARE(table.columnTexts(0), left);
    QSignalSpy asked(&table.list, &FileList::exportFilesReq);
    ExportOptions options;
    options.exportAll = true;
    table.list.exportFiles(options);
    QCOMPARE(names(asked.at(0).at(0).value<QVector<FileData>>()), left);
}

void TestFileList::deletingIsRefusedWhileAnImportRuns()
{
    Table table;
    table.fill({"a", "b"});
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile("/card2")});
    table.drop(data);
    table.select({0});
    table.list.deleteSelectedRows();
    QCOMPARE(table.columnTexts(0), (QStringList{"a", "b"}));
    table.list.importReady();
    table.list.deleteSelectedRows();
    QCOMPARE(table.columnTexts(0), QStringList{"b"});
}

void TestFileList::deletedRowsShiftTheResultsThatFollow()
{
    Table table;
    table.fill({"a.mov", "b.mov", "c.mov"});
    table.select({0});
    table.list.deleteSelectedRows();
    table.list.onAudioTCReadReturn({{"Timecode", "01:00:00:00"}, {"FrameRateFound", 25}}, 1, 0, 0);
    QCOMPARE(table.columnTexts(0), (QStringList{"b.mov", "c.mov"}));
    QCOMPARE(table.columnTexts(3), (QStringList{"init audio TC", "01:00:00:00@25.00 on ch. 1"}));
}

void TestFileList::theInvitationIsNeverDeletedAndNeverComesBack()
{
    Table table;
    table.select({0});
    table.list.deleteSelectedRows();
    QCOMPARE(table.list.rowCount(), 1);
    table.fill({"a"});
    table.select({0});
    table.list.deleteSelectedRows();
    QCOMPARE(table.list.rowCount(), 0);
    QSignalSpy updates(&table.list, &FileList::updateFileInfo);
    emit table.list.cellClicked(0, 0);
    QCOMPARE(updates.count(), 0);
}

void TestFileList::columnsFitAsIfEveryCellWereLookedAt()
{
    QRandomGenerator random(12);
    Table table;
    table.list.resize(900, 300);
    table.list.show();
    QStringList files;
    for (int i = 0; i < 60; ++i)
        files += QString("take%1.mov").arg(i);
    table.fill(files);
    for (int step = 0; step < 300; ++step) {
        const int row = random.bounded(table.list.rowCount());
        const QString timecode(random.bounded(40), 'W');
        if (step == 150)
            table.list.setFont(QFont("sans", 20));
        if (step % 50 == 49) {
            table.select({row});
            table.list.deleteSelectedRows();
            continue;
        }
        // A timecode that was found before is replaced only when a reading was asked for.
        AudioTCOptions all;
        all.allFiles = true;
        table.list.onAudioTCReadReq(all);
        table.list.onAudioTCReadReturn({{"Timecode", timecode}}, row, 0, 0);
        table.list.onFFProbeResult(probed(1.0, timecode), row, 0);
        for (const int column : {2, 3}) {
            const int fitted = table.list.columnWidth(column);
            table.list.resizeColumnToContents(column);
            QCOMPARE(fitted, table.list.columnWidth(column));
        }
    }
}

void TestFileList::aColumnOfShortTextsIsAsWideAsItsTitleInTheFontOfTheMoment()
{
    Table table;
    table.list.resize(900, 300);
    table.list.show();
    table.fill({"a.mov"});
    for (const int size : {10, 40, 8}) {
        QFont font = table.list.font();
        font.setPointSize(size);
        table.list.setFont(font);
        table.list.onFFProbeResult(probed(1.0, "-"), 0, 0);
        const int fitted = table.list.columnWidth(2);
        table.list.resizeColumnToContents(2);
        QCOMPARE(fitted, table.list.columnWidth(2));
        QCOMPARE(fitted, table.list.horizontalHeader()->sectionSizeHint(2));
    }
}

void TestFileList::copyingGivesATableForSpreadsheets()
{
    Table table;
    table.fill({"a.mov", "b.mov", "c.mov"});
    table.list.onFFProbeResult(probed(5.0, "10:00:00:00"), 2, 0);
    table.select({2, 0});
    table.list.show();
    table.list.activateWindow();
    table.list.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&table.list));
    QTest::keyClick(&table.list, Qt::Key_C, Qt::ControlModifier);
    const QString copied("File name\tDuration\tFile TC\tAudio TC\n"
                         "a.mov\t00:00:00\tinit file TC\tinit audio TC\n"
                         "c.mov\t00:00:05\t10:00:00:00\tinit audio TC\n");
    QCOMPARE(QGuiApplication::clipboard()->text(), copied);
    table.select({});
    QTest::keyClick(&table.list, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), copied);
    QTest::keyClick(&table.list, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(table.list.selectionModel()->selectedRows().size(), 3);
}

void TestFileList::longNamesAreElidedAndShownWholeInTheToolTip()
{
    Table table;
    table.fill({"a.mov"});
    QCOMPARE(table.list.textElideMode(), Qt::ElideMiddle);
    QCOMPARE(table.list.item(0, 0)->toolTip(), QString("/card/a.mov"));
}

QTEST_MAIN(TestFileList)
#include "tst_filelist.moc"
