// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "control/maincontrol.h"
#include "control/probedrecord.h"
#include "testkit/fixtures/toolrun.h"
#include "tests/tooladapter/processes.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

/// Batches of exports with the real tools that are cancelled at any moment.
class TestCancelledExports : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nothingIsLeft_data();
    void nothingIsLeft();

private:
    QByteArray outputOf(const QString &tool, const QStringList &arguments) const;

    QTemporaryDir folder;
    FileData movie;
};

namespace
{

constexpr int limit = 60 * 1000; // [ms]

} // namespace

QByteArray TestCancelledExports::outputOf(const QString &tool, const QStringList &arguments) const
{
    const ToolRun run = runTool(tool, arguments, QProcessEnvironment::systemEnvironment(), folder.path());
    return run.exitCode == 0 ? run.output : QByteArray("failed");
}

void TestCancelledExports::initTestCase()
{
    registerRecordTypes();
    qputenv("TMPDIR", QFile::encodeName(folder.path())); // for the controller alone
    QCOMPARE(
        outputOf("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "testsrc2=size=320x180:rate=25:duration=30",
                            "-f", "lavfi", "-i", "sine=duration=30:sample_rate=48000", "-c:v", "mpeg2video",
                            "-c:a", "pcm_s16le", "-ac", "2", "clip.mov"}),
        QByteArray());
    const QString path = folder.filePath("clip.mov");
    const QByteArray probe =
        outputOf("ffprobe", {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", path});
    movie = probedRecord(QJsonDocument::fromJson(probe).object());
    movie.absoluteFilePath = path;
    movie.fileName = "clip.mov";
    movie.suffix = "mov";
    movie.setAudioTC("10:11:12:13", {1, 0});
    movie.hasAudioTC = true;
    movie.audioTCResult = {{"FrameRateBaseFound", 25}};
    QCOMPARE(movie.streams.size(), 2);
}

void TestCancelledExports::nothingIsLeft_data()
{
    QTest::addColumn<int>("moment"); // [ms] after the start
    for (const int moment : {0, 3, 10, 30, 100, 200, 400, 800})
        QTest::addRow("after %d ms", moment) << moment;
}

void TestCancelledExports::nothingIsLeft()
{
    QFETCH(int, moment);
    const QTemporaryDir target;
    ExportOptions options;
    options.exportDir = target.path();
    options.videoType = 1;
    options.audioType = 2;
    options.muteAudioTC = true;
    MainControl control;
    QSignalSpy ready(&control, &MainControl::exportReady);
    control.onExportReq({movie, movie, movie}, options);
    QTest::qWait(moment); // at any point of their work
    control.onExportCancel();
    QVERIFY(!ready.isEmpty() || ready.wait(limit));
    QTRY_VERIFY_WITH_TIMEOUT(!isProcessRunningWith(QFile::encodeName(target.path())), limit);
    QCOMPARE(QDir(target.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

QTEST_GUILESS_MAIN(TestCancelledExports)
#include "tst_cancelledexports.moc"
