// SPDX-License-Identifier: MIT
#include "testkit/fixtures/row.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

namespace
{

QStringList exportList()
{
    return {"-y", "-i", "in.mov", "-vcodec", "copy", "out.MOV"};
}

// What the stand-in for the probe tool says of every file.
const char completeFile[] =
    "#!/bin/sh\n"
    "printf '[PACKET]\\nstream_index=0\\npts_time=4.96\\nduration_time=0.04\\n[/PACKET]\\n"
    "[STREAM]\\nindex=0\\ncodec_type=video\\navg_frame_rate=25/1\\nduration=5.0\\n"
    "[/STREAM]\\n'\n";

/// Whether the process still runs; one that only waits for its parent to notice the end does not.
bool isAlive(qint64 process)
{
    QFile status(QString("/proc/%1/stat").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = status.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1) != "Z";
}

} // namespace

/// The program as a whole, with stand-ins for the real tools.
class TestAdapter : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aMissingToolIsNamed_data();
    void aMissingToolIsNamed();
    void theToolTakesOverWhereNothingIsToBeWatched_data();
    void theToolTakesOverWhereNothingIsToBeWatched();
    void errorOutputAndExitCodeComeThrough();
    void aToolThatWasKilledIsAFailure();
    void anIncompleteFileIsAFailure();
    void whatIsLeftOfAFailureIsSetAside_data();
    void whatIsLeftOfAFailureIsSetAside();
    void theWrittenFileIsProbedOnce_data();
    void theWrittenFileIsProbedOnce();
    void anUnreadableSourceIsAFailure();
    void aRefusalStartsNoTool();
    void aLargeBatchWorksByTurns();
    void killingTheAdapterKillsTheTool_data();
    void killingTheAdapterKillsTheTool();

private:
    void makeTool(const QString &name, const QByteArray &script);
    void start(const QStringList &arguments, const QStringList &environment = {},
               const QString &called = "ffmpeg.exe");
    void finish();
    QByteArray contents(const QString &name) const;

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<QProcess> adapter;
    QString errors;
};

void TestAdapter::init()
{
    adapter.reset();
    folder = std::make_unique<QTemporaryDir>();
    makeTool("ffprobe", completeFile);
}

void TestAdapter::makeTool(const QString &name, const QByteArray &script)
{
    QFile file(folder->filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(script);
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void TestAdapter::start(const QStringList &arguments, const QStringList &environment, const QString &called)
{
    adapter = std::make_unique<QProcess>();
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert("PATH", folder->path() + ":/usr/bin:/bin");
    for (const QString &variable : environment)
        variables.insert(variable.section('=', 0, 0), variable.section('=', 1));
    adapter->setProcessEnvironment(variables);
    adapter->setWorkingDirectory(folder->path());
    adapter->start(QStandardPaths::findExecutable(called), arguments);
    QVERIFY(adapter->waitForStarted());
}

void TestAdapter::finish()
{
    QVERIFY(adapter->waitForFinished());
    QCOMPARE(adapter->exitStatus(), QProcess::NormalExit);
    errors = QString::fromUtf8(adapter->readAllStandardError());
}

QByteArray TestAdapter::contents(const QString &name) const
{
    QFile file(folder->filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestAdapter::aMissingToolIsNamed_data()
{
    QTest::addColumn<QString>("called");
    QTest::addColumn<QString>("tool");
    row("transcoding tool", "ffmpeg.exe", "ffmpeg");
    row("probe tool", "ffprobe.exe", "ffprobe");
}

void TestAdapter::aMissingToolIsNamed()
{
    QFETCH(QString, called);
    QFETCH(QString, tool);
    const QTemporaryDir empty;
    start({"-version"}, {"PATH=" + empty.path()}, called);
    finish();
    QCOMPARE(adapter->exitCode(), 127);
    QCOMPARE(errors.count('\n'), 1);
    QVERIFY(errors.contains("no program \"" + tool + "\" in PATH"));
    QVERIFY(errors.contains("apt install ffmpeg"));
}

void TestAdapter::theToolTakesOverWhereNothingIsToBeWatched_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("environment");
    QTest::addColumn<QStringList>("passedOn");
    const QStringList unknown{"-i", "a b.mov", "-c", "copy", "", "c.mov"};
    row("an unknown list", unknown, QStringList(), unknown);
    row("no argument", QStringList(), QStringList(), QStringList());
    row("corrections switched off", exportList(), QStringList{"OSTREL_TOOL_ADAPTER=off"}, exportList());
    row("extraction",
        QStringList{"-y", "-guess_layout_max", "0", "-ss", "0", "-i", "in.mov", "-t", "3", "-map", "0:1",
                    "a.wav", "-map", "0:2", "b.wav"},
        QStringList(),
        QStringList{"-y", "-guess_layout_max", "0", "-t", "3", "-i", "in.mov", "-map", "0:1", "a.wav", "-map",
                    "0:2", "b.wav"});
}

void TestAdapter::theToolTakesOverWhereNothingIsToBeWatched()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, environment);
    QFETCH(QStringList, passedOn);
    makeTool("ffmpeg", "#!/bin/sh\necho $$\nfor word; do echo \"$word\"; done\nexit 7\n");
    start(arguments, environment);
    const qint64 process = adapter->processId();
    finish();
    QCOMPARE(adapter->exitCode(), 7);
    QStringList printed = QString::fromUtf8(adapter->readAllStandardOutput()).split('\n');
    QCOMPARE(printed.takeFirst().toLongLong(),
             process); // the same process, so that killing it kills the tool
    printed.removeLast();
    QCOMPARE(printed, passedOn);
}

void TestAdapter::errorOutputAndExitCodeComeThrough()
{
    makeTool("ffmpeg", "#!/bin/sh\nprintf 'frame=1\\rframe=2\\r' >&2\nexit 0\n");
    start(exportList());
    finish();
    QCOMPARE(adapter->exitCode(), 0);
    QCOMPARE(errors, QString("frame=1\rframe=2\r"));

    makeTool("ffmpeg", "#!/bin/sh\nexit 69\n");
    start(exportList());
    finish();
    QCOMPARE(adapter->exitCode(), 69);
}

void TestAdapter::aToolThatWasKilledIsAFailure()
{
    makeTool("ffmpeg", "#!/bin/sh\nkill -KILL $$\n");
    start(exportList());
    finish();
    QCOMPARE(adapter->exitCode(), 128 + SIGKILL);
}

void TestAdapter::anIncompleteFileIsAFailure()
{
    makeTool("ffmpeg", "#!/bin/sh\nexit 0\n");
    makeTool("ffprobe", QByteArray(completeFile)
                            .replace("duration=5.0", "duration='$([ \"${6#out}\" = \"$6\" ] && "
                                                     "echo 5 || echo 3)'"));
    start(exportList());
    finish();
    QVERIFY(adapter->exitCode() != 0);
    QVERIFY2(errors.contains("picture ends after 3.00 s, the source's after 5.00 s"), qPrintable(errors));
}

void TestAdapter::whatIsLeftOfAFailureIsSetAside_data()
{
    QTest::addColumn<QByteArray>("ffmpeg");
    QTest::addColumn<QStringList>("left"); // files in the folder
    row("the tool fails", QByteArray("#!/bin/sh\necho half >out.MOV\nexit 1\n"),
        QStringList{"out.MOV.incomplete"});
    row("the tool is killed", QByteArray("#!/bin/sh\necho half >out.MOV\nkill -KILL $$\n"),
        QStringList{"out.MOV.incomplete"});
    row("the written file is not complete", QByteArray("#!/bin/sh\necho half >out.MOV\n"),
        QStringList{"out.MOV.incomplete"});
    row("nothing was written", QByteArray("#!/bin/sh\nexit 1\n"), QStringList());
    row("what is left of an earlier one gives way",
        QByteArray("#!/bin/sh\necho old >out.MOV.incomplete\necho half >out.MOV\nexit 1\n"),
        QStringList{"out.MOV.incomplete"});
    row("a folder has the name", QByteArray("#!/bin/sh\nmkdir out.MOV\nexit 1\n"), QStringList{"out.MOV"});
    row("a folder has the name that it is to get",
        QByteArray("#!/bin/sh\nmkdir out.MOV.incomplete\necho half >out.MOV\nexit 1\n"),
        QStringList{"out.MOV", "out.MOV.incomplete"});
}

void TestAdapter::whatIsLeftOfAFailureIsSetAside()
{
    QFETCH(QByteArray, ffmpeg);
    QFETCH(QStringList, left);
    makeTool("ffmpeg", ffmpeg);
    makeTool("ffprobe", QByteArray(completeFile).replace("codec_type=video", "codec_type=${6#out}"));
    start(exportList(), {"OSTREL_SOURCE=index=0\ncodec_type=video\navg_frame_rate=25/1\nduration=5.0"});
    finish();
    QVERIFY(adapter->exitCode() != 0);
    QCOMPARE(QDir(folder->path()).entryList({"out*"}, QDir::Files | QDir::Dirs, QDir::Name), left);
    if (QFileInfo(folder->filePath("out.MOV.incomplete")).isFile())
        QCOMPARE(contents("out.MOV.incomplete"), QByteArray("half\n"));
}

void TestAdapter::theWrittenFileIsProbedOnce_data()
{
    QTest::addColumn<QString>("source"); // what the application reports about it
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("probed");
    const QString known = "OSTREL_SOURCE=index=0\ncodec_type=video\navg_frame_rate=25/1\nduration=";
    row("complete", known + "5.0", "out.MOV", 0, QByteArray("out.MOV\n"));
    row("incomplete", known + "6.0", "out.MOV", 2, QByteArray("out.MOV\n"));
    row("a source that the application does not know", "OSTREL_SOURCE=", "out.MOV", 0,
        QByteArray("in.mov\nout.MOV\n"));
    row("a note that MXF holds as a comment", known + "5.0\n[FORMAT]\nTAG:title=...", "out.MXF", 0,
        QByteArray("in.mov\nout.MXF\n"));
}

void TestAdapter::theWrittenFileIsProbedOnce()
{
    QFETCH(QString, source);
    QFETCH(QString, output);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, probed);
    makeTool("ffmpeg", "#!/bin/sh\nexit 0\n");
    makeTool("ffprobe", QByteArray(completeFile) + "echo \"$6\" >>probed\n");
    QStringList arguments = exportList();
    arguments.last() = output;
    start(arguments, {source});
    finish();
    QVERIFY2(adapter->exitCode() == exitCode, qPrintable(errors));
    QCOMPARE(contents("probed"), probed);
}

void TestAdapter::anUnreadableSourceIsAFailure()
{
    makeTool("ffmpeg", "#!/bin/sh\ntouch started\n");
    makeTool("ffprobe", "#!/bin/sh\nexit 1\n");
    start(exportList());
    finish();
    QVERIFY(adapter->exitCode() != 0);
    QVERIFY(errors.contains("in.mov cannot be read"));
    QVERIFY(!QFile::exists(folder->filePath("started")));
}

void TestAdapter::aRefusalStartsNoTool()
{
    makeTool("ffmpeg", "#!/bin/sh\ntouch started\n");
    start({"-y", "-guess_layout_max", "0", "-ss", "0", "-i", "in.mov", "-t", "3"});
    finish();
    QVERIFY(adapter->exitCode() != 0);
    QCOMPARE(errors.count('\n'), 1);
    QVERIFY(errors.contains("no audio stream"));
    QVERIFY(!QFile::exists(folder->filePath("started")));
}

void TestAdapter::aLargeBatchWorksByTurns()
{
    // Each tool leaves a mark while it works and writes down how many it sees.
    makeTool("ffmpeg", "#!/bin/sh\ntouch mark.$$\nls mark.* | wc -l >>seen\nsleep 0.2\nrm mark.$$\nexit 1\n");
    constexpr int files = 12;
    const int together = std::max(4, QThread::idealThreadCount());
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert("PATH", folder->path() + ":/usr/bin:/bin");
    variables.insert("OSTREL_BATCH_SIZE", QString::number(100 * files));
    std::vector<std::unique_ptr<QProcess>> batch;
    for (int i = 0; i < files; ++i) {
        batch.push_back(std::make_unique<QProcess>());
        batch.back()->setProcessEnvironment(variables);
        batch.back()->setWorkingDirectory(folder->path());
        batch.back()->start(QStandardPaths::findExecutable("ffmpeg.exe"),
                            {"-y", "-i", "in.mov", "-vcodec", "mpeg2video", QString("out%1.MXF").arg(i)});
    }
    for (const auto &process : batch) {
        QVERIFY(process->waitForFinished());
        QCOMPARE(process->exitCode(), 1);
    }
    const QList<QByteArray> counts = contents("seen").trimmed().split('\n');
    QCOMPARE(counts.size(), files);
    for (const QByteArray &count : counts)
        QVERIFY2(count.trimmed().toInt() <= together, count.constData());
}

void TestAdapter::killingTheAdapterKillsTheTool_data()
{
    // What hangs once it has printed its process id; every other tool ends at once.
    constexpr auto hangs = "echo $$ > tool.part; mv tool.part tool; exec sleep 600\n";
    QTest::addColumn<QByteArray>("ffprobe");
    QTest::addColumn<QByteArray>("ffmpeg");
    row("while it looks at the source", QByteArray("#!/bin/sh\n") + hangs, QByteArray("#!/bin/sh\n"));
    row("while the tool works", QByteArray(completeFile), QByteArray("#!/bin/sh\n") + hangs);
    row("while it looks at the written file", QByteArray(completeFile) + "test -e done || exit 0\n" + hangs,
        QByteArray("#!/bin/sh\ntouch done\n"));
}

void TestAdapter::killingTheAdapterKillsTheTool()
{
    QFETCH(QByteArray, ffprobe);
    QFETCH(QByteArray, ffmpeg);
    makeTool("ffprobe", ffprobe);
    makeTool("ffmpeg", ffmpeg);
    start(exportList());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(folder->filePath("tool")), 30000);
    const qint64 tool = contents("tool").trimmed().toLongLong();
    QVERIFY(tool > 0 && tool != adapter->processId());
    QVERIFY(isAlive(tool));
    adapter->kill();
    QVERIFY(adapter->waitForFinished());
    QTRY_VERIFY_WITH_TIMEOUT(!isAlive(tool), 30000);
}

QTEST_GUILESS_MAIN(TestAdapter)
#include "tst_adapter.moc"
