// SPDX-License-Identifier: MIT
#include "testkit/faketools/faketools.h"
#include "testkit/faketools/onlytools.h"
#include "testkit/fixtures/controllerfixture.h"
#include "testkit/fixtures/ownprocesses.h"
#include "testkit/fixtures/row.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QMap>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <csignal>
#include <cstdio>

#include <sys/resource.h>
#include <sys/types.h>

// What tools, disks and files may do to the controller. In every case each operation comes to its end, each
// file gets an answer, and no process and no temporary file is left.

namespace
{

QJsonObject plan(const QString &job, const QJsonObject &part)
{
    return {{job, part}};
}

/// Lets no file grow beyond \a bytes, in child processes too, as a full disk would. Ends with its life.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes) : earlierHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &earlier);
        const rlimit limit{bytes, earlier.rlim_max};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            qFatal("cannot limit the size of files");
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &earlier);
        std::signal(SIGXFSZ, earlierHandler);
    }
    Q_DISABLE_COPY(FullDisk)

private:
    rlimit earlier{};
    sighandler_t earlierHandler;
};

} // namespace

class TestFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aMissingToolFailsItsJob_data();
    void aMissingToolFailsItsJob();
    void anImportWithoutAnyToolIsReady();
    void anExportWithoutItsToolFailsEveryFile();
    void anExportWithoutItsToolCanBeCancelled();
    void aToolThatDiesFailsItsJob_data();
    void aToolThatDiesFailsItsJob();
    void aStoppedToolHoldsUpNothingElse();
    void aProbeThatNeverStopsPrintingHoldsUpNothingElse();
    void aVanishedSourceFailsItsNextJob_data();
    void aVanishedSourceFailsItsNextJob();
    void anExportFolderRemovedInMidBatchFailsTheRest();
    void withoutATemporaryFolderEveryExtractionFails();
    void twoInstancesDoNotDisturbEachOther();
    void oddNamesGoAllTheWay_data();
    void oddNamesGoAllTheWay();
    void aNameThatIsNoTextIsAFailedProbe();
    void brokenFilesHoldUpNothingElse();
    void aFullDiskFailsExtractionsAndExports();
    void theSourcesStayAsTheyWere();
    void noExportGoesOntoASource_data();
    void noExportGoesOntoASource();
    void endingTheThreadEndsTheTools();
    void endingTheThreadEndsTheWalk();
    void manyFilesLeaveNothingBehind();

private:
    ExportOptions options() const { return fixture->exportOptions(); }

    std::unique_ptr<ControllerFixture> fixture;
};

void TestFaults::init()
{
    fixture = std::make_unique<ControllerFixture>();
    QVERIFY(QDir().mkpath(fixture->mediaPath("out")));
}

void TestFaults::cleanup()
{
    fixture.reset();
    QCOMPARE(ownprocesses::children(), QVector<qint64>());
}

void TestFaults::aMissingToolFailsItsJob_data()
{
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QString>("event");
    row("no probe tool", "ffprobe.exe", "probed 0: 1000");
    row("no transcoding tool", "ffmpeg.exe", "read 0 stream -1: 2001 nothing");
    row("no reader", "LTCReader.exe", "read 0 stream 1: 204 nothing");
}

void TestFaults::aMissingToolFailsItsJob()
{
    QFETCH(QString, missing);
    QFETCH(QString, event);
    QMap<QString, QString> tools;
    for (const char *tool : {"ffprobe.exe", "ffmpeg.exe", "LTCReader.exe"}) {
        if (tool != missing)
            tools[tool] = tool;
    }
    const OnlyTools others(tools);
    fixture->actAsFileTable();
    fixture->makeFile("a.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->events.last(), QString("importReady"));
    QCOMPARE(fixture->count(event), 1);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
}

void TestFaults::anImportWithoutAnyToolIsReady()
{
    const OnlyTools none({});
    fixture->actAsFileTable();
    fixture->makeFiles(100);
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->eventsOf("probed ").filter(": 1000").size(), 100);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
}

void TestFaults::anExportWithoutItsToolFailsEveryFile()
{
    const OnlyTools none({});
    fixture->control().onExportReq(fixture->makeFiles(95), options());
    QVERIFY(fixture->eventsOf("exportReady").isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady").size(), 1, longWait);
    QVERIFY(fixture->events.last().startsWith("exportReady 2 ["));
    QCOMPARE(fixture->events.last().count(".mov"), 95);
    QCOMPARE(fixture->count("export 1425/1425 exporting files..."), 2); // the units add up all the same
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
}

void TestFaults::anExportWithoutItsToolCanBeCancelled()
{
    const OnlyTools none({});
    fixture->control().onExportReq(fixture->makeFiles(95), options());
    fixture->control().onExportCancel();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
    QCOMPARE(fixture->eventsOf("exportReady").size(), 1);
    QVERIFY(fixture->eventsOf("exportReady").constFirst().startsWith("exportReady 1 ["));
}

void TestFaults::aToolThatDiesFailsItsJob_data()
{
    QTest::addColumn<QString>("job");
    QTest::addColumn<QString>("event");
    row("probe", "probe", "probed 0: 1000");
    row("extraction", "extract", "read 0 stream -1: 2001 nothing");
    row("reader", "read", "read 0 stream 1: 9 nothing"); // the number of the signal
}

void TestFaults::aToolThatDiesFailsItsJob()
{
    QFETCH(QString, job);
    QFETCH(QString, event);
    fixture->actAsFileTable();
    fixture->makeFile("a.mov", plan(job, {{"hang", true}}));
    fixture->makeFile("b.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov"), fixture->mediaUrl("b.mov")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->startedTools().contains(job + " a.mov"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 1, longWait);
    const auto processes = fixture->control().findChildren<QProcess *>();
    for (const QProcess *process : processes) {
        if (process->processId() > 0)
            QCOMPARE(kill(static_cast<pid_t>(process->processId()), SIGKILL), 0);
    }
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->count(event), 1);
    QVERIFY(fixture->events.contains("read 1 stream 1: 0 10:00:00:00"));
    QVERIFY(!fixture->hasTemporaryFolder() || job == "extract");
}

void TestFaults::aStoppedToolHoldsUpNothingElse()
{
    fixture->actAsFileTable();
    fixture->makeFiles(20);
    fixture->makeFile("slow.mov", plan("probe", {{"waitFor", "gate"}}));
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("read ").size(), 20, longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 1, longWait);
    const auto processes = fixture->control().findChildren<QProcess *>();
    for (const QProcess *process : processes) {
        if (process->processId() > 0)
            QCOMPARE(kill(static_cast<pid_t>(process->processId()), SIGSTOP), 0);
    }
    fixture->openGate();
    fixture->control().onExportReq({fixture->makeFile("clip0.mov")}, options());
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("exportReady 0 []"), longWait);
    QVERIFY(!fixture->events.contains("importReady"));
    QCOMPARE(fixture->handlers(), 1);
    for (const QProcess *process : processes) {
        if (process->processId() > 0)
            QCOMPARE(kill(static_cast<pid_t>(process->processId()), SIGCONT), 0);
    }
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->eventsOf("read ").size(), 21);
}

void TestFaults::aProbeThatNeverStopsPrintingHoldsUpNothingElse()
{
    fixture->actAsFileTable();
    const QJsonArray actions{QJsonObject{{"stdoutMiB", 1'000'000}}};
    fixture->makeFile("a.mov", plan("probe", {{"actions", actions}}));
    fixture->makeFile("b.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov"), fixture->mediaUrl("b.mov")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importIdle"), longWait);
    QCOMPARE(fixture->count("probed 0: 1001"), 1);
    QVERIFY(fixture->events.contains("read 1 stream 1: 0 10:00:00:00"));
    QCOMPARE(fixture->handlers(), 0);
    QVERIFY(!fixture->hasTemporaryFolder());
}

void TestFaults::aVanishedSourceFailsItsNextJob_data()
{
    QTest::addColumn<QString>("held");
    QTest::addColumn<QString>("event");
    row("before its probe", "probe", "probed 0: 1000");
    row("before its extraction", "extract", "read 0 stream -1: 2001 nothing");
    row("before it is read", "read", "read 0 stream 1: 0 10:00:00:00"); // from what was extracted
}

void TestFaults::aVanishedSourceFailsItsNextJob()
{
    QFETCH(QString, held);
    QFETCH(QString, event);
    fixture->actAsFileTable();
    fixture->makeFile("a.mov", plan(held, {{"waitFor", "gate"}}));
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->startedTools().contains(held + " a.mov"), longWait);
    QVERIFY(QFile::remove(fixture->mediaPath("a.mov")));
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->count(event), 1);

    FileData gone;
    gone.fileName = "a.mov";
    gone.absoluteFilePath = fixture->mediaPath("a.mov");
    fixture->control().onExportReq({gone, fixture->makeFile("b.mov")}, options());
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("exportReady 2 [a.mov]"), longWait);
}

void TestFaults::anExportFolderRemovedInMidBatchFailsTheRest()
{
    const QVector<FileData> files = fixture->makeFiles(60, plan("export", {{"waitFor", "gate"}}));
    const FileData good = fixture->makeFile("good.mov", plan("export", QJsonObject()));
    fixture->control().onExportReq(QVector<FileData>{good} + files, options());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(fixture->mediaPath("out/good.MOV")), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 45, longWait);
    QVERIFY(QDir(fixture->mediaPath("out")).removeRecursively());
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady").size(), 1, longWait);
    QVERIFY(fixture->events.last().startsWith("exportReady 2 ["));
    QCOMPARE(fixture->events.last().count("clip"), 60);
    QVERIFY(!fixture->events.last().contains("good.mov"));
}

void TestFaults::withoutATemporaryFolderEveryExtractionFails()
{
    const QString place = fixture->mediaPath("temporary");
    QVERIFY(QDir().mkdir(place));
    qputenv("TMPDIR", QFile::encodeName(place));
    fixture->restart();
    QVERIFY(QDir().rename(place, place + " elsewhere"));
    fixture->actAsFileTable();
    fixture->makeFiles(3);
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->eventsOf("read ").filter("stream -1: 2001").size(), 3);
    QVERIFY(!QFileInfo::exists(place));
    QVERIFY(QDir().rename(place + " elsewhere", place));
}

void TestFaults::twoInstancesDoNotDisturbEachOther()
{
    const FileData file = fixture->makeFile("a.mov", plan("read", {{"waitFor", "gate"}}), 0);
    fixture->control().onUpdateAudioTCInfo({file}, automaticReading());
    QTRY_VERIFY_WITH_TIMEOUT(fixture->startedTools().contains("read a.mov"), longWait);
    {
        MainControl other;
        QSignalSpy finished(&other, &MainControl::readingFinished);
        other.onUpdateAudioTCInfo({fixture->makeFile("b.mov", {}, 0)}, automaticReading());
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, longWait);
    }
    QVERIFY(QFileInfo::exists(fixture->temporaryPath() + "/a/a_1_0.wav"));
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(fixture->eventsOf("read "), QStringList{"read 0 stream 1: 0 10:00:00:00"});
}

void TestFaults::oddNamesGoAllTheWay_data()
{
    QTest::addColumn<QString>("name");
    row("blanks", "take  1 .mov");
    row("quotes", "\"it's\" `x`.mov");
    row("percent signs", "100%1 %2 %s %.mov");
    row("line break", "two\nlines.mov");
    row("leading dash", "-i.mov");
    row("numbers like those of extracted audio", "clip_1_99.mov");
    row("shell characters", "$(rm -rf x);&|<>*?[a]{b}!.mov");
    row("backslash", "a\\b.mov");
    row("beyond the basic plane", QString::fromUtf8("\xF0\x9F\x8E\xAC \xC3\xA4\xCC\x88.mov"));
    row("nothing before the dot", ".mov");
    row("many dots", "a..b.mov");
    row("240 characters", QString(240, 'x') + ".mov");
    row("255 bytes, the most there can be", QString(251, 'x') + ".mov");
    row("254 bytes beyond the basic plane", QString::fromUtf8("\xF0\x9F\x8E\xAC").repeated(62) + "xx.mov");
}

void TestFaults::oddNamesGoAllTheWay()
{
    QFETCH(QString, name);
    fixture->actAsFileTable();
    const FileData file = fixture->makeFile("card/" + name);
    fixture->control().onIterateThroughDir({QUrl::fromLocalFile(file.absoluteFilePath)});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->eventsOf("read "), QStringList{"read 0 stream 1: 0 10:00:00:00"});
    QVERIFY(!fixture->hasTemporaryFolder());

    fixture->control().onExportReq({file}, options());
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("exportReady 0 []"), longWait);
    QCOMPARE(QDir(fixture->mediaPath("out")).entryList(QDir::Files | QDir::Hidden).size(), 1);
    const auto calls = faketools::calls(file.absoluteFilePath);
    for (const auto &call : calls)
        QVERIFY(call.job == "read" || call.arguments.contains(file.absoluteFilePath));
}

void TestFaults::aNameThatIsNoTextIsAFailedProbe()
{
    const QByteArray name = QFile::encodeName(fixture->mediaPath("card")) + "/take\xFF.mov";
    QVERIFY(QDir().mkpath(fixture->mediaPath("card")));
    FILE *file = std::fopen(name.constData(), "w");
    QVERIFY(file);
    std::fclose(file);
    fixture->actAsFileTable();
    fixture->makeFile("card/good.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("card")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->eventsOf("found ").size(), 2);
    QCOMPARE(fixture->eventsOf("probed ").filter(": 0").size(), 1);
    QCOMPARE(fixture->eventsOf("probed ").filter(": 1000").size(), 1);

    fixture->events.clear(); // and when it is dropped by itself
    fixture->control().onIterateThroughDir({QUrl::fromEncoded("file://" + name.toPercentEncoding("/"))});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->eventsOf("found ").size(), 1);
    QCOMPARE(fixture->eventsOf("probed ").filter(": 1000").size(), 1);
    QCOMPARE(std::remove(name.constData()), 0); // the toolkit could not
}

void TestFaults::brokenFilesHoldUpNothingElse()
{
    makeTone(fixture->mediaPath("sound.wav"));
    makeTone(fixture->mediaPath("good.mov"));
    const OnlyTools real(realMediaTools());
    QFile good(fixture->mediaPath("sound.wav"));
    QVERIFY(good.open(QIODevice::ReadOnly));
    const QByteArray wave = good.readAll();
    QFile movie(fixture->mediaPath("good.mov"));
    QVERIFY(movie.open(QIODevice::ReadOnly));
    const QMap<QString, QByteArray> contents{
        {"empty.mov", ""},
        {"empty.wav", ""},
        {"zeros.mxf", QByteArray(100'000, 0)},
        {"text.mp4", "no film\n"},
        {"header only.wav", wave.left(44)},
        {"truncated sound.wav", wave.left(100'001)},
        {"truncated.mov", movie.read(50'000)},
        {"half a header.wav", wave.left(20)},
        {"other suffix.mts", wave},
        {"json.mov", R"({"streams": [{"codec_type": "audio"}], "format": {}})"},
    };
    for (auto content = contents.cbegin(); content != contents.cend(); ++content) {
        QFile file(fixture->mediaPath(content.key()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content.value());
    }
    fixture->actAsFileTable();
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(
        fixture->events.contains("importReady") || fixture->events.contains("importIdle"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
    QCOMPARE(fixture->eventsOf("probed ").size(), contents.size() + 2);
    QCOMPARE(fixture->eventsOf("probed ").filter(": 0").size() +
                 fixture->eventsOf("probed ").filter(": 1000").size(),
             contents.size() + 2);
    // Each file that was described is also answered by a reader or for its extraction.
    QCOMPARE(fixture->eventsOf("read ").size(), fixture->eventsOf("probed ").filter(": 0").size());
    QVERIFY(fixture->eventsOf("read ").filter("10:00:00:00").size() >= 2);
}

void TestFaults::aFullDiskFailsExtractionsAndExports()
{
    makeTone(fixture->mediaPath("a.mov"));
    makeTone(fixture->mediaPath("b.mov"));
    const OnlyTools real(realMediaTools());
    fixture->actAsFileTable();
    QVector<FileData> files(2);
    files[0].fileName = "a.mov";
    files[1].fileName = "b.mov";
    for (FileData &file : files)
        file.absoluteFilePath = fixture->mediaPath(file.fileName);
    {
        const FullDisk disk(100'000);
        fixture->control().onIterateThroughDir({fixture->mediaUrl()});
        QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
        QCOMPARE(fixture->eventsOf("read ").filter("stream -1: 2001").size(), 2);
        fixture->control().onExportReq(files, options());
        QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady").size(), 1, longWait);
        QCOMPARE(fixture->events.last().section(' ', 0, 1), QString("exportReady 2"));
        QCOMPARE(fixture->events.last().count(".mov"), 2);
    }
    fixture->control().onExportReq(files, options()); // there is room again
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("exportReady 0 []"), longWait);
}

void TestFaults::theSourcesStayAsTheyWere()
{
    fixture->actAsFileTable();
    QVector<FileData> files;
    QHash<QString, QByteArray> before;
    for (int row = 0; row < 12; ++row) {
        const QString job = QStringList{"probe", "extract", "read", "export"}.at(row % 4);
        files += fixture->makeFile(QString("clip%1.mov").arg(row), plan(job, {{"exitCode", 1 + row}}), row);
        QFile source(files.last().absoluteFilePath);
        QVERIFY(source.open(QIODevice::WriteOnly));
        before[source.fileName()] = QByteArray(1000 + row, static_cast<char>('a' + row));
        source.write(before[source.fileName()]);
    }
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    ExportOptions besideTheSources = options();
    besideTheSources.exportDir = fixture->mediaPath(".");
    besideTheSources.videoType = 0; // the sources' own suffix
    fixture->control().onExportReq(files, besideTheSources);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady 2").size(), 1, longWait);
    fixture->control().onExportReq(files, besideTheSources);
    fixture->control().onExportCancel();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady 1").size(), 1, longWait);
    for (auto source = before.cbegin(); source != before.cend(); ++source) {
        QFile file(source.key());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), source.value());
    }
}

void TestFaults::noExportGoesOntoASource_data()
{
    QTest::addColumn<QString>("folder");
    row("its folder", "card");
    row("with a separator at the end", "card/");
    row("through its parent", "card/../card/./");
    row("through a link to the folder", "link");
    row("through a link to a link", "link2");
    row("through a folder next to it", "card/sub/..");
}

/// Sources whose names differ in case only, or that are links themselves, exported as every type.
void TestFaults::noExportGoesOntoASource()
{
    QFETCH(QString, folder);
    const QStringList names{"clip.mov", "clip.MOV", "Clip.Mov", "clip.mxf",
                            "clip.wav", "clip.WAV", "clip.mp4", "clip.mts"};
    QVector<FileData> files;
    for (const QString &name : names) {
        files += fixture->makeFile("card/" + name);
        QFile source(files.last().absoluteFilePath);
        QVERIFY(source.open(QIODevice::WriteOnly));
        source.write("original " + name.toUtf8());
    }
    const FileData linked = fixture->makeFile("elsewhere/linked.mov");
    QVERIFY(QFile::link(linked.absoluteFilePath, fixture->mediaPath("card/linked.mov")));
    files += fixture->makeFile("card/linked.mov");
    QVERIFY(QDir().mkpath(fixture->mediaPath("card/sub")));
    QVERIFY(QFile::link("card", fixture->mediaPath("link")));
    QVERIFY(QFile::link("link", fixture->mediaPath("link2")));

    ExportOptions onto = options();
    onto.exportDir = fixture->mediaPath(folder);
    constexpr int videoTypes = 9;
    for (onto.videoType = 0; onto.videoType < videoTypes; ++onto.videoType) {
        fixture->events.clear();
        fixture->control().onExportReq(files, onto);
        QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("exportReady 0 []"), longWait);
    }
    for (const QString &name : names) {
        QFile source(fixture->mediaPath("card/" + name));
        QVERIFY(source.open(QIODevice::ReadOnly));
        QCOMPARE(source.readAll(), "original " + name.toUtf8());
    }
    QCOMPARE(QFileInfo(linked.absoluteFilePath).size(), 0);
    const QStringList media{"*.mov", "*.mxf", "*.wav", "*.mp4", "*.mts"};
    QCOMPARE(QDir(fixture->mediaPath("card")).entryList(media, QDir::Files).size(),
             files.size() * (videoTypes + 1));
}

void TestFaults::endingTheThreadEndsTheTools()
{
    const QVector<FileData> probes = fixture->makeFiles(60, plan("probe", {{"hang", true}}));
    const QVector<FileData> exports{fixture->makeFile("e.mov", plan("export", {{"hang", true}}))};
    const QVector<FileData> reads{fixture->makeFile("r.mov", plan("extract", {{"hang", true}}), 0)};
    QThread thread;
    auto *control = new MainControl; // next to that of the fixture
    control->moveToThread(&thread);
    connect(&thread, &QThread::finished, control, &MainControl::shutDown);
    connect(&thread, &QThread::finished, control, &QObject::deleteLater);
    thread.start();
    QMetaObject::invokeMethod(control, [&] {
        control->onExportReq(exports, options());
        control->onUpdateAudioTCInfo(reads, automaticReading());
        for (const FileData &file : probes)
            control->onFFProbeFile(file, file.rowNumber);
    });
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), 45, longWait);
    const QString folder =
        fixture->temporaryPath() + '-' + QString::number(QCoreApplication::applicationPid());
    QVERIFY(QFileInfo::exists(folder));
    thread.quit();
    QVERIFY(thread.wait(5'000)); // what the program allows
    QCOMPARE(ownprocesses::children(), QVector<qint64>());
    QVERIFY(!QFileInfo::exists(folder));
}

void TestFaults::endingTheThreadEndsTheWalk()
{
    for (int i = 0; i < 1'000; ++i)
        fixture->makeFile(QString("huge/foreign%1.txt").arg(i));
    QList<QUrl> urls;
    for (int i = 0; i < 5'000; ++i) // five million entries
        urls += fixture->mediaUrl("huge");

    QThread thread;
    auto *control = new MainControl;
    control->moveToThread(&thread);
    connect(&thread, &QThread::finished, control, &MainControl::shutDown);
    connect(&thread, &QThread::finished, control, &QObject::deleteLater);
    QSignalSpy idle(control, &MainControl::importIdle);
    thread.start();
    QMetaObject::invokeMethod(
        control, [&] { control->onIterateThroughDir(urls); }, Qt::BlockingQueuedConnection);
    thread.quit();
    QVERIFY(thread.wait(5'000)); // what the program allows
    QCOMPARE(idle.size(), 0);    // given up in the middle
}

void TestFaults::manyFilesLeaveNothingBehind()
{
    fixture->actAsFileTable();
    const QVector<FileData> files = fixture->makeFiles(60);
    int filesAfterFirstRound = 0;
    for (int round = 0; round < 2; ++round) {
        fixture->events.clear();
        fixture->control().onIterateThroughDir({fixture->mediaUrl()});
        QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
        fixture->control().onUpdateAudioTCInfo(files, automaticReading());
        QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
        fixture->control().onExportReq(files, options());
        QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady 0 []").size(), 1, longWait);
        QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
        QCOMPARE(ownprocesses::children(), QVector<qint64>());
        QVERIFY(!fixture->hasTemporaryFolder());
        if (round == 0)
            filesAfterFirstRound = ownprocesses::openFiles();
        else
            QCOMPARE(ownprocesses::openFiles(), filesAfterFirstRound);
        QVERIFY(QDir(fixture->mediaPath("out")).removeRecursively());
        QVERIFY(QDir().mkpath(fixture->mediaPath("out")));
    }
    QVERIFY(fixture->mostToolsAtOnce() <= 45);
}

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
