// SPDX-License-Identifier: MIT
// The file table compared with a plain one that looks at every row for each result: after anything, both must
// show the same row by row.
#include "app/records/recordtypes.h"
#include "filelist/celltexts.h"
#include "filelist/filelist.h"
#include "filelist/linking.h"
#include "ltc/readererrors.h"
#include "testkit/windowdriver/dropon.h"
#include "tests/filelist/linkedfile.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

namespace
{

constexpr int fileTCColumn = 2;
constexpr int audioTCColumn = 3;

struct PlainRow {
    FileData record;
    QString audioTC = "init audio TC"; ///< text of the cell
};

/// What the table has to hold, without any thought of speed.
class PlainTable
{
public:
    QVector<PlainRow> rows;

    void probe(int row, double duration) { rows[row].record.duration = duration; }

    void failProbe(int row, int exitCode) { rows[row].audioTC = readerErrorText(exitCode); }

    void readAgain()
    {
        for (PlainRow &row : rows)
            row.record.audioTCPending = true;
    }

    void takeResult(int row, const QJsonObject &result, int exitCode)
    {
        const FileData &record = rows.at(row).record;
        if (record.hasAudioTC && !record.audioTCPending)
            return;
        if (exitCode == 0)
            found(row, result);
        else if (exitCode == 205)
            notFound(row);
        else
            rows[row].audioTC = readerErrorText(exitCode);
    }

    void remove(const QVector<int> &chosen)
    {
        for (auto row = chosen.crbegin(); row != chosen.crend(); ++row)
            rows.remove(*row);
    }

private:
    void link(int row, int source)
    {
        const FileData from = rows.at(source).record;
        rows[row].record.setLinkedAudioTC(source, from.audioTC, from.audioTCResult);
        rows[row].record.hasAudioTC = !from.audioTC.isEmpty();
        rows[row].audioTC = from.audioTC + "@(linked)";
    }

    bool areSiblings(int row, int other) const
    {
        return row != other && linking::recordedTogether(rows.at(row).record, rows.at(other).record);
    }

    void found(int row, const QJsonObject &result)
    {
        FileData &record = rows[row].record;
        record.setAudioTC(result.value("Timecode").toString(), {0, result.value("ChannelFound").toInt()});
        record.audioTCResult = result;
        record.audioTCPending = false;
        rows[row].audioTC = celltexts::audioTimecode(result);
        for (int other = 0; other < rows.size(); ++other) {
            if (areSiblings(row, other))
                link(other, row);
        }
        record.hasAudioTC = !record.audioTC.isEmpty();
    }

    void notFound(int row)
    {
        for (int other = 0; other < rows.size(); ++other) {
            if (areSiblings(row, other) && rows.at(other).record.hasAudioTC)
                link(row, other);
        }
        if (rows.at(row).record.audioTCLinked)
            return;
        rows[row].record.hasAudioTC = false;
        rows[row].audioTC = "audio TC not found";
    }
};

/// Everything in a record that the table can change, as text.
QString textOf(const FileData &record)
{
    return QString("%1 | linked %2 to %3 | found %4 | stream %5 channel %6 | %7 s | pending %8 | %9")
        .arg(record.audioTC)
        .arg(record.audioTCLinked)
        .arg(record.audioTCLinked ? record.linkedRow : -1)
        .arg(record.hasAudioTC)
        .arg(record.audioStreamIndex)
        .arg(record.audioChannel)
        .arg(record.duration)
        .arg(record.audioTCPending)
        .arg(record.audioTCResult.value("SamplesSinceMidnight").toInt());
}

} // namespace

class TestPlainTable : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { registerRecordTypes(); }
    void whateverHappensBothTablesTellTheSame_data();
    void whateverHappensBothTablesTellTheSame();

private:
    void addFile();
    void doSomething();
    void deleteSome();
    void compare();
    FileData recordOf(int row);
    QJsonObject randomResult();

    std::unique_ptr<QRandomGenerator> random;
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<FileList> table;
    PlainTable plain;
};

void TestPlainTable::whateverHappensBothTablesTellTheSame_data()
{
    QTest::addColumn<uint>("seed");
    for (uint seed = 1; seed <= 40; ++seed)
        QTest::newRow(qPrintable(QString("table %1").arg(seed))) << seed;
}

void TestPlainTable::whateverHappensBothTablesTellTheSame()
{
    QFETCH(uint, seed);
    random = std::make_unique<QRandomGenerator>(seed);
    folder = std::make_unique<QTemporaryDir>();
    table = std::make_unique<FileList>(nullptr);
    plain = {};
    table->show();
    dropOn(*table, {folder->path()});
    table->importReady();

    constexpr int steps = 250;
    for (int step = 0; step < steps; ++step) {
        if (plain.rows.size() < 3 || random->bounded(8) == 0)
            addFile();
        doSomething();
        if (step % 10 == 0) // seldom enough for links to pile up unseen
            compare();
        if (QTest::currentTestFailed())
            return;
    }
    compare();
}

void TestPlainTable::addFile()
{
    static const QStringList suffixes{"wav", "wav", "WAV", "mov"};
    const QString name = QString("take%1.%2").arg(random->generate()).arg(suffixes.at(random->bounded(4)));
    const QFileInfo file = linkedfile::empty(folder->filePath(name), random->bounded(2));
    table->addItemToTable(file);
    PlainRow row;
    row.record.suffix = file.suffix();
    row.record.lastModified = file.lastModified();
    row.record.streams = {QJsonObject()};
    plain.rows += row;
}

QJsonObject TestPlainTable::randomResult()
{
    return {{"Timecode", random->bounded(8) ? QString::number(random->generate()) : QString()},
            {"FrameRateFound", 25},
            {"ChannelFound", random->bounded(4)},
            {"SamplesSinceMidnight", random->bounded(1000)}};
}

void TestPlainTable::doSomething()
{
    const int row = random->bounded(static_cast<int>(plain.rows.size()));
    const int what = random->bounded(40);
    if (what == 0) {
        deleteSome();
    } else if (what == 1) {
        table->setFont(QFont("sans", 8 + random->bounded(8)));
    } else if (what == 2) {
        table->onFFProbeResult({}, row, 1000);
        plain.failProbe(row, 1000);
    } else if (what < 10) {
        FileData probed;
        probed.streams = {QJsonObject()};
        probed.duration =
            random->bounded(20) ? 10.0 + random->bounded(8) * 0.02 : std::numeric_limits<double>::quiet_NaN();
        table->onFFProbeResult(probed, row, 0);
        plain.probe(row, probed.duration);
    } else if (what < 15) {
        AudioTCOptions all;
        all.allFiles = true;
        table->onAudioTCReadReq(all);
        plain.readAgain();
    } else {
        static const QVector<int> exitCodes{0, 0, 0, 205, 205, 205, 203};
        const int exitCode = exitCodes.at(random->bounded(exitCodes.size()));
        const QJsonObject result = exitCode == 0 ? randomResult() : QJsonObject();
        table->onAudioTCReadReturn(result, row, 0, exitCode);
        plain.takeResult(row, result, exitCode);
    }
}

void TestPlainTable::deleteSome()
{
    QVector<int> chosen;
    QItemSelection selection;
    for (int row = 0; row < plain.rows.size(); ++row) {
        if (random->bounded(3))
            continue;
        chosen += row;
        selection.select(table->model()->index(row, 0), table->model()->index(row, audioTCColumn));
    }
    table->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    table->deleteSelectedRows();
    plain.remove(chosen);
    QVERIFY(table->selectedItems().isEmpty());
}

FileData TestPlainTable::recordOf(int row)
{
    QSignalSpy clicked(table.get(), &FileList::updateFileInfo);
    emit table->cellClicked(row, 0);
    return clicked.at(0).at(0).value<FileData>();
}

void TestPlainTable::compare()
{
    QCOMPARE(table->rowCount(), plain.rows.size());
    for (int row = 0; row < plain.rows.size(); ++row) {
        const PlainRow &expected = plain.rows.at(row);
        const FileData record = recordOf(row);
        QCOMPARE(textOf(record), textOf(expected.record));
        const QTableWidgetItem *cell = table->item(row, audioTCColumn);
        QCOMPARE(cell->text(), expected.audioTC);
        QCOMPARE(cell->type(), 1);
        if (cell->text().endsWith("@(linked)"))
            QVERIFY(cell->toolTip().startsWith("Linked to: take"));
    }
    if (plain.rows.isEmpty())
        return;
    // A timecode of a file makes its column fit.
    table->onFFProbeResult({}, 0, 0);
    plain.probe(0, 0.0);
    const int fitted = table->columnWidth(fileTCColumn);
    table->resizeColumnToContents(fileTCColumn);
    QCOMPARE(fitted, table->columnWidth(fileTCColumn));
}

QTEST_MAIN(TestPlainTable)
#include "tst_plaintable.moc"
