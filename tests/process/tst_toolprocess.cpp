// SPDX-License-Identifier: MIT
#include "process/qtversion.h"
#include "process/toolprocess.h"
#include "testkit/faketools/faketools.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_LINUX
#include <csignal>

#include <sys/resource.h>
#include <sys/wait.h>
#endif

class TestToolProcess : public QObject
{
    Q_OBJECT

private slots:
    void toolsStepBackBehindTheUsersWork();
    void toolsStartWithoutACopyOfTheProgram();
    void toolsEndWhenTheProgramIsKilled();
    void aDestroyedProcessTakesItsToolWithIt();
    void aToolIsSeenToEndThoughItsSignalWasLost();
    void aProcessWhoseEndWasLostIsDestroyedAtOnce();
    void outputAndExitCodeComeThrough();

private:
    QTemporaryDir folder;
};

namespace
{

constexpr auto ownerRole = "--start-a-tool-and-wait";

/// Plays the program that is killed while its tool runs.
int ownTool(const QString &mediaPath)
{
    ToolProcess process(nullptr);
    process.start("ffprobe.exe", {mediaPath});
    process.waitForFinished(-1);
    return EXIT_SUCCESS;
}

/// Has the process start a tool that never ends, and waits until it is at work.
void startHangingTool(ToolProcess &process, const QString &mediaPath)
{
    faketools::setPlan(mediaPath, {{"probe", QJsonObject{{"hang", true}}}});
    process.start("ffprobe.exe", {mediaPath});
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(mediaPath).size(), 1, 30'000);
}

#ifdef Q_OS_LINUX
/// Kills the tool of the process in such a way that no one learns of its end, as happens to one that ends
/// before the toolkit has noted its process id.
void killUnheard(const ToolProcess &process)
{
    struct sigaction deaf = {};
    struct sigaction usual = {};
    deaf.sa_handler = SIG_DFL;
    QCOMPARE(sigaction(SIGCHLD, &deaf, &usual), 0);
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGKILL), 0);
    siginfo_t end = {};
    QCOMPARE(waitid(P_PID, static_cast<id_t>(process.processId()), &end, WEXITED | WNOWAIT), 0);
    QCOMPARE(sigaction(SIGCHLD, &usual, nullptr), 0);
}
#endif

} // namespace

void TestToolProcess::toolsStepBackBehindTheUsersWork()
{
#ifndef Q_OS_LINUX
    QSKIP("a plain process on this platform");
#else
    const QString media = folder.filePath("nice.mov");
    ToolProcess process(nullptr);
    process.start("ffprobe.exe", {media});
    QVERIFY(process.waitForFinished());

    const auto calls = faketools::calls(media);
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].priority, qMin(getpriority(PRIO_PROCESS, 0) + 10, 19));
    QCOMPARE(calls[0].oomScore, 1000);
#endif
}

void TestToolProcess::toolsStartWithoutACopyOfTheProgram()
{
#ifndef Q_OS_LINUX
    QSKIP("a plain process on this platform");
#else
    if (qtversion::copiesItself)
        QSKIP("this version of Qt cannot start programs so");
    // Whoever waits until the tool is at work never meets a copy of itself.
    const QString media = folder.filePath("started.mov");
    for (int start = 0; start < 20; ++start) {
        ToolProcess process(nullptr);
        process.start("ffprobe.exe", {media});
        const QFileInfo program(QString("/proc/%1/exe").arg(process.processId()));
        QVERIFY(program.symLinkTarget() != QCoreApplication::applicationFilePath());
        QVERIFY(process.waitForFinished());
    }
#endif
}

void TestToolProcess::toolsEndWhenTheProgramIsKilled()
{
#ifndef Q_OS_LINUX
    QSKIP("a plain process on this platform");
#else
    const QString media = folder.filePath("orphan.mov");
    faketools::setPlan(media, {{"probe", QJsonObject{{"hang", true}}}});

    QProcess owner;
    owner.start(QCoreApplication::applicationFilePath(), {ownerRole, media});
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(media).size(), 1, 30'000);
    const qint64 tool = faketools::calls(media).value(0).processId;
    QVERIFY(faketools::isAlive(tool));

    owner.kill();
    QVERIFY(owner.waitForFinished());
    QTRY_VERIFY_WITH_TIMEOUT(!faketools::isAlive(tool), 30'000);
#endif
}

void TestToolProcess::aDestroyedProcessTakesItsToolWithIt()
{
    const QString media = folder.filePath("destroyed.mov");
    qRegisterMetaType<QProcess::ExitStatus>();
    auto *const process = new ToolProcess(nullptr);
    QSignalSpy finished(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished));
    startHangingTool(*process, media);
    delete process;

    QVERIFY(!faketools::isAlive(faketools::calls(media).value(0).processId));
    QCOMPARE(finished.count(), 0);
}

void TestToolProcess::aToolIsSeenToEndThoughItsSignalWasLost()
{
#ifndef Q_OS_LINUX
    QSKIP("a plain process on this platform");
#else
    ToolProcess process(nullptr);
    startHangingTool(process, folder.filePath("unheard.mov"));
    killUnheard(process);

    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 30'000);
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
#endif
}

void TestToolProcess::aProcessWhoseEndWasLostIsDestroyedAtOnce()
{
#ifndef Q_OS_LINUX
    QSKIP("a plain process on this platform");
#else
    auto *const process = new ToolProcess(nullptr);
    startHangingTool(*process, folder.filePath("unheard-and-destroyed.mov"));
    killUnheard(*process);
    QElapsedTimer clock;
    clock.start();
    delete process;

    constexpr qint64 patienceOfToolkit = 30'000; // for the end of a process that it destroys, in milliseconds
    QVERIFY(clock.elapsed() < patienceOfToolkit);
#endif
}

void TestToolProcess::outputAndExitCodeComeThrough()
{
    const QString media = folder.filePath("failing.mov");
    const QJsonArray actions{QJsonObject{{"stdout", "out"}}, QJsonObject{{"stderr", "err"}}};
    faketools::setPlan(media, {{"probe", QJsonObject{{"actions", actions}, {"exitCode", 7}}}});

    ToolProcess process(nullptr);
    process.start("ffprobe.exe", {media});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 7);
    QCOMPARE(process.readAllStandardOutput(), QByteArray("out"));
    QCOMPARE(process.readAllStandardError(), QByteArray("err"));
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == ownerRole)
        return ownTool(arguments.value(2));

    TestToolProcess test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_toolprocess.moc"
