// SPDX-License-Identifier: MIT
#include "testkit/fixtures/row.h"
#include "testkit/fixtures/toolrun.h"
#include "tests/tooladapter/processes.h"
#include "tooladapter/rules/source.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{

constexpr int limit = 60 * 1000; // [ms]

QStringList copied()
{
    return {"-vcodec", "copy"};
}

QStringList coded()
{
    return {"-vcodec", "mpeg2video", "-b:v", "50M", "-pix_fmt", "yuv422p", "-s", "1920x1080"};
}

} // namespace

/// The program as a whole with the real tools, where things go wrong.
class TestRealExports : public QObject, private ToolFolder
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aSourceThatBreaksOffIsAFailure_data();
    void aSourceThatBreaksOffIsAFailure();
    void aFullDiskIsAFailure_data();
    void aFullDiskIsAFailure();
    void filesInOddFoldersAreWritten_data();
    void filesInOddFoldersAreWritten();
    void aFileThatIsCutIsAFailure_data();
    void aFileThatIsCutIsAFailure();
    void aFileThatCannotBeMadeIsAFailure_data();
    void aFileThatCannotBeMadeIsAFailure();
    void everyExtractedFileEndsAfterThreeSeconds();
    void soundThatBeginsLateKeepsItsPlace_data();
    void soundThatBeginsLateKeepsItsPlace();
    void soundThatEndsEarlyCostsNoFrame_data();
    void soundThatEndsEarlyCostsNoFrame();
    void aCircleStaysACircle_data();
    void aCircleStaysACircle();
    void copiedFieldsKeepTheirOrder_data();
    void copiedFieldsKeepTheirOrder();
    void codedFieldsAreNotedInQuickTime_data();
    void codedFieldsAreNotedInQuickTime();
    void killingAnExportLeavesNoProcess_data();
    void killingAnExportLeavesNoProcess();

private:
    int exportFile(const QString &source, const QStringList &picture, const QString &target);
    double durationOf(const QString &name);
    int framesOf(const QString &name);
    void makeFields(const QString &size, const QString &first);
    QByteArray fieldOrderOf(const QString &name);
    double silenceBefore(const QString &name);
    void describe(const QString &source);
};

int TestRealExports::exportFile(const QString &source, const QStringList &picture, const QString &target)
{
    return run("ffmpeg.exe", QStringList{"-y", "-i", folder.filePath(source), "-acodec", "pcm_s16le"} +
                                 picture + QStringList{"-timecode", "10:11:12:13", "-r", "25", target});
}

double TestRealExports::durationOf(const QString &name)
{
    run("ffprobe", {"-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", name});
    return output.trimmed().toDouble();
}

/// Sets the description of \a source that the application gives to its tools.
void TestRealExports::describe(const QString &source)
{
    QStringList probing;
    for (const std::string &argument : tooladapter::probeArguments(source.toStdString()))
        probing += QString::fromStdString(argument);
    QCOMPARE(run("ffprobe", probing), 0);
    qputenv("OSTREL_SOURCE", output);
}

/// Number of pictures in \a name, counted.
int TestRealExports::framesOf(const QString &name)
{
    run("ffprobe", {"-v", "error", "-count_packets", "-select_streams", "v", "-show_entries",
                    "stream=nb_read_packets", "-of", "default=nokey=1:noprint_wrappers=1", name});
    return output.trimmed().toInt();
}

/// Makes "fields.mov", an interlaced picture; \a first is its coder's word for the order.
void TestRealExports::makeFields(const QString &size, const QString &first)
{
    QCOMPARE(run("ffmpeg", {"-v", "error", "-y", "-f", "lavfi", "-i",
                            "testsrc2=size=" + size + ":rate=25:duration=0.4", "-c:v", "libx264", "-preset",
                            "ultrafast", "-x264-params", first, "-flags", "+ildct+ilme", "fields.mov"}),
             0);
}

/// The order of fields in \a name, in the words of the probe tool.
QByteArray TestRealExports::fieldOrderOf(const QString &name)
{
    run("ffprobe", {"-v", "error", "-select_streams", "v", "-show_entries", "stream=field_order", "-of",
                    "default=nokey=1:noprint_wrappers=1", name});
    return output.trimmed();
}

/// How long the first audio stream of \a name is silent at its beginning [s].
double TestRealExports::silenceBefore(const QString &name)
{
    run("ffmpeg",
        {"-v", "error", "-i", name, "-map", "0:a:0", "-f", "s16le", "-ac", "1", "-ar", "48000", "-"});
    constexpr qint16 silent = 500; // coders put a little noise before a tone
    const auto *samples = reinterpret_cast<const qint16 *>(output.constData());
    const auto count = output.size() / static_cast<int>(sizeof(qint16));
    const auto *const first =
        std::find_if(samples, samples + count, [](qint16 sample) { return std::abs(sample) > silent; });
    return static_cast<double>(first - samples) / 48000;
}

void TestRealExports::initTestCase()
{
    QVERIFY2(!QStandardPaths::findExecutable("ffmpeg").isEmpty(), "these tests need ffmpeg");
    QCOMPARE(run("ffmpeg", {"-v",        "error",
                            "-f",        "lavfi",
                            "-i",        "testsrc2=size=320x180:rate=25:duration=5",
                            "-f",        "lavfi",
                            "-i",        "sine=duration=5:sample_rate=48000",
                            "-f",        "lavfi",
                            "-i",        "sine=frequency=700:duration=5:sample_rate=48000",
                            "-map",      "0",
                            "-map",      "1",
                            "-map",      "2",
                            "-c:v",      "mpeg2video",
                            "-c:a",      "pcm_s16le",
                            "-movflags", "faststart",
                            "whole.mov"}),
             0);
    QFile whole(folder.filePath("whole.mov"));
    QFile half(folder.filePath("half.mov"));
    QVERIFY(whole.open(QIODevice::ReadOnly) && half.open(QIODevice::WriteOnly));
    half.write(whole.read(whole.size() / 2));
}

void TestRealExports::aSourceThatBreaksOffIsAFailure_data()
{
    QTest::addColumn<QStringList>("picture");
    QTest::addColumn<QString>("target");
    row("copied to QuickTime", copied(), "out.MOV");
    row("coded to MXF", coded(), "out.MXF");
}

void TestRealExports::aSourceThatBreaksOffIsAFailure()
{
    QFETCH(QStringList, picture);
    QFETCH(QString, target);
    QCOMPARE(exportFile("whole.mov", picture, target), 0);
    const int exitCode = exportFile("half.mov", picture, target);
    QVERIFY2(exitCode > 0, qPrintable(errors));
}

void TestRealExports::aFullDiskIsAFailure_data()
{
    QTest::addColumn<QStringList>("picture");
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("atTheEnd");
    row("half-way, copied to QuickTime", copied(), "out.MOV", false);
    row("in the last kilobytes, copied to QuickTime", copied(), "out.MOV", true);
    row("half-way, coded to MXF", coded(), "out.MXF", false);
    row("in the last kilobytes, coded to MXF", coded(), "out.MXF", true);
}

void TestRealExports::aFullDiskIsAFailure()
{
    QFETCH(QStringList, picture);
    QFETCH(QString, target);
    QFETCH(bool, atTheEnd);
    QCOMPARE(exportFile("whole.mov", picture, target), 0);
    const qint64 size = QFileInfo(folder.filePath(target)).size();
    const qint64 room = (atTheEnd ? size - 2048 : size / 2) / 1024; // [KiB]

    // A limit on the size of files gives the same error as a full disk, once its signal is ignored.
    const QString limited = "trap '' XFSZ; ulimit -f " + QString::number(room) + "; exec \"$@\"";
    const int exitCode =
        run("bash", QStringList{"-c", limited, "bash", "ffmpeg.exe", "-y", "-i", folder.filePath("whole.mov"),
                                "-acodec", "pcm_s16le"} +
                        picture + QStringList{"-timecode", "10:11:12:13", "-r", "25", target});
    QVERIFY2(exitCode > 0, qPrintable(errors));
}

void TestRealExports::filesInOddFoldersAreWritten_data()
{
    QTest::addColumn<QString>("target");
    row("begins with a dash", "-x");
    row("looks like a protocol", "a:b");
    row("percent, blank and quote", "100%d 'x'");
}

void TestRealExports::filesInOddFoldersAreWritten()
{
    QFETCH(QString, target);
    QVERIFY(QDir(folder.path()).mkdir(target));
    QVERIFY2(exportFile("whole.mov", copied(), target + "/clip.MOV") == 0, qPrintable(errors));
    QVERIFY(QFileInfo(folder.filePath(target + "/clip.MOV")).size() > 0);
}

void TestRealExports::aFileThatIsCutIsAFailure_data()
{
    QTest::addColumn<QStringList>("chosen");
    QTest::addColumn<QString>("target");
    const QStringList timecode{"-timecode", "10:11:12:13", "-r", "25"};
    const QStringList dnxhd{"-vcodec", "dnxhd", "-b:v", "36M", "-pix_fmt", "yuv422p", "-s", "1920x1080"};
    row("copied to QuickTime", copied() + timecode, "cut.MOV");
    row("MPEG-2 in MXF, whose index comes last", coded() + timecode, "cut.MXF");
    row("DNxHD in MXF, whose index comes first", dnxhd + timecode, "cut.MXF");
    row("sound alone", QStringList{"-map", "0:1", "-acodec", "pcm_s16le"}, "cut.MOV");
    row("WAV",
        QStringList{"-write_bext", "1", "-metadata", "time_reference=1760232000", "-map", "0:1", "-acodec",
                    "pcm_s16le"},
        "cut.WAV");
}

void TestRealExports::aFileThatIsCutIsAFailure()
{
    QFETCH(QStringList, chosen);
    QFETCH(QString, target);
    const QString source = folder.filePath("whole.mov");
    const QStringList arguments = QStringList{"-y", "-i", source} + chosen + QStringList{target};
    QVERIFY2(run("ffmpeg.exe", arguments) == 0, qPrintable(errors));
    QVERIFY(QDir(folder.path()).mkpath("tools"));
    QFile::remove(folder.filePath("tools/whole"));
    QVERIFY(QFile::rename(folder.filePath(target), folder.filePath("tools/whole")));

    // An ffmpeg that reports success for any part of the file
    QFile tool(folder.filePath("tools/ffmpeg"));
    QVERIFY(tool.open(QIODevice::WriteOnly));
    tool.write("#!/bin/sh\nfor last; do :; done\nhead -c $SIZE tools/whole >\"$last\"\n");
    tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    tool.close();
    describe(source);
    const QByteArray searchPath = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder.filePath("tools:")) + searchPath);
    const auto restore = qScopeGuard([&searchPath] {
        qputenv("PATH", searchPath);
        qunsetenv("OSTREL_SOURCE");
    });
    const qint64 size = QFileInfo(folder.filePath("tools/whole")).size();
    constexpr int parts = 20;
    for (int part = 0; part <= parts - 3; ++part) { // half a second of five may be missing
        qputenv("SIZE", QByteArray::number(size * part / parts));
        QVERIFY2(run("ffmpeg.exe", arguments) > 0, qPrintable(QString("%1 of %2").arg(part).arg(parts)));
        QVERIFY(!QFileInfo::exists(folder.filePath(target)));
        QVERIFY(QFileInfo::exists(folder.filePath(target + ".incomplete")));
    }
    qputenv("SIZE", QByteArray::number(size));
    QVERIFY2(run("ffmpeg.exe", arguments) == 0, qPrintable(errors));
}

void TestRealExports::aFileThatCannotBeMadeIsAFailure_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("reason");
    row("name of 256 bytes", QString(252, 'x') + ".MOV", "File name too long");
    row("name of 255 letters in 259 bytes",
        QString(251, 'x').replace(0, 4, "\u00dc\u00dc\u00dc\u00dc") + ".MOV", "File name too long");
    row("the folder has gone", "gone/clip.MOV", "No such file or directory");
    row("a folder has the name", "folder.MOV", "Is a directory");
}

void TestRealExports::aFileThatCannotBeMadeIsAFailure()
{
    QFETCH(QString, target);
    QFETCH(QString, reason);
    QVERIFY(QDir(folder.path()).mkpath("folder.MOV"));
    const int exitCode = exportFile("whole.mov", copied(), target);
    QVERIFY2(exitCode > 0, qPrintable(errors));
    QVERIFY2(errors.contains(reason), qPrintable(errors));
}

void TestRealExports::everyExtractedFileEndsAfterThreeSeconds()
{
    QCOMPARE(
        run("ffmpeg.exe", {"-y", "-guess_layout_max", "0", "-ss", "0", "-i", folder.filePath("whole.mov"),
                           "-t", "3", "-map", "0:1", "first.wav", "-map", "0:2", "second.wav"}),
        0);
    QCOMPARE(durationOf("first.wav"), 3.0);
    QCOMPARE(durationOf("second.wav"), 3.0);
}

void TestRealExports::soundThatBeginsLateKeepsItsPlace_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<double>("delay"); // [s] of the sound
    row("QuickTime", "late.mov", 0.4);
    row("transport stream", "late.mts", 0.09);
}

void TestRealExports::soundThatBeginsLateKeepsItsPlace()
{
    QFETCH(QString, source);
    QFETCH(double, delay);
    constexpr double tolerance = 0.01; // [s] of time stamps, and of what a coder needs to swing in
    const QString path = folder.filePath(source);
    const QString making = "-v error -y -i whole.mov -itsoffset %1 -i whole.mov -map 0:v -map 1:1 -t 2 "
                           "-c:v copy -c:a %2 %3";
    const QString codec = source.endsWith("mts") ? "mp2" : "pcm_s16le";
    QCOMPARE(run("ffmpeg", making.arg(delay).arg(codec, source).split(' ')), 0);
    describe(path);
    const int extraction = run("ffmpeg.exe", {"-y", "-guess_layout_max", "0", "-ss", "0", "-i", path, "-t",
                                              "3", "-map", "0:1", "extracted.wav"});
    const int exported = exportFile(source, coded(), "late.MXF");
    qunsetenv("OSTREL_SOURCE");
    QCOMPARE(extraction, 0);
    QVERIFY2(exported == 0, qPrintable(errors));
    for (const char *written : {"extracted.wav", "late.MXF"}) {
        const double silence = silenceBefore(written);
        QVERIFY2(std::abs(silence - delay) < tolerance,
                 qPrintable(QString("%1: %2 s of silence").arg(written).arg(silence)));
    }
}

void TestRealExports::soundThatEndsEarlyCostsNoFrame_data()
{
    QTest::addColumn<double>("end"); // [s] of the sound; the picture ends after 2 s
    row("by two frames", 1.91);
    row("by a second", 1.0);
}

void TestRealExports::soundThatEndsEarlyCostsNoFrame()
{
    QFETCH(double, end);
    const QString making = "-v error -y -t 2 -i whole.mov -t %1 -i whole.mov -map 0:v -map 1:1 -map 0:2 "
                           "-c copy short.mov";
    QCOMPARE(run("ffmpeg", making.arg(end).split(' ')), 0);
    QVERIFY2(exportFile("short.mov", coded(), "short.MXF") == 0, qPrintable(errors));
    QVERIFY(framesOf("short.mov") >= 50);
    QCOMPARE(framesOf("short.MXF"), framesOf("short.mov"));
}

void TestRealExports::aCircleStaysACircle_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("pixelAspect"); // width/height
    QTest::addColumn<QString>("rotation");    // [degrees]
    row("16:9", "640x360", "1", "0");
    row("4:3", "640x480", "1", "0");
    row("wider than 16:9", "1024x540", "1", "0");
    row("portrait", "360x640", "1", "0");
    row("turned by a tag", "640x360", "1", "90");
    row("PAL 4:3", "720x576", "16/15", "0");
    row("PAL 16:9", "720x576", "64/45", "0");
}

void TestRealExports::aCircleStaysACircle()
{
    QFETCH(QString, size);
    QFETCH(QString, pixelAspect);
    QFETCH(QString, rotation);
    const QString circle = QString("color=c=black:size=%1:rate=25:duration=0.08,format=gray,"
                                   "geq=lum='255*lte(hypot((X-W/2)*%2,Y-H/2),80)',setsar=%2")
                               .arg(size, pixelAspect);
    QCOMPARE(run("ffmpeg", {"-v", "error", "-y", "-f", "lavfi", "-i", circle, "-c:v", "mpeg2video", "-q:v",
                            "2", "-pix_fmt", "yuv420p", "upright.mov"}),
             0);
    QCOMPARE(run("ffmpeg", {"-v", "error", "-y", "-i", "upright.mov", "-c", "copy", "-metadata:s:v:0",
                            "rotate=" + rotation, "circle.mov"}),
             0);
    const int exported = exportFile("circle.mov", coded(), "circle.MXF");
    QVERIFY2(exported == 0, qPrintable(errors));
    QCOMPARE(run("ffmpeg", {"-v", "error", "-i", "circle.MXF", "-frames:v", "1", "-f", "rawvideo", "-pix_fmt",
                            "gray", "-"}),
             0);
    constexpr int width = 1920;
    constexpr int height = 1080;
    QCOMPARE(output.size(), width * height);
    const auto isWhite = [this](int x, int y) {
        return static_cast<unsigned char>(output.at(y * width + x)) > 128;
    };
    int across = 0;
    for (int x = 0; x < width; ++x)
        across += isWhite(x, height / 2) ? 1 : 0;
    int down = 0;
    for (int y = 0; y < height; ++y)
        down += isWhite(width / 2, y) ? 1 : 0;
    QVERIFY(down > 100);
    QVERIFY2(std::abs(across - down) <= down / 50, qPrintable(QString("%1 x %2").arg(across).arg(down)));
    run("ffprobe", {"-v", "error", "-select_streams", "v", "-show_entries", "stream=display_aspect_ratio",
                    "-of", "default=nokey=1:noprint_wrappers=1", "circle.MXF"});
    QCOMPARE(output.trimmed(), QByteArray("16:9"));
}

void TestRealExports::copiedFieldsKeepTheirOrder_data()
{
    QTest::addColumn<QString>("first"); // field
    QTest::addColumn<QByteArray>("order");
    row("top field first", "tff=1", QByteArray("tb"));
    row("bottom field first", "bff=1", QByteArray("bt"));
}

void TestRealExports::copiedFieldsKeepTheirOrder()
{
    QFETCH(QString, first);
    QFETCH(QByteArray, order);
    makeFields("720x576", first);
    QVERIFY2(exportFile("fields.mov", copied(), "fields.MOV.MOV") == 0, qPrintable(errors));
    QCOMPARE(run("ffmpeg", {"-v", "error", "-i", "fields.MOV.MOV", "-f", "null", "-"}), 0);
    QCOMPARE(errors, QString());
    QCOMPARE(fieldOrderOf("fields.MOV.MOV"), order);
}

void TestRealExports::codedFieldsAreNotedInQuickTime_data()
{
    QTest::addColumn<QString>("first");  // field of the source
    QTest::addColumn<QString>("target"); // its beginning
    QTest::addColumn<QStringList>("picture");
    QTest::addColumn<QByteArray>("order");
    const QStringList known{"-vcodec", "dnxhd", "-b:v", "120M", "-pix_fmt", "yuv422p", "-s", "1920x1080"};
    const QStringList unknown{"-vcodec", "dnxhd", "-b:v", "36M", "-pix_fmt", "yuv422p", "-s", "1920x1080"};
    row("top field first", "tff=1", "top", known, QByteArray("tb"));
    row("bottom field first", "bff=1", "bottom", known, QByteArray("bt"));
    row("a profile without fields", "tff=1", "none", unknown, QByteArray("unknown"));
}

void TestRealExports::codedFieldsAreNotedInQuickTime()
{
    QFETCH(QString, first);
    QFETCH(QString, target);
    QFETCH(QStringList, picture);
    QFETCH(QByteArray, order);
    makeFields("1920x1080", first);
    QVERIFY2(exportFile("fields.mov", picture, target + ".MOV") == 0, qPrintable(errors));
    QCOMPARE(fieldOrderOf(target + ".MOV"), order);
    QCOMPARE(run("ffmpeg", {"-v", "error", "-i", target + ".MOV", "-f", "null", "-"}), 0);
    QCOMPARE(errors, QString());
}

void TestRealExports::killingAnExportLeavesNoProcess_data()
{
    QTest::addColumn<int>("moment"); // [ms] after the start
    for (const int moment : {0, 5, 20, 60, 120, 250, 500})
        QTest::addRow("after %d ms", moment) << moment;
}

void TestRealExports::killingAnExportLeavesNoProcess()
{
    QFETCH(int, moment);
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start("ffmpeg.exe",
                  QStringList{"-y", "-i", folder.filePath("whole.mov"), "-acodec", "pcm_s16le"} + coded() +
                      QStringList{"-timecode", "10:11:12:13", "-r", "25", "killed.MXF"});
    QVERIFY(process.waitForStarted());
    QThread::msleep(static_cast<unsigned long>(moment)); // at any point of its work
    process.kill();
    QVERIFY(process.waitForFinished(limit));
    QTRY_VERIFY_WITH_TIMEOUT(!isProcessRunningWith(QFile::encodeName(folder.path())), limit);
}

QTEST_GUILESS_MAIN(TestRealExports)
#include "tst_realexports.moc"
