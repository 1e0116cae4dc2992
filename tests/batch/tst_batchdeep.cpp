// SPDX-License-Identifier: MIT
#include "testkit/media/mediamaker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// Files whose timecode begins late, through the whole program with the real tools.
class TestBatchDeep : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void lateTimecodeIsThatOfTheFirstSample_data();
    void lateTimecodeIsThatOfTheFirstSample();
    void timecodeThatStoodStillIsNotCountedBack();
    void withoutTheOptionNoneIsFound();
    void newFilesStartRight();

private:
    QMap<QString, QJsonObject> recordsOf(const QStringList &arguments, const QStringList &names = {""});

    QTemporaryDir folder;
    QVector<mediakit::Recording> recordings;
    QMap<QString, QJsonObject> found; ///< records of "read --deep", by path
};

namespace
{

constexpr int runLimit = 600'000; // [ms] on a busy machine, under the sanitizers

constexpr double silence = 20.0;  // [s]
constexpr double duration = 29.0; // [s]

constexpr testsignals::LtcRate rate2398{24, true, false};
constexpr testsignals::LtcRate rate25{25, false, false};
constexpr testsignals::LtcRate rate2997Drop{30, true, true};

mediakit::Channel lateChannel(testsignals::LtcTime start, testsignals::LtcRate rate)
{
    mediakit::Channel channel = mediakit::timecodeChannel(start, rate);
    channel.silence = silence;
    return channel;
}

mediakit::Recording lateMovie(const QString &path, const QString &pictureRate, const QString &codec,
                              const QVector<mediakit::Track> &tracks)
{
    mediakit::Recording recording = mediakit::movie(path, pictureRate, codec, tracks);
    recording.duration = duration;
    return recording;
}

QVector<mediakit::Recording> lateDay()
{
    const mediakit::Channel tone = mediakit::toneChannel(440);
    mediakit::Recording sound =
        mediakit::soundFile("T001_timecode.wav", {tone, lateChannel({23, 59, 50, 3}, rate25)}, duration);
    mediakit::Recording boom = mediakit::soundFile("T001_boom.wav", {tone}, duration);
    boom.siblingTimecode = mediakit::timecodeOf(sound);
    sound.modified = boom.modified = QDateTime(QDate(2024, 5, 3), QTime(9, 0), Qt::UTC);
    return {
        lateMovie("A001.mov", "30000/1001", "pcm_s24le", {{tone, lateChannel({9, 59, 50, 7}, rate2997Drop)}}),
        lateMovie("A002.mov", "24000/1001", "pcm_s16le", {{tone}, {lateChannel({0, 0, 0, 5}, rate2398)}}),
        lateMovie("B001.mp4", "25", "aac", {{lateChannel({17, 0, 0, 5}, rate25), tone}}),
        lateMovie("B002.mts", "25", "ac3", {{tone, lateChannel({18, 1, 2, 3}, rate25)}}),
        lateMovie("C001.mxf", "25", "pcm_s24le", {{tone}, {lateChannel({19, 0, 0, 24}, rate25)}}),
        sound,
        boom,
        lateMovie("D001.mov", "25", "pcm_s16le", {{tone, tone}})};
}

} // namespace

QMap<QString, QJsonObject> TestBatchDeep::recordsOf(const QStringList &arguments, const QStringList &names)
{
    const QString path = folder.filePath("day.json");
    QStringList words = arguments + QStringList{"--report", path};
    for (const QString &name : names)
        words += folder.filePath("day/" + name);
    QProcess batch;
    batch.start(BATCH, words);
    QFile report(path);
    if (!batch.waitForFinished(runLimit) || batch.exitCode() != 0 || !report.open(QIODevice::ReadOnly))
        qFatal("%s", batch.readAllStandardError().constData());
    QMap<QString, QJsonObject> records;
    const QJsonArray all = QJsonDocument::fromJson(report.readAll()).object()["files"].toArray();
    for (const QJsonValue &record : all)
        records[record.toObject()["name"].toString()] = record.toObject();
    return records;
}

void TestBatchDeep::initTestCase()
{
    recordings = lateDay();
    const QString problem = mediakit::makeAll(recordings, folder.filePath("day"));
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    found = recordsOf({"read", "--deep"});
}

void TestBatchDeep::lateTimecodeIsThatOfTheFirstSample_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < recordings.size(); ++i)
        QTest::newRow(qPrintable(recordings.at(i).path)) << i;
}

void TestBatchDeep::lateTimecodeIsThatOfTheFirstSample()
{
    QFETCH(int, index);
    const mediakit::Recording &recording = recordings.at(index);
    const QJsonObject record = found[recording.path];
    const auto signal = mediakit::timecodeOf(recording);
    if (!signal) {
        QCOMPARE(record["reason"].toString(), QString("audio TC not found, searched to the end"));
        QVERIFY(record["foundAtSecond"].isNull());
        return;
    }
    QVERIFY2(record["audioTimecode"].toString() ==
                 QString::fromStdString(testsignals::text(testsignals::startTime(*signal), signal->rate)),
             qPrintable(record["audioTimecode"].toString() + record["reason"].toString()));
    // Coded sound moves by some samples; a frame is 1,600 at least.
    const double difference = record["samplesSinceMidnight"].toDouble() -
                              static_cast<double>(testsignals::samplesSinceMidnight(*signal));
    const bool isPcm = record["soundCodecs"].toString().startsWith("pcm");
    QVERIFY2(std::abs(difference) <= (isPcm ? 1 : 400), qPrintable(QString::number(difference)));
    if (recording.siblingTimecode) {
        QVERIFY(record["foundAtSecond"].isNull());
        QCOMPARE(record["linkedFrom"].toString(), QString("T001_timecode.wav"));
    } else {
        QCOMPARE(record["foundAtSecond"].toInt(), 18); // the window that it begins in
    }
}

void TestBatchDeep::timecodeThatStoodStillIsNotCountedBack()
{
    mediakit::Channel paused = mediakit::timecodeChannel({8, 0, 0, 0}, rate25);
    paused.frozen = 100; // 4 s
    const QString problem =
        mediakit::makeAll({mediakit::soundFile("P001.wav", {paused}, 12.0)}, folder.filePath("paused"));
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    const QJsonObject record = recordsOf({"read", "--deep"}, {"../paused"})["P001.wav"];
    QVERIFY(record["audioTimecode"].isNull());
    QCOMPARE(record["reason"].toString(),
             QString("the timecode at second 0: frozen: all frames carry the same label"));
}

void TestBatchDeep::withoutTheOptionNoneIsFound()
{
    const auto records = recordsOf({"read"});
    QCOMPARE(records.size(), recordings.size());
    for (const QJsonObject &record : records)
        QCOMPARE(record["result"].toString(), QString("none"));
}

void TestBatchDeep::newFilesStartRight()
{
    const QTemporaryDir out;
    const auto records = recordsOf({"export", "--deep", "--to", out.path(), "--video-type", "mov-pass"},
                                   {"A001.mov", "B001.mp4", "T001_timecode.wav", "T001_boom.wav"});
    QCOMPARE(records.size(), 4);
    for (const mediakit::Recording &recording : qAsConst(recordings)) {
        if (!records.contains(recording.path))
            continue;
        const QJsonObject record = records[recording.path];
        QVERIFY2(record["exportResult"] == "verified",
                 qPrintable(recording.path + ": " + record["verdict"].toString()));
        const auto signal = mediakit::timecodeOf(recording);
        if (mediakit::isSoundFile(recording)) {
            QCOMPARE(record["exportStart"].toString().toLongLong(),
                     static_cast<qint64>(testsignals::samplesSinceMidnight(*signal)));
        } else {
            QCOMPARE(record["exportStart"].toString(),
                     QString::fromStdString(testsignals::text(signal->start, signal->rate)));
        }
    }
}

QTEST_GUILESS_MAIN(TestBatchDeep)
#include "tst_batchdeep.moc"
