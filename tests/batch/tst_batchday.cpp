// SPDX-License-Identifier: MIT
#include "testkit/media/expectedcell.h"
#include "testkit/media/mediamaker.h"
#include "testkit/media/shootday.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <utility>

/// A day's files through the whole program with the real tools, judged by what was put into them.
class TestBatchDay : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theTableShowsWhatWasRecorded();
    void theJsonReportFollowsItsSchema();
    void theReportSaysWhatWasRecorded_data();
    void theReportSaysWhatWasRecorded();
    void newFilesAreVerifiedAndStartRight();
    void aKilledRunIsResumed();

private:
    QTemporaryDir folder;
    QVector<mediakit::Recording> recordings;
    QString table;
    QMap<QString, QJsonObject> lines; ///< of the CSV report, as Python reads them, by file name
};

namespace
{

constexpr int runLimit = 600'000; // [ms] on a busy machine, under the sanitizers

/// How many new files the notes in \a folder call verified.
int verifiedIn(const QString &folder)
{
    int count = 0;
    const QStringList names = QDir(folder).entryList({"*.json"}, QDir::Files);
    for (const QString &name : names) {
        QFile note(folder + '/' + name);
        if (note.open(QIODevice::ReadOnly) && note.readAll().contains("\"exportSize\""))
            ++count;
    }
    return count;
}

QString nameOf(const mediakit::Recording &recording)
{
    return QFileInfo(recording.path).fileName();
}

} // namespace

void TestBatchDay::initTestCase()
{
    recordings = mediakit::shootDay();
    const QString problem = mediakit::makeAll(recordings, folder.path());
    QVERIFY2(problem.isEmpty(), qPrintable(problem));

    QProcess batch;
    batch.start(BATCH, {"read", folder.path(), "--report", folder.filePath("day.csv"), "--report",
                        folder.filePath("day.json")});
    QVERIFY(batch.waitForFinished(runLimit));
    table = QString::fromUtf8(batch.readAllStandardOutput());
    QVERIFY2(batch.exitCode() == 1, "one file of the day is broken");

    QProcess python;
    python.start("python3", {"-c",
                             "import csv, json, sys\n"
                             "print(json.dumps(list(csv.DictReader(open(sys.argv[1], newline='')))))",
                             folder.filePath("day.csv")});
    QVERIFY(python.waitForFinished(runLimit));
    const QJsonArray read = QJsonDocument::fromJson(python.readAllStandardOutput()).array();
    QCOMPARE(read.size(), recordings.size());
    for (const QJsonValue &line : read)
        lines[line.toObject()["name"].toString()] = line.toObject();
}

void TestBatchDay::theTableShowsWhatWasRecorded()
{
    const QStringList shown = table.split('\n');
    for (const mediakit::Recording &recording : std::as_const(recordings)) {
        const QStringList line = shown.filter(nameOf(recording));
        QCOMPARE(line.size(), 1);
        QVERIFY2(line.first().endsWith("  " + mediakit::expectedAudioTC(recording)),
                 qPrintable(line.first()));
    }
}

void TestBatchDay::theJsonReportFollowsItsSchema()
{
    QProcess python;
    python.start("python3", {"-c",
                             "import json, jsonschema, sys\n"
                             "schema, report = (json.load(open(path)) for path in sys.argv[1:])\n"
                             "jsonschema.validate(report, schema)\n"
                             "report['files'][0]['more'] = 1\n"
                             "try:\n"
                             "    jsonschema.validate(report, schema)\n"
                             "except jsonschema.ValidationError:\n"
                             "    print('strict')",
                             SCHEMA, folder.filePath("day.json")});
    QVERIFY(python.waitForFinished(runLimit));
    QCOMPARE(python.readAllStandardOutput() + python.readAllStandardError(), QByteArray("strict\n"));
}

void TestBatchDay::theReportSaysWhatWasRecorded_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < recordings.size(); ++i)
        QTest::newRow(qPrintable(nameOf(recordings.at(i)))) << i;
}

void TestBatchDay::theReportSaysWhatWasRecorded()
{
    QFETCH(int, index);
    const mediakit::Recording &recording = recordings.at(index);
    const QJsonObject line = lines.value(nameOf(recording));
    QCOMPARE(line["path"].toString(), QDir(folder.path()).filePath(recording.path));
    QCOMPARE(line["sizeBytes"].toString().toLongLong(), QFileInfo(line["path"].toString()).size());
    const auto signal = mediakit::timecodeOf(recording);
    if (recording.broken || !signal) {
        QCOMPARE(line["result"].toString(), QString(recording.broken ? "failed" : "none"));
        QCOMPARE(line["audioTimecode"].toString(), QString());
        QVERIFY(!line["reason"].toString().isEmpty());
        return;
    }
    QCOMPARE(line["result"].toString(), QString(recording.siblingTimecode ? "linked" : "found"));
    QCOMPARE(line["reason"].toString(), QString());
    QCOMPARE(line["audioTimecode"].toString(),
             QString::fromStdString(testsignals::text(testsignals::startTime(*signal), signal->rate)));
    QVERIFY(std::abs(line["frameRate"].toString().toDouble() - testsignals::framesPerSecond(signal->rate)) <
            0.001);
    QCOMPARE(line["dropFrame"].toString(), QString(signal->rate.dropFrame ? "true" : "false"));
    QCOMPARE(line["sampleRate"].toString().toInt(), recording.sampleRate);
    // Coded sound moves by some samples; a frame is 1,600 at least.
    const auto difference = line["samplesSinceMidnight"].toString().toLongLong() -
                            static_cast<qint64>(testsignals::samplesSinceMidnight(*signal));
    const bool isPcm = line["soundCodecs"].toString().startsWith("pcm");
    QVERIFY2(std::abs(difference) <= (isPcm ? 1 : 400), qPrintable(QString::number(difference)));
    QVERIFY(std::abs(line["durationSeconds"].toString().toDouble() - recording.duration) < 0.1);
    qsizetype channels = 0;
    for (const mediakit::Track &track : recording.tracks)
        channels += track.size();
    QCOMPARE(qsizetype{line["soundChannels"].toString().toInt()}, channels);
    if (recording.siblingTimecode)
        return;
    QString channel;
    for (const mediakit::Track &track : recording.tracks) {
        for (int i = 0; i < track.size(); ++i) {
            if (track.at(i).timecode)
                channel = QString::number(i + 1);
        }
    }
    QCOMPARE(line["channel"].toString(), channel);
}

void TestBatchDay::newFilesAreVerifiedAndStartRight()
{
    const QTemporaryDir out;
    const QString report = out.filePath("day.json");
    QProcess batch;
    batch.start(BATCH, {"export", "--to", out.path(), "--video-type", "mov-pass", "--audio-type", "pcm24",
                        "--report", report, folder.path()});
    QVERIFY(batch.waitForFinished(runLimit));
    QVERIFY2(batch.exitCode() == 1, "one file of the day is broken");
    QFile file(report);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QMap<QString, QJsonObject> records;
    const QJsonArray all = QJsonDocument::fromJson(file.readAll()).object()["files"].toArray();
    for (const QJsonValue &record : all)
        records[record.toObject()["name"].toString()] = record.toObject();

    for (const mediakit::Recording &recording : std::as_const(recordings)) {
        const QJsonObject record = records.value(nameOf(recording));
        const QString result = record["exportResult"].toString();
        if (recording.broken) {
            QVERIFY(record["exportResult"].isNull());
        } else if (mediakit::isTimecodeAlone(recording)) {
            QCOMPARE(result, QString("left out"));
        } else {
            QVERIFY2(result == "verified", qPrintable(recording.path + ": " + record["verdict"].toString()));
            QVERIFY(QFileInfo(record["exportPath"].toString()).isFile());
            const auto signal = mediakit::timecodeOf(recording);
            if (!signal)
                QVERIFY(record["exportStart"].isNull());
            else if (mediakit::isSoundFile(recording))
                QCOMPARE(record["exportStart"].toString().toLongLong(),
                         static_cast<qint64>(testsignals::samplesSinceMidnight(*signal)));
            else
                QCOMPARE(record["exportStart"].toString(),
                         QString::fromStdString(testsignals::text(signal->start, signal->rate)));
        }
    }
}

void TestBatchDay::aKilledRunIsResumed()
{
    const QTemporaryDir whole;
    const QTemporaryDir killed;
    const auto arguments = [this](const QTemporaryDir &out) {
        return QStringList{"export",
                           "--resume",
                           "--to",
                           out.path(),
                           "--video-type",
                           "mov-pass",
                           "--report",
                           out.filePath("day.json"),
                           folder.filePath("SOUND"),
                           folder.filePath("CAMERA-B")};
    };
    const auto contents = [](const QTemporaryDir &out) {
        QMap<QString, QByteArray> files;
        for (const QString &name : QDir(out.path()).entryList({"*.MOV*", "*.WAV*"}, QDir::Files)) {
            QFile file(out.filePath(name));
            if (file.open(QIODevice::ReadOnly))
                files[name] = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
        }
        return files;
    };
    QProcess batch;
    QElapsedTimer timer;
    timer.start();
    batch.start(BATCH, arguments(whole));
    QVERIFY(batch.waitForFinished(runLimit));
    QVERIFY2(batch.exitCode() == 0, batch.readAllStandardError());
    const auto wholeTime = static_cast<int>(timer.elapsed()); // [ms]
    QCOMPARE(contents(whole).size(), 5);

    const int wanted = qEnvironmentVariableIsSet("OSTREL_ALL_CHECKS") ? 50 : 6;
    QRandomGenerator moments(1); // the same ones in each run of this test
    QVector<int> states;         // how many new files were verified at each kill
    while (states.size() < wanted) {
        // Each of the runs that follow goes on where the one before was killed.
        QVERIFY(QDir(killed.path()).removeRecursively());
        QVERIFY(QDir().mkpath(killed.path()));
        for (int runs = 0; runs < 3 && states.size() < wanted; ++runs) {
            batch.start(BATCH, arguments(killed));
            if (batch.waitForFinished(moments.bounded(wholeTime)))
                break;
            batch.kill();
            QVERIFY(batch.waitForFinished(runLimit));
            states += verifiedIn(killed.filePath(".ostrel-batch"));
        }
        batch.start(BATCH, arguments(killed));
        QVERIFY(batch.waitForFinished(runLimit));
        QVERIFY2(batch.exitCode() == 0, batch.readAllStandardError());
        QCOMPARE(contents(killed).keys(), contents(whole).keys());
        for (const QString &name : contents(whole).keys())
            QVERIFY2(contents(killed)[name] == contents(whole)[name], qPrintable(name));
    }
    QString counts;
    for (int files = 0; files <= 5; ++files)
        counts += QString(" %1 with %2 of 5 verified,").arg(states.count(files)).arg(files);
    qInfo("%d kills:%s all resumed", int(states.size()), qPrintable(counts));

    // Now all is there: nothing is written again.
    const QDateTime before = QFileInfo(killed.filePath("B001_aac.MOV")).lastModified();
    batch.start(BATCH, arguments(killed));
    QVERIFY(batch.waitForFinished(runLimit));
    QCOMPARE(batch.exitCode(), 0);
    QCOMPARE(QFileInfo(killed.filePath("B001_aac.MOV")).lastModified(), before);
    QFile report(killed.filePath("day.json"));
    QVERIFY(report.open(QIODevice::ReadOnly));
    QCOMPARE(report.readAll().count("verified by an earlier run"), 5);
}

QTEST_GUILESS_MAIN(TestBatchDay)
#include "tst_batchday.moc"
