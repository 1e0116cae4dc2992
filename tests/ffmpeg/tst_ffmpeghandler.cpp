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

class TestFFMpegHandler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void signalsAndSlotsStandInTheirOrder();
    void theProbeGetsItsArguments_data();
    void theProbeGetsItsArguments();
    void theProbesOutputIsReportedWithItsExitCode_data();
    void theProbesOutputIsReportedWithItsExitCode();
    void theExtractionWritesOneFilePerStream_data();
    void theExtractionWritesOneFilePerStream();
    void theSourceIsDescribedToTheExtraction();
    void aFailedExtractionIsReported_data();
    void aFailedExtractionIsReported();
    void missingToolsAreReportedLater_data();
    void missingToolsAreReportedLater();
    void aHandlerThatGoesTakesItsToolWithIt();

private:
    QString makeFile(const QString &name) const;

    QScopedPointer<QTemporaryDir> folder;
    QByteArray searchPath; ///< restored after each test
};

namespace
{

QJsonObject print(const QString &chunk)
{
    return {{"stdout", chunk}};
}

void addNames()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "clip.mov";
    QTest::newRow("blanks and percent signs") << "take %1 100%.mov";
    QTest::newRow("leading dash") << "-y.mov";
    QTest::newRow("quotes and dollars") << "it's \"b\" $HOME.mov";
    QTest::newRow("unicode") << QString::fromUtf8("\u00dcbung \U0001F3AC.mov");
}

} // namespace

void TestFFMpegHandler::initTestCase()
{
    registerRecordTypes();
}

void TestFFMpegHandler::init()
{
    folder.reset(new QTemporaryDir);
    searchPath = qgetenv("PATH");
}

void TestFFMpegHandler::cleanup()
{
    qputenv("PATH", searchPath);
}

QString TestFFMpegHandler::makeFile(const QString &name) const
{
    QString path = folder->filePath(name);
    faketools::openGate(path);
    return path;
}

void TestFFMpegHandler::signalsAndSlotsStandInTheirOrder()
{
    const QMetaObject &meta = FFMpegHandler::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods += QString::fromLatin1(meta.method(i).methodSignature());
    const QStringList expected{"ffprobeResult(FFMpegHandler*,QJsonObject,uint,int)",
                               "ffmpegAudioExtractResult(FFMpegHandler*,FileData,int)",
                               "ffmpegExportResult(FFMpegHandler*,int)",
                               "ffmpegExportProgress(uint)",
                               "couldNotStart(FFMpegHandler*)",
                               "ffprobeReady()",
                               "ffprobeFinished(int)",
                               "ffmpegAudioExtractFinished(int)",
                               "ffmpegExportError()",
                               "ffmpegExportFinished(int)",
                               "onExportCancel()"};
    QCOMPARE(methods, expected);
}

void TestFFMpegHandler::theProbeGetsItsArguments_data()
{
    addNames();
}

void TestFFMpegHandler::theProbeGetsItsArguments()
{
    QFETCH(QString, name);
    const QString path = makeFile(name);
    FFMpegHandler handler(nullptr);
    QSignalSpy result(&handler, &FFMpegHandler::ffprobeResult);
    handler.probe(path, 4'000'000'000U);
    QVERIFY(result.wait(longWait));

    const auto calls = faketools::calls(path);
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].tool, QString("ffprobe.exe"));
    QCOMPARE(calls[0].arguments,
             (QStringList{"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", path}));
    QCOMPARE(result.count(), 1);
    QCOMPARE(result[0][0].value<FFMpegHandler *>(), &handler);
    QCOMPARE(result[0][1].toJsonObject()["format"].toObject()["filename"].toString(), path);
    QCOMPARE(result[0][2].toUInt(), 4'000'000'000U);
    QCOMPARE(result[0][3].toInt(), 0);
}

void TestFFMpegHandler::theProbesOutputIsReportedWithItsExitCode_data()
{
    QTest::addColumn<QJsonObject>("part");
    QTest::addColumn<QJsonObject>("expected");
    QTest::addColumn<bool>("fails");

    const QJsonObject pause{{"pauseMs", 30}};
    const auto saying = [](const QJsonArray &actions, int exitCode) {
        return QJsonObject{{"actions", actions}, {"exitCode", exitCode}};
    };
    const QJsonObject streams{{"streams", QJsonArray{1, 2}}};
    const QJsonObject nothing;
    QTest::newRow("in one piece") << saying({print(R"({"streams":[1,2]})")}, 0) << streams << false;
    QTest::newRow("in several chunks")
        << saying({print(R"({"stre)"), pause, print(R"(ams":[1)"), pause, print(",2]}")}, 0) << streams
        << false;
    QTest::newRow("with a failure") << saying({print(R"({"streams":[1,2]})")}, 1) << streams << true;
    QTest::newRow("no JSON") << saying({print("moov atom not found")}, 0) << nothing << false;
    QTest::newRow("cut short") << saying({print(R"({"streams":[1,2])")}, 0) << nothing << false;
    QTest::newRow("an array") << saying({print("[]")}, 0) << nothing << false;
    QTest::newRow("no output and a failure") << saying({}, 1) << nothing << true;
    QTest::newRow("a crash") << QJsonObject{{"crash", true}} << nothing << true;
}

void TestFFMpegHandler::theProbesOutputIsReportedWithItsExitCode()
{
    QFETCH(QJsonObject, part);
    QFETCH(QJsonObject, expected);
    QFETCH(bool, fails);

    const QString path = makeFile("clip.mov");
    faketools::setPlan(path, {{"probe", part}});
    FFMpegHandler handler(nullptr);
    QSignalSpy result(&handler, &FFMpegHandler::ffprobeResult);
    QSignalSpy couldNotStart(&handler, &FFMpegHandler::couldNotStart);
    handler.probe(path, 7);
    QVERIFY(result.wait(longWait));
    QCOMPARE(result[0][1].toJsonObject(), expected);
    QCOMPARE(result[0][2].toUInt(), 7U);
    QCOMPARE(result[0][3].toInt() != 0, fails);
    QCoreApplication::processEvents();
    QCOMPARE(couldNotStart.count(), 0);
}

void TestFFMpegHandler::theExtractionWritesOneFilePerStream_data()
{
    addNames();
}

void TestFFMpegHandler::theExtractionWritesOneFilePerStream()
{
    QFETCH(QString, name);
    FileData file = mediaFile(makeFile(name), {sound("pcm_s16le", 1), sound("pcm_s16le", 1)});
    file.rowNumber = 4;
    const QString target = folder->filePath("target %1");
    QVERIFY(QDir().mkdir(target));

    FFMpegHandler handler(nullptr);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegAudioExtractResult);
    handler.extractAudio(file, target);
    QCOMPARE(handler.fileData().rowNumber, 4);
    QVERIFY(result.wait(longWait));

    const QString stem = target + QDir::separator() + name.section('.', 0, 0);
    const QStringList outputs{stem + "_1_4.wav", stem + "_2_4.wav"};
    const auto calls = faketools::calls(file.absoluteFilePath);
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].tool, QString("ffmpeg.exe"));
    QCOMPARE(calls[0].arguments,
             (QStringList{"-y", "-guess_layout_max", "0", "-ss", "0", "-i", file.absoluteFilePath, "-t", "3",
                          "-map", "0:1", outputs[0], "-map", "0:2", outputs[1]}));
    for (const QString &output : outputs)
        QVERIFY(QFileInfo(output).isFile());

    QCOMPARE(result.count(), 1);
    QCOMPARE(result[0][0].value<FFMpegHandler *>(), &handler);
    QCOMPARE(result[0][1].value<FileData>().absoluteFilePath, file.absoluteFilePath);
    QCOMPARE(result[0][1].value<FileData>().rowNumber, 4);
    QCOMPARE(result[0][2].toInt(), 0);
}

void TestFFMpegHandler::theSourceIsDescribedToTheExtraction()
{
    const FileData file = mediaFile(makeFile("clip.mov"), {sound("pcm_s16le", 1)});
    qputenv("OSTREL_SOURCE", "index=0");
    FFMpegHandler handler(nullptr);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegAudioExtractResult);
    handler.extractAudio(file, folder->path());
    qunsetenv("OSTREL_SOURCE");
    QVERIFY(result.wait(longWait));
    QCOMPARE(faketools::calls(file.absoluteFilePath).value(0).source, exporthints::sourceDescription(file));
}

void TestFFMpegHandler::aFailedExtractionIsReported_data()
{
    QTest::addColumn<QJsonObject>("part");
    QTest::newRow("exit code 1") << QJsonObject{{"exitCode", 1}};
    QTest::newRow("crash") << QJsonObject{{"crash", true}};
}

void TestFFMpegHandler::aFailedExtractionIsReported()
{
    QFETCH(QJsonObject, part);
    const FileData file = mediaFile(makeFile("clip.mov"), {sound("pcm_s16le", 1)});
    faketools::setPlan(file.absoluteFilePath, {{"extract", part}});
    FFMpegHandler handler(nullptr);
    QSignalSpy result(&handler, &FFMpegHandler::ffmpegAudioExtractResult);
    handler.extractAudio(file, folder->path());
    QVERIFY(result.wait(longWait));
    QVERIFY(result[0][2].toInt() != 0);
}

void TestFFMpegHandler::missingToolsAreReportedLater_data()
{
    QTest::addColumn<QString>("job");
    QTest::newRow("probe") << "probe";
    QTest::newRow("extraction") << "extract";
    QTest::newRow("export") << "export";
}

void TestFFMpegHandler::missingToolsAreReportedLater()
{
    QFETCH(QString, job);
    qputenv("PATH", QFile::encodeName(folder->path()));
    const FileData file = mediaFile(makeFile("clip.mov"), {sound("pcm_s16le", 1)});
    ExportOptions options;
    options.exportDir = folder->path();
    options.progressSteps = 15;

    FFMpegHandler handler(nullptr);
    QSignalSpy couldNotStart(&handler, &FFMpegHandler::couldNotStart);
    QSignalSpy probed(&handler, &FFMpegHandler::ffprobeResult);
    QSignalSpy extracted(&handler, &FFMpegHandler::ffmpegAudioExtractResult);
    QSignalSpy exported(&handler, &FFMpegHandler::ffmpegExportResult);
    QSignalSpy progress(&handler, &FFMpegHandler::ffmpegExportProgress);
    if (job == "probe")
        handler.probe(file.absoluteFilePath, 1);
    else if (job == "extract")
        handler.extractAudio(file, folder->path());
    else
        handler.buildExportArguments(file, options);

    QCOMPARE(couldNotStart.count(), 0);
    QVERIFY(couldNotStart.wait(longWait));
    QCOMPARE(couldNotStart.count(), 1);
    QCOMPARE(couldNotStart[0][0].value<FFMpegHandler *>(), &handler);
    QCOMPARE(probed.count() + extracted.count() + exported.count() + progress.count(), 0);
}

void TestFFMpegHandler::aHandlerThatGoesTakesItsToolWithIt()
{
    const QString path = makeFile("clip.mov");
    faketools::setPlan(path, {{"probe", QJsonObject{{"hang", true}}}});
    QObject owner;
    const QPointer<FFMpegHandler> handler = new FFMpegHandler(&owner);
    QSignalSpy result(handler.data(), &FFMpegHandler::ffprobeResult);
    handler->probe(path, 1);
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(path).size(), 1, longWait);
    delete handler.data();
    QVERIFY(!faketools::isAlive(faketools::calls(path).value(0).processId));
    QCOMPARE(result.count(), 0);
}

QTEST_GUILESS_MAIN(TestFFMpegHandler)
#include "tst_ffmpeghandler.moc"
