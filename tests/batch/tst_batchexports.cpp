// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "tests/export-matrix/dayfiles.h"
#include "tests/export-matrix/expectation.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <cmath>

using exportmatrix::MadeFile;
using exportmatrix::SourceFile;

/// A day's files as cameras, telephones and recorders make them, through the whole program with every kind of
/// export, judged cell by cell by what was put into them. With OSTREL_ALL_CHECKS set, the whole day of 59
/// files.
class TestBatchExports : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyCellIsRight_data();
    void everyCellIsRight();

private:
    void judgeReading(const MadeFile &file, const QJsonObject &record);
    void judgeExport(const MadeFile &file, const ExportOptions &options, const QJsonObject &record);
    void judgeTable(const QString &path, const QJsonArray &records);
    void judgeLogs(const QString &folder, const QJsonArray &records);

    QTemporaryDir folder;
    QVector<MadeFile> files;
};

namespace
{

constexpr int runLimit = 3'600'000; // [ms] the whole day on a busy machine
constexpr double duration = 1.6;    // [s] long enough to distinguish 23.976 from 24 frames per second

// In the order of their codes.
constexpr std::array videoTypes{"pass",     "mxf-mpeg2",    "mxf-dnxhd-36",  "mxf-dnxhd-115", "mxf-dnxhd-175",
                                "mov-pass", "mov-dnxhd-36", "mov-dnxhd-115", "mov-dnxhd-175"};
constexpr std::array audioTypes{"pass", "pcm16", "pcm24"};

bool isAll()
{
    return qEnvironmentVariableIsSet("OSTREL_ALL_CHECKS");
}

/// What \a program prints, run by Python with \a argument.
QJsonDocument byPython(const QByteArray &program, const QString &argument)
{
    QProcess python;
    python.start("python3", {"-c", program, argument});
    if (!python.waitForFinished(runLimit) || python.exitCode() != 0)
        qFatal("%s", python.readAllStandardError().constData());
    return QJsonDocument::fromJson(python.readAllStandardOutput());
}

} // namespace

void TestBatchExports::initTestCase()
{
    registerRecordTypes();
    const QStringList few{"action.mp4", "mpeg2-1080i50.MXF", "recorder-four.wav"};
    QDir(folder.path()).mkdir("day");
    const QVector<SourceFile> all = exportmatrix::dayFiles();
    for (SourceFile source : all) {
        if (!source.isRead || source.isCutOff || (!isAll() && !few.contains(source.name)))
            continue;
        source.duration = duration;
        files += exportmatrix::makeSource(source, folder.filePath("day"));
    }
    QVERIFY(files.size() == (isAll() ? 59 : few.size()));
}

void TestBatchExports::everyCellIsRight_data()
{
    QTest::addColumn<int>("videoType");
    QTest::addColumn<int>("audioType");
    QTest::addColumn<bool>("mute");
    const QList<QByteArray> few{"pass", "mxf-mpeg2", "mov-dnxhd-36"};
    for (int type = 0; type < static_cast<int>(videoTypes.size()); ++type) {
        if (!isAll() && !few.contains(videoTypes.at(type)))
            continue;
        const bool isMxf = QByteArray(videoTypes.at(type)).startsWith("mxf");
        QTest::newRow(videoTypes.at(type)) << type << (isMxf ? 1 + type % 2 : type % 3) << true;
    }
    QTest::newRow("mov-pass with its timecode") << 5 << 0 << false;
}

void TestBatchExports::everyCellIsRight()
{
    QFETCH(int, videoType);
    QFETCH(int, audioType);
    QFETCH(bool, mute);
    ExportOptions options;
    options.videoType = videoType;
    options.audioType = audioType;
    options.muteAudioTC = mute;

    const QTemporaryDir out;
    const QTemporaryDir reports;
    QStringList arguments{"export",
                          "--jobs",
                          "8",
                          "--to",
                          out.path(),
                          "--video-type",
                          videoTypes.at(videoType),
                          "--audio-type",
                          audioTypes.at(audioType)};
    for (const char *suffix : {"json", "csv", "ale", "html"})
        arguments += {"--report", reports.filePath(QString("day.") + suffix)};
    if (!mute)
        arguments += "--keep-timecode-channel";
    QProcess batch;
    batch.start(BATCH, arguments + QStringList{folder.filePath("day")});
    QVERIFY(batch.waitForFinished(runLimit));

    QFile report(reports.filePath("day.json"));
    QVERIFY2(report.open(QIODevice::ReadOnly), batch.readAllStandardError());
    const QJsonArray records = QJsonDocument::fromJson(report.readAll()).object()["files"].toArray();
    QCOMPARE(records.size(), files.size());
    QMap<QString, QJsonObject> byName;
    for (const QJsonValue &record : records)
        byName[record.toObject()["name"].toString()] = record.toObject();
    bool isAnyRefused = false;
    for (const MadeFile &file : qAsConst(files)) {
        judgeReading(file, byName[file.source.name]);
        if (QTest::currentTestFailed())
            return;
        judgeExport(file, options, byName[file.source.name]);
        if (QTest::currentTestFailed())
            return;
        isAnyRefused = isAnyRefused || !exportmatrix::expectationOf(file, options).refusal.isEmpty();
    }
    QCOMPARE(batch.exitCode(), isAnyRefused ? 1 : 0);
    judgeTable(reports.filePath("day.csv"), records);
    judgeLogs(reports.path(), records);
}

void TestBatchExports::judgeReading(const MadeFile &file, const QJsonObject &record)
{
    const QByteArray name = file.source.name.toUtf8();
    const auto judge = [&](const char *key, const QJsonValue &expected) {
        const QJsonValue value = record[QLatin1String(key)];
        QVERIFY2(value == expected, name + ' ' + key + ": " + value.toVariant().toString().toUtf8() +
                                        " instead of " + expected.toVariant().toString().toUtf8());
    };
    judge("path", file.record.absoluteFilePath);
    judge("sizeBytes", QFileInfo(file.record.absoluteFilePath).size());
    const auto signal = mediakit::timecodeOf(exportmatrix::soundOf(file.source));
    judge("result", signal ? "found" : "none");
    judge("linkedFrom", QJsonValue());
    int channels = 0;
    for (const mediakit::Track &track : file.source.tracks)
        channels += track.size();
    judge("soundStreams", file.source.tracks.size());
    judge("soundChannels", channels);
    QVERIFY2(std::abs(record["durationSeconds"].toDouble() - file.source.duration) < 0.1, name);
    if (file.source.shape.exists()) {
        judge("pictureWidth", file.source.shape.storedWidth());
        judge("pictureHeight", file.source.shape.storedHeight());
        judge("pictureCodec", file.picture()["codec_name"]);
    }
    if (!signal) {
        judge("audioTimecode", QJsonValue());
        judge("foundAtSecond", QJsonValue());
        return;
    }
    judge("audioTimecode",
          QString::fromStdString(testsignals::text(testsignals::startTime(*signal), signal->rate)));
    judge("dropFrame", signal->rate.dropFrame);
    judge("sampleRate", file.source.sampleRate);
    judge("foundAtSecond", 0);
    judge("stream", file.record.audioStreamIndex);
    judge("channel", file.record.audioChannel + 1);
    judge("userBits", "00000000");
    QVERIFY2(std::abs(record["frameRate"].toDouble() - testsignals::framesPerSecond(signal->rate)) < 0.001,
             name);
    QVERIFY2(std::abs(record["clockOffsetPpm"].toDouble()) < 20.0, name);
    QVERIFY2(record["confidence"].toDouble() > 0.9999, name);
    // Coded sound moves by some samples; a frame is 1,600 at least.
    const double difference = record["samplesSinceMidnight"].toDouble() -
                              static_cast<double>(testsignals::samplesSinceMidnight(*signal));
    const bool isPcm = record["soundCodecs"].toString().startsWith("pcm");
    QVERIFY2(std::abs(difference) <= (isPcm ? 1 : 400), name + ' ' + QByteArray::number(difference));
}

void TestBatchExports::judgeExport(const MadeFile &file, const ExportOptions &options,
                                   const QJsonObject &record)
{
    const QByteArray name = file.source.name.toUtf8();
    const exportmatrix::Expectation expected = exportmatrix::expectationOf(file, options);
    if (!expected.refusal.isEmpty()) {
        QVERIFY2(record["exportResult"] == "failed", name);
        return;
    }
    QVERIFY2(record["exportResult"] == "verified", name + ": " + record["reason"].toString().toUtf8());
    QVERIFY2(record["reason"].toString() == (file.record.hasAudioTC ? "" : "audio TC not found"), name);
    QVERIFY2(QFileInfo(record["exportPath"].toString()).isFile(), name);
    const QString start = record["exportStart"].toString();
    if (expected.timeReference && file.record.hasAudioTC)
        QVERIFY2(start.toLongLong() == *expected.timeReference, name + ' ' + start.toUtf8());
    else if (expected.timecode)
        QVERIFY2(start == *expected.timecode, name + ' ' + start.toUtf8());
}

/// The table at \a path, as Python reads it, says the same as \a records.
void TestBatchExports::judgeTable(const QString &path, const QJsonArray &records)
{
    const QJsonArray lines =
        byPython("import csv, json, sys\n"
                 "print(json.dumps(list(csv.DictReader(open(sys.argv[1], newline='')))))",
                 path)
            .array();
    QCOMPARE(lines.size(), records.size());
    for (int i = 0; i < lines.size(); ++i) {
        const QJsonObject record = records.at(i).toObject();
        const QJsonObject line = lines.at(i).toObject();
        QCOMPARE(line.size(), record.size());
        for (auto field = record.begin(); field != record.end(); ++field) {
            const QString cell = line[field.key()].toString();
            const bool isSame = field.value().isDouble() ? cell.toDouble() == field.value().toDouble()
                                                         : cell == field.value().toVariant().toString();
            QVERIFY2(isSame, qPrintable(field.key() + ": " + cell));
        }
    }
}

/// The logs in \a folder hold each of \a records that has timecode once, with its start.
void TestBatchExports::judgeLogs(const QString &folder, const QJsonArray &records)
{
    QMap<QString, QString> starts; // by path
    const QStringList names = QDir(folder).entryList({"*.ale"});
    for (const QString &name : names) {
        QFile log(QDir(folder).filePath(name));
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(log.readAll()).split("\r\n");
        const QStringList columns = lines.at(lines.indexOf("Column") + 1).split('\t');
        for (const QString &line : lines.mid(lines.indexOf("Data") + 1)) {
            const QStringList cells = line.split('\t');
            if (cells.size() != columns.size())
                continue;
            const QString path = cells.at(columns.indexOf("Source Path"));
            QVERIFY2(!starts.contains(path), qPrintable(path));
            starts[path] = cells.at(columns.indexOf("Start"));
        }
    }
    QFile page(QDir(folder).filePath("day.html"));
    QVERIFY(page.open(QIODevice::ReadOnly));
    const QByteArray html = page.readAll();
    int withTimecode = 0;
    for (const QJsonValue &value : records) {
        const QJsonObject record = value.toObject();
        const bool isSound = record["pictureCodec"].isNull();
        const QString exported = record["exportPath"].toString();
        QVERIFY2(html.contains(record["name"].toString().toUtf8()), qPrintable(record["name"].toString()));
        if (record["audioTimecode"].isNull())
            continue;
        ++withTimecode;
        const QString path = exported.isEmpty() ? record["path"].toString() : exported;
        QVERIFY2(starts.contains(path), qPrintable(path));
        if (isSound || record["exportStart"].isNull())
            QCOMPARE(starts[path], record["audioTimecode"].toString());
        else
            QCOMPARE(starts[path], record["exportStart"].toString());
        QVERIFY2(html.contains(record["exportStart"].toString().toUtf8()), qPrintable(path));
    }
    QCOMPARE(starts.size(), withTimecode);
}

QTEST_GUILESS_MAIN(TestBatchExports)
#include "tst_batchexports.moc"
