// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "ffmpeg/exporthints.h"
#include "ffmpeg/ffmpeghandler.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/longwait.h"
#include "testkit/fixtures/samplerecords.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using samplerecords::mediaFile;
using samplerecords::sound;
using samplerecords::withTimecode;

/// Exports as they run: what the tool gets, progress, end and cancelling.
class TestExportRun : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void theToolGetsTheCommand_data();
    void theToolGetsTheCommand();
    void existingFilesAreKept();
    void whatTheArgumentsCannotSayAccompaniesThem_data();
    void whatTheArgumentsCannotSayAccompaniesThem();
    void progressFollowsTheOutput();
    void theLastStepIsKeptForTheEnd();
    void aRunThatFailsAtOnceReportsItsWholeShare_data();
    void aRunThatFailsAtOnceReportsItsWholeShare();
    void withoutStepsOnlyTheResultIsReported();
    void cancellingKillsTheToolAndStillReports();
    void cancellingAtOnceReportsToo();
    void cancellingAnEndedRunReportsNothingMore();
    void cancellingAMissingToolReportsOnce_data();
    void cancellingAMissingToolReportsOnce();
    void exportsOfOneBatchNeverShareAnOutput();
    void exportsOfAnotherParentAreNotMinded();

private:
    QString makeFile(const QString &name, qint64 size = 0) const;
    ExportOptions passThrough(uint progressSteps) const;

    QScopedPointer<QTemporaryDir> folder; ///< with the destination "out"
    QByteArray searchPath;                ///< restored after each test
    int succeeded = 0;                    ///< exports of the running test
};

namespace
{

uint sum(const QSignalSpy &progress)
{
    uint steps = 0;
    for (const QList<QVariant> &report : progress)
        steps += report[0].toUInt();
    return steps;
}

QJsonObject part(const QJsonArray &actions, int exitCode = 0)
{
    return {{"export", QJsonObject{{"actions", actions}, {"exitCode", exitCode}}}};
}

QJsonObject step(const QString &what, const QJsonValue &how)
{
    return {{what, how}};
}

constexpr auto timecodeVariable = "OSTREL_TIMECODE_CHANNEL";
constexpr auto rateVariable = "OSTREL_TIMECODE_RATE";
constexpr auto sourceVariable = "OSTREL_SOURCE";

} // namespace

void TestExportRun::initTestCase()
{
    registerRecordTypes();
}

void TestExportRun::init()
{
    folder.reset(new QTemporaryDir);
    QVERIFY(QDir(folder->path()).mkdir("out"));
    searchPath = qgetenv("PATH");
    succeeded = 0;
}

void TestExportRun::cleanup()
{
    qputenv("PATH", searchPath);
}

QString TestExportRun::makeFile(const QString &name, qint64 size) const
{
    QString path = folder->filePath(name);
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) || !file.resize(size))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

ExportOptions TestExportRun::passThrough(uint progressSteps) const
{
    ExportOptions options;
    options.exportDir = folder->filePath("out");
    options.videoType = 5;
    options.audioType = 2;
    options.progressSteps = progressSteps;
    return options;
}

void TestExportRun::theToolGetsTheCommand_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("output");
    QTest::newRow("plain") << "clip.mts"
                           << "clip.MOV";
    QTest::newRow("blanks and percent signs") << "take %1 100%.mov"
                                              << "take %1 100%.MOV";
    QTest::newRow("leading dash") << "-y.mov"
                                  << "-y.MOV";
    QTest::newRow("quotes and dollars") << "it's \"b\" $HOME.mov"
                                        << "it's \"b\" $HOME.MOV";
    QTest::newRow("unicode") << QString::fromUtf8("\u00dcbung \U0001F3AC.mov")
                             << QString::fromUtf8("\u00dcbung \U0001F3AC.MOV");
}

void TestExportRun::theToolGetsTheCommand()
{
    QFETCH(QString, name);
    QFETCH(QString, output);
    const QString path = makeFile(name);
    const FileData file = withTimecode(mediaFile(path, {sound("pcm_s16le", 2, "stereo")}), 1, 0);
    FFMpegHandler handler(nullptr);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegExportResult);
    handler.buildExportArguments(file, passThrough(15));
    const QString outputPath = folder->filePath("out/" + output);
    QCOMPARE(handler.outputFilePath(), outputPath);
    QCOMPARE(handler.fileData().absoluteFilePath, path);
    QVERIFY(result.wait(longWait));

    const auto calls = faketools::calls(path);
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].tool, QString("ffmpeg.exe"));
    QCOMPARE(calls[0].arguments, (QStringList{"-y", "-i", path, "-acodec", "pcm_s24le", "-vcodec", "copy",
                                              "-timecode", "10:00:00:00", "-r", "25", outputPath}));
    QVERIFY(QFileInfo(outputPath).isFile());
    QCOMPARE(result.count(), 1);
    QCOMPARE(result[0][0].value<FFMpegHandler *>(), &handler);
    QCOMPARE(result[0][1].toInt(), 0);
}

void TestExportRun::existingFilesAreKept()
{
    for (const char *name : {"out/clip.MOV", "out/clip_1.MOV", "out/clip_2.MOV"})
        makeFile(name, 7);
    FFMpegHandler handler(nullptr);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegExportResult);
    handler.buildExportArguments(mediaFile(makeFile("clip.MTS"), {}), passThrough(15));
    QCOMPARE(handler.outputFilePath(), folder->filePath("out/clip_3.MOV"));
    QVERIFY(result.wait(longWait));
    QVERIFY(QFileInfo(folder->filePath("out/clip_3.MOV")).isFile());
    QCOMPARE(QFileInfo(folder->filePath("out/clip_2.MOV")).size(), 7);
}

void TestExportRun::whatTheArgumentsCannotSayAccompaniesThem_data()
{
    QTest::addColumn<bool>("mute");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("expected");
    QTest::newRow("muted") << true << true << "1.0";
    QTest::newRow("not muted") << false << true << QString();
    QTest::newRow("no timecode found") << true << false << QString();
}

void TestExportRun::whatTheArgumentsCannotSayAccompaniesThem()
{
    QFETCH(bool, mute);
    QFETCH(bool, found);
    QFETCH(QString, expected);

    // What the program itself was started with must not reach the tool.
    qputenv(timecodeVariable, "9.9");
    qputenv(rateVariable, "99/1");
    qputenv(sourceVariable, "index=0");
    const QString path = makeFile("clip.mov");
    FileData file = mediaFile(path, {sound("pcm_s16le", 2, "stereo")});
    if (found)
        file = withTimecode(file, 1, 0);
    ExportOptions options = passThrough(15);
    options.muteAudioTC = mute;
    FFMpegHandler handler(nullptr);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegExportResult);
    handler.buildExportArguments(file, options);
    qunsetenv(timecodeVariable);
    qunsetenv(rateVariable);
    qunsetenv(sourceVariable);
    QVERIFY(result.wait(longWait));
    QCOMPARE(faketools::calls(path).value(0).timecodeChannel, expected);
    QCOMPARE(faketools::calls(path).value(0).timecodeRate, exporthints::timecodeRate(file));
    QCOMPARE(faketools::calls(path).value(0).source, exporthints::sourceDescription(file));
}

void TestExportRun::progressFollowsTheOutput()
{
    // 1000 bytes per step: the input has 100,000
    const QString path = makeFile("clip.mov", 100'000);
    faketools::setPlan(path,
                       part({step("resize", 5'500), step("stderr", "size= 5kB\r"), step("waitFor", "first"),
                             step("stderr", "size= 5kB\r"), step("waitFor", "second"), step("resize", 7'001),
                             step("stderr", "size= 7kB\r"), step("waitFor", "third")}));
    FFMpegHandler handler(nullptr);
    QSignalSpy progress(&handler, &FFMpegHandler::ffmpegExportProgress);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegExportResult);
    handler.buildExportArguments(mediaFile(path, {}), passThrough(100));

    QTRY_COMPARE_WITH_TIMEOUT(progress.count(), 1, longWait);
    QCOMPARE(progress[0][0].toUInt(), 6U);
    faketools::openGate(folder->filePath("first"));
    QTRY_COMPARE_WITH_TIMEOUT(progress.count(), 2, longWait);
    QCOMPARE(progress[1][0].toUInt(), 0U);
    faketools::openGate(folder->filePath("second"));
    QTRY_COMPARE_WITH_TIMEOUT(progress.count(), 3, longWait);
    QCOMPARE(progress[2][0].toUInt(), 2U);
    QCOMPARE(result.count(), 0);

    faketools::openGate(folder->filePath("third"));
    QVERIFY(result.wait(longWait));
    QCOMPARE(progress.count(), 4);
    QCOMPARE(progress[3][0].toUInt(), 92U);
    QCOMPARE(sum(progress), 100U);
}

void TestExportRun::theLastStepIsKeptForTheEnd()
{
    const QString path = makeFile("clip.mov", 100'000);
    faketools::setPlan(
        path, part({step("resize", 300'000), step("stderr", "size= 300kB\r"), step("waitFor", "first"),
                    step("resize", 400'000), step("stderr", "size= 400kB\r"), step("pauseMs", 50)}));
    FFMpegHandler handler(nullptr);
    QSignalSpy progress(&handler, &FFMpegHandler::ffmpegExportProgress);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegExportResult);
    handler.buildExportArguments(mediaFile(path, {}), passThrough(100));

    QTRY_COMPARE_WITH_TIMEOUT(progress.count(), 1, longWait);
    QCOMPARE(progress[0][0].toUInt(), 99U);
    faketools::openGate(folder->filePath("first"));
    QVERIFY(result.wait(longWait));
    QCOMPARE(progress.count(), 2);
    QCOMPARE(progress[1][0].toUInt(), 1U);
}

void TestExportRun::aRunThatFailsAtOnceReportsItsWholeShare_data()
{
    QTest::addColumn<QJsonObject>("plan");
    QTest::newRow("exit code 1") << part({}, 1);
    QTest::newRow("crash") << QJsonObject{{"export", QJsonObject{{"crash", true}}}};
}

void TestExportRun::aRunThatFailsAtOnceReportsItsWholeShare()
{
    QFETCH(QJsonObject, plan);
    const QString path = makeFile("clip.mov", 100'000);
    faketools::setPlan(path, plan);
    FFMpegHandler handler(nullptr);
    QStringList order;
    connect(&handler, &FFMpegHandler::ffmpegExportProgress, this,
            [&order](uint steps) { order += QString::number(steps); });
    connect(&handler, &FFMpegHandler::ffmpegExportResult, this,
            [&order](FFMpegHandler *, int exitCode) { order += exitCode ? "failed" : "done"; });
    handler.buildExportArguments(mediaFile(path, {}), passThrough(15));
    QTRY_COMPARE_WITH_TIMEOUT(order, (QStringList{"15", "failed"}), longWait);
}

void TestExportRun::withoutStepsOnlyTheResultIsReported()
{
    const QString path = makeFile("clip.mov", 100'000);
    faketools::setPlan(path, part({})); // no output to measure progress at
    FFMpegHandler handler(nullptr);
    QSignalSpy progress(&handler, &FFMpegHandler::ffmpegExportProgress);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegExportResult);
    handler.buildExportArguments(mediaFile(path, {}), passThrough(0));
    QVERIFY(result.wait(longWait));
    QCOMPARE(progress.count(), 0);
}

void TestExportRun::cancellingKillsTheToolAndStillReports()
{
    const QString path = makeFile("clip.mov", 100'000);
    faketools::setPlan(
        path, part({step("resize", 5'500), step("stderr", "size= 5kB\r"), step("waitFor", "never")}));
    QObject owner;
    const QPointer<FFMpegHandler> handler = new FFMpegHandler(&owner);
    QSignalSpy progress(handler.data(), &FFMpegHandler::ffmpegExportProgress);
    QSignalSpy result(handler.data(), &FFMpegHandler::ffmpegExportResult);
    bool wasThere = false;
    connect(handler.data(), &FFMpegHandler::ffmpegExportResult, this,
            [&wasThere, &handler] { wasThere = !handler.isNull(); });
    handler->buildExportArguments(mediaFile(path, {}), passThrough(100));
    QTRY_COMPARE_WITH_TIMEOUT(progress.count(), 1, longWait);

    handler->onExportCancel();
    handler->onExportCancel(); // pressing twice changes nothing
    QVERIFY(!handler.isNull());
    QTRY_VERIFY_WITH_TIMEOUT(handler.isNull(), longWait);
    QVERIFY(wasThere);
    QCOMPARE(result.count(), 1);
    QVERIFY(result[0][1].toInt() != 0);
    QCOMPARE(sum(progress), 100U);
    QVERIFY(!faketools::isAlive(faketools::calls(path).value(0).processId));
}

void TestExportRun::cancellingAtOnceReportsToo()
{
    const QString path = makeFile("clip.mov", 100'000);
    faketools::setPlan(path, part({step("waitFor", "never")}));
    QObject owner;
    const QPointer<FFMpegHandler> handler = new FFMpegHandler(&owner);
    QSignalSpy progress(handler.data(), &FFMpegHandler::ffmpegExportProgress);
    QSignalSpy result(handler.data(), &FFMpegHandler::ffmpegExportResult);
    handler->buildExportArguments(mediaFile(path, {}), passThrough(15));
    handler->onExportCancel();
    QTRY_VERIFY_WITH_TIMEOUT(handler.isNull(), longWait);
    QCOMPARE(result.count(), 1);
    QVERIFY(result[0][1].toInt() != 0);
    QCOMPARE(sum(progress), 15U);
}

void TestExportRun::cancellingAnEndedRunReportsNothingMore()
{
    const QString path = makeFile("clip.mov", 100'000);
    QObject owner;
    const QPointer<FFMpegHandler> handler = new FFMpegHandler(&owner);
    QSignalSpy progress(handler.data(), &FFMpegHandler::ffmpegExportProgress);
    QSignalSpy result(handler.data(), &FFMpegHandler::ffmpegExportResult);
    handler->buildExportArguments(mediaFile(path, {}), passThrough(15));
    QVERIFY(result.wait(longWait));
    const auto reports = progress.count();

    handler->onExportCancel();
    QTRY_VERIFY_WITH_TIMEOUT(handler.isNull(), longWait);
    QCOMPARE(result.count(), 1);
    QCOMPARE(progress.count(), reports);
}

void TestExportRun::cancellingAMissingToolReportsOnce_data()
{
    QTest::addColumn<bool>("whileStarting");
    QTest::newRow("before the failure is known") << true;
    QTest::newRow("when it is known") << false;
}

void TestExportRun::cancellingAMissingToolReportsOnce()
{
    QFETCH(bool, whileStarting);
    qputenv("PATH", QFile::encodeName(folder->path()));
    QObject owner;
    const QPointer<FFMpegHandler> handler = new FFMpegHandler(&owner);
    QSignalSpy couldNotStart(handler.data(), &FFMpegHandler::couldNotStart);
    QSignalSpy result(handler.data(), &FFMpegHandler::ffmpegExportResult);
    handler->buildExportArguments(mediaFile(makeFile("clip.mov"), {}), passThrough(15));
    if (!whileStarting)
        QVERIFY(couldNotStart.wait(longWait));
    handler->onExportCancel();
    QTRY_VERIFY_WITH_TIMEOUT(handler.isNull(), longWait);
    QCOMPARE(couldNotStart.count() + result.count(), 1);
}

void TestExportRun::exportsOfOneBatchNeverShareAnOutput()
{
    const QStringList names{"CARD1/clip.mov", "CARD2/clip.mov", "CARD3/CLIP.mov", "CARD4/other.mov"};
    const QStringList expected{"clip.MOV", "clip_1.MOV", "CLIP_2.MOV", "other.MOV"};
    QObject owner;
    QStringList outputs;
    for (const QString &name : names) {
        const QString path = makeFile(name);
        faketools::setPlan(path, part({step("waitFor", folder->filePath("gate")), step("work", true)}));
        auto *const handler = new FFMpegHandler(&owner);
        connect(handler, &FFMpegHandler::ffmpegExportResult, this,
                [this](FFMpegHandler *, int exitCode) { succeeded += exitCode == 0 ? 1 : 0; });
        handler->buildExportArguments(mediaFile(path, {}), passThrough(15));
        outputs += QFileInfo(handler->outputFilePath()).fileName();
    }
    QCOMPARE(outputs, expected);

    faketools::openGate(folder->filePath("gate"));
    QTRY_COMPARE_WITH_TIMEOUT(succeeded, names.size(), longWait);
    for (const QString &name : expected)
        QVERIFY(QFileInfo(folder->filePath("out/" + name)).isFile());
}

void TestExportRun::exportsOfAnotherParentAreNotMinded()
{
    QObject owner;
    QObject other;
    auto *const mine = new FFMpegHandler(&owner);
    auto *const theirs = new FFMpegHandler(&other);
    const QString path = makeFile("clip.mov");
    faketools::setPlan(path, part({step("waitFor", "never")}));
    mine->buildExportArguments(mediaFile(path, {}), passThrough(15));
    theirs->buildExportArguments(mediaFile(path, {}), passThrough(15));
    QCOMPARE(theirs->outputFilePath(), mine->outputFilePath());
}

QTEST_GUILESS_MAIN(TestExportRun)
#include "tst_exportrun.moc"
