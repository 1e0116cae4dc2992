// SPDX-License-Identifier: MIT
#include "testkit/faketools/faketools.h"
#include "testkit/faketools/onlytools.h"
#include "testkit/fixtures/controllerfixture.h"
#include "testkit/fixtures/ownprocesses.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <cerrno>
#include <cstring>
#include <utility>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

// What disks and memory may do to the controller. The disks are real ones, small and in memory; only this
// process and its children see them, and they are gone with it.

namespace
{

/// A file system in memory at \a path, for as long as it lives.
class SmallDisk
{
public:
    SmallDisk(const QString &mountPoint, const char *size) : path(QFile::encodeName(mountPoint))
    {
        QDir().mkpath(mountPoint);
        mounted =
            mount("tmpfs", path.constData(), "tmpfs", 0, QByteArray("size=").append(size).constData()) == 0;
    }
    ~SmallDisk() { unmount(); }
    Q_DISABLE_COPY(SmallDisk)

    bool isThere() const { return mounted; }
    bool makeReadOnly() const
    {
        return mount(nullptr, path.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }
    void unmount()
    {
        if (std::exchange(mounted, false))
            umount2(path.constData(), MNT_DETACH);
    }

private:
    QByteArray path;
    bool mounted = false;
};

/// Gives this process file systems of its own. Fails where that is not allowed.
bool mayMount()
{
    const int ofUser = geteuid() == 0 ? 0 : CLONE_NEWUSER;
    return unshare(ofUser | CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

FileData record(const QString &path)
{
    const QFileInfo info(path);
    FileData file;
    file.fileName = info.fileName();
    file.baseName = info.baseName();
    file.suffix = info.suffix();
    file.absoluteFilePath = path;
    return file;
}

} // namespace

class TestFaultsOfMachine : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { mayUseDisks = mayMount(); }
    void init();
    void cleanup();

    void aFullTemporaryDiskFailsTheExtraction();
    void aFullExportDiskFailsTheExport();
    void anExportDiskThatTurnsReadOnlyFailsTheRest();
    void anExportDiskThatIsTakenAwayFailsTheRest();
    void manyExportsWithoutMemoryFailOneByOne();

private:
    ExportOptions options() const { return fixture->exportOptions(); }

    bool mayUseDisks = false;
    std::unique_ptr<ControllerFixture> fixture;
};

#define NEEDS_DISKS()                                                                                        \
    if (!mayUseDisks)                                                                                        \
    QSKIP("no disk can be mounted here: that takes root, and a root directory that no chroot has set")

void TestFaultsOfMachine::init()
{
    fixture = std::make_unique<ControllerFixture>();
    QVERIFY(QDir().mkpath(fixture->mediaPath("out")));
}

void TestFaultsOfMachine::cleanup()
{
    fixture.reset();
    QCOMPARE(ownprocesses::children(), QVector<qint64>());
}

void TestFaultsOfMachine::aFullTemporaryDiskFailsTheExtraction()
{
    NEEDS_DISKS();
    makeTone(fixture->mediaPath("a.mov"));
    const OnlyTools real(realMediaTools());
    const QString place = fixture->mediaPath("temporary");
    const SmallDisk disk(place, "100k");
    QVERIFY2(disk.isThere(), std::strerror(errno));
    const QByteArray earlierPlace = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(place));
    fixture->restart();
    fixture->actAsFileTable();
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->eventsOf("read "), QStringList{"read 0 stream -1: 2001 nothing"});
    qputenv("TMPDIR", earlierPlace);
    fixture->restart(); // gives its folder back before the disk goes
    QCOMPARE(QDir(place).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void TestFaultsOfMachine::aFullExportDiskFailsTheExport()
{
    NEEDS_DISKS();
    makeTone(fixture->mediaPath("a.mov"));
    makeTone(fixture->mediaPath("b.mov"));
    const OnlyTools real(realMediaTools());
    const SmallDisk disk(options().exportDir, "100k");
    QVERIFY2(disk.isThere(), std::strerror(errno));
    fixture->control().onExportReq({record(fixture->mediaPath("a.mov")), record(fixture->mediaPath("b.mov"))},
                                   options());
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady").size(), 1, longWait);
    QVERIFY(fixture->events.last().startsWith("exportReady 2 ["));
    QVERIFY(fixture->events.last().contains("a.mov") && fixture->events.last().contains("b.mov"));
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
}

void TestFaultsOfMachine::anExportDiskThatTurnsReadOnlyFailsTheRest()
{
    NEEDS_DISKS();
    const SmallDisk disk(options().exportDir, "10m");
    QVERIFY2(disk.isThere(), std::strerror(errno));
    const QVector<FileData> files = fixture->makeFiles(60, {{"export", QJsonObject{{"waitFor", "gate"}}}});
    const FileData good = fixture->makeFile("good.mov", {{"export", QJsonObject()}});
    fixture->control().onExportReq(QVector<FileData>{good} + files, options());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(fixture->mediaPath("out/good.MOV")), longWait);
    QTRY_VERIFY_WITH_TIMEOUT(disk.makeReadOnly(), longWait); // once nothing writes there any more
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady").size(), 1, longWait);
    QVERIFY(fixture->events.last().startsWith("exportReady 2 ["));
    QCOMPARE(fixture->events.last().count("clip"), 60);
    QVERIFY(!fixture->events.last().contains("good.mov"));
    QCOMPARE(QDir(options().exportDir).entryList(QDir::Files), QStringList{"good.MOV"});
}

void TestFaultsOfMachine::anExportDiskThatIsTakenAwayFailsTheRest()
{
    NEEDS_DISKS();
    SmallDisk disk(options().exportDir, "10m");
    QVERIFY2(disk.isThere(), std::strerror(errno));
    const QVector<FileData> files = fixture->makeFiles(60, {{"export", QJsonObject{{"waitFor", "gate"}}}});
    fixture->control().onExportReq(files, options());
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), 45, longWait);
    disk.unmount();
    QVERIFY(QDir().rmdir(options().exportDir)); // as desktops do with the place of a disk
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady").size(), 1, longWait);
    QVERIFY(fixture->events.last().startsWith("exportReady 2 ["));
    QCOMPARE(fixture->events.last().count("clip"), 60);
    QVERIFY(!QFileInfo::exists(options().exportDir));
}

/// As many encoders as run at once, each with less memory than a picture of full size needs.
void TestFaultsOfMachine::manyExportsWithoutMemoryFailOneByOne()
{
    constexpr int encodes = 45;
    const QString source = fixture->mediaPath("a.mov");
    makeMedia(source, {"testsrc=duration=0.2:size=320x180:rate=25", "-pix_fmt", "yuv420p"});
    QFile poor(fixture->mediaPath("ffmpeg"));
    QVERIFY(poor.open(QIODevice::WriteOnly));
    poor.write("#!/bin/sh\nulimit -v 100000\nexec ffmpeg \"$@\"\n");
    poor.close();
    QVERIFY(poor.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    FileData file = record(source);
    file.mainStream = {{"codec_type", "video"}, {"r_frame_rate", "25/1"}};
    file.streams = {file.mainStream};
    file.duration = 0.2;
    ExportOptions coded = options();
    coded.videoType = 8;
    {
        const OnlyTools tools({{"ffmpeg.exe", poor.fileName()}, {"ffmpeg", "ffmpeg"}, {"sh", "sh"}});
        fixture->control().onExportReq(QVector<FileData>(encodes, file), coded);
        QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("exportReady").size(), 1, longWait);
    }
    QVERIFY(fixture->events.last().startsWith("exportReady 2 ["));
    QCOMPARE(fixture->events.last().count("a.mov"), encodes);

    const OnlyTools tools({{"ffmpeg.exe", "ffmpeg"}});
    fixture->control().onExportReq({file}, coded); // the memory is there again
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("exportReady 0 []"), longWait);
}

QTEST_GUILESS_MAIN(TestFaultsOfMachine)
#include "tst_faultsofmachine.moc"
