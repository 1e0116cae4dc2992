// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "ffmpeg/ffmpeghandler.h"
#include "ltc/ltchandler.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/longwait.h"
#include "testkit/fixtures/ownprocesses.h"
#include "testkit/fixtures/samplerecords.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace
{

/// Starts a job on the file and returns the spy on its result.
using Job = std::function<std::unique_ptr<QSignalSpy>(QObject &owner, const FileData &file)>;

std::unique_ptr<QSignalSpy> probe(QObject &owner, const FileData &file)
{
    auto *handler = new FFMpegHandler(&owner);
    auto result = std::make_unique<QSignalSpy>(handler, &FFMpegHandler::ffprobeResult);
    handler->probe(file.absoluteFilePath, 7);
    return result;
}

std::unique_ptr<QSignalSpy> extraction(QObject &owner, const FileData &file)
{
    auto *handler = new FFMpegHandler(&owner);
    auto result = std::make_unique<QSignalSpy>(handler, &FFMpegHandler::ffmpegAudioExtractResult);
    handler->extractAudio(file, QFileInfo(file.absoluteFilePath).path());
    return result;
}

std::unique_ptr<QSignalSpy> exporting(QObject &owner, const FileData &file)
{
    auto *handler = new FFMpegHandler(&owner);
    auto result = std::make_unique<QSignalSpy>(handler, &FFMpegHandler::ffmpegExportResult);
    ExportOptions options;
    options.exportDir = QFileInfo(file.absoluteFilePath).path() + "/out";
    options.videoType = 5;
    options.progressSteps = 15;
    handler->buildExportArguments(file, options);
    return result;
}

std::unique_ptr<QSignalSpy> reading(QObject &owner, const FileData &file)
{
    auto *handler = new LTCHandler(&owner);
    auto result = std::make_unique<QSignalSpy>(handler, &LTCHandler::ltcReaderResult);
    handler->readTimecode(file.absoluteFilePath, false);
    return result;
}

/// The most memory that this process has used since it was asked for last [KiB].
qint64 peakMemory()
{
    qint64 peak = 0;
    QFile status("/proc/self/status");
    if (status.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = status.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (line.startsWith("VmHWM:"))
                peak = line.mid(6).chopped(2).trimmed().toLongLong();
        }
    }
    QFile reset("/proc/self/clear_refs");
    if (peak == 0 || !reset.open(QIODevice::WriteOnly) || reset.write("5") != 1)
        qFatal("this system does not report the use of memory");
    return peak;
}

} // namespace

Q_DECLARE_METATYPE(Job)

/// Tools that print far more than they should.
class TestToolOutput : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { registerRecordTypes(); }
    void init();
    void messagesOfToolsTakeNoMemory_data();
    void messagesOfToolsTakeNoMemory();
    void aProbeThatPrintsTooMuchSaysNothing_data();
    void aProbeThatPrintsTooMuchSaysNothing();
    void aProbeMayPrintUpToItsLimit();

private:
    FileData makeFile(const QJsonObject &plan) const;

    std::unique_ptr<QTemporaryDir> folder;
};

void TestToolOutput::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(folder->path()).mkdir("out"));
}

FileData TestToolOutput::makeFile(const QJsonObject &plan) const
{
    const QString path = folder->filePath("clip.mov");
    faketools::openGate(path);
    faketools::setPlan(path, plan);
    return samplerecords::mediaFile(path, {samplerecords::sound("pcm_s16le", 1)});
}

void TestToolOutput::messagesOfToolsTakeNoMemory_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Job>("job");
    QTest::newRow("probe") << "probe" << Job(probe);
    QTest::newRow("extraction") << "extract" << Job(extraction);
    QTest::newRow("reader") << "read" << Job(reading);
    QTest::newRow("export") << "export" << Job(exporting);
}

void TestToolOutput::messagesOfToolsTakeNoMemory()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the address sanitizer keeps memory that was freed");
#endif
    QFETCH(QString, name);
    QFETCH(Job, job);
    constexpr int printed = 200;          // [MiB]
    constexpr qint64 mostGrowth = 20'000; // [KiB]
    const QJsonArray actions{QJsonObject{{"stderrMiB", printed}}, QJsonObject{{"work", true}}};
    const FileData file = makeFile({{name, QJsonObject{{"actions", actions}}}});
    QObject owner;
    const qint64 before = ownprocesses::residentMemory();
    peakMemory();
    const auto result = job(owner, file);
    QVERIFY(result->wait(longWait));
    const qint64 growth = peakMemory() - before;
    QVERIFY2(growth < mostGrowth, qPrintable(QString("it grew by %1 KiB").arg(growth)));
    if (name != "probe" && name != "read")
        QCOMPARE(result->constFirst().constLast().toInt(), 0);
}

void TestToolOutput::aProbeThatPrintsTooMuchSaysNothing_data()
{
    QTest::addColumn<QJsonObject>("end");
    QTest::newRow("never ends") << QJsonObject{{"waitFor", "never"}};
    QTest::newRow("never stops printing") << QJsonObject{{"stdoutMiB", 1'000'000}};
    QTest::newRow("ends well") << QJsonObject{{"pauseMs", 1}};
}

void TestToolOutput::aProbeThatPrintsTooMuchSaysNothing()
{
    QFETCH(QJsonObject, end);
    const QJsonArray actions{QJsonObject{{"stdoutMiB", 65}}, end};
    const FileData file = makeFile({{"probe", QJsonObject{{"actions", actions}}}});
    QObject owner;
    const auto result = probe(owner, file);
    QVERIFY(result->wait(longWait));
    QCOMPARE(result->count(), 1);
    QCOMPARE(result->at(0).at(1).toJsonObject(), QJsonObject());
    QCOMPARE(result->at(0).at(2).toUInt(), 7U);
    QCOMPARE(result->at(0).at(3).toInt(), 0);
    QVERIFY(!faketools::isAlive(faketools::calls(file.absoluteFilePath).value(0).processId));
}

void TestToolOutput::aProbeMayPrintUpToItsLimit()
{
    const QJsonObject blanks{{"stdoutMiB", 64}};
    const FileData file =
        makeFile({{"probe", QJsonObject{{"actions", QJsonArray{blanks}}, {"exitCode", 3}}}});
    QObject owner;
    const auto result = probe(owner, file);
    QVERIFY(result->wait(longWait));
    QCOMPARE(result->at(0).at(3).toInt(), 3);
}

QTEST_GUILESS_MAIN(TestToolOutput)
#include "tst_tooloutput.moc"
