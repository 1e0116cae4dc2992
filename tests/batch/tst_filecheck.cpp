// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "batch/filecheck.h"
#include "ffmpeg/ffmpeghandler.h"
#include "tests/export-matrix/exportcase.h"
#include "tests/export-matrix/sourcelist.h"

#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <utility>

using exportmatrix::MadeFile;
using exportmatrix::SourceFile;

/// Real exports by the real tools: good ones, and ones into which a fault is put afterwards.
class TestFileCheck : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void goodFilesAreProven_data();
    void goodFilesAreProven();
    void seededFaultsAreFound_data();
    void seededFaultsAreFound();

    void cleanupTestCase() { qInfo("%d good files were proven", goodFiles); }

private:
    MadeFile sourceOf(const QString &name);
    QString exported(const MadeFile &source, const ExportOptions &options, const QString &folder);
    static Verdict check(const MadeFile &source, const ExportOptions &options, const QString &path);

    QTemporaryDir folder;
    QTemporaryDir made;              ///< good new files
    QMap<QString, MadeFile> sources; ///< made so far, by name
    QMap<QString, QString> proven;   ///< good new files made so far, by source and kind of export
    int goodFiles = 0;               ///< proven so far
};

namespace
{

constexpr int toolLimit = 60'000; // [ms] on a busy machine

ExportOptions chosen(int videoType, int audioType, bool mute)
{
    ExportOptions options;
    options.videoType = videoType;
    options.audioType = audioType;
    options.muteAudioTC = mute;
    return options;
}

bool isAll()
{
    return qEnvironmentVariableIsSet("OSTREL_ALL_CHECKS");
}

/// Writes a new file out of \a path with the media tool: its \a arguments, of which "%1" is \a path and "%2"
/// the new file's beginning, the suffix after it.
bool writeAnother(const QString &path, const QString &written, const QStringList &arguments)
{
    QStringList list{"-v", "error", "-y", "-nostdin"};
    for (const QString &argument : arguments)
        list += argument == "%1" ? path : argument;
    QProcess tool;
    tool.start("ffmpeg", list + QStringList{written});
    return tool.waitForFinished(toolLimit) && tool.exitCode() == 0;
}

} // namespace

void TestFileCheck::initTestCase()
{
    registerRecordTypes();
}

MadeFile TestFileCheck::sourceOf(const QString &name)
{
    if (!sources.contains(name)) {
        const QVector<SourceFile> all = exportmatrix::allSources();
        for (const SourceFile &source : all) {
            if (source.name == name)
                sources[name] = exportmatrix::makeSource(source, folder.path());
        }
    }
    return sources[name];
}

/// The path of the new file; empty where the export was refused.
QString TestFileCheck::exported(const MadeFile &source, const ExportOptions &options, const QString &target)
{
    QObject owner;
    ExportOptions into = options;
    into.exportDir = target;
    QString path;
    int ended = 0;
    auto *handler = new FFMpegHandler(&owner);
    connect(handler, &FFMpegHandler::ffmpegExportResult, &owner, [&](FFMpegHandler *, int exitCode) {
        path = exitCode == 0 ? handler->outputFilePath() : QString();
        ++ended;
    });
    handler->buildExportArguments(source.record, into);
    if (!QTest::qWaitFor([&ended] { return ended > 0; }, toolLimit))
        return {};
    return path;
}

Verdict TestFileCheck::check(const MadeFile &source, const ExportOptions &options, const QString &path)
{
    QObject owner;
    Verdict found;
    bool isDone = false;
    auto *check = new FileCheck(source.record, options, path, &owner);
    connect(check, &FileCheck::done, &owner, [&](FileCheck *, int, const Verdict &verdict) {
        found = verdict;
        isDone = true;
    });
    check->start();
    if (!QTest::qWaitFor([&isDone] { return isDone; }, toolLimit))
        qFatal("the check of %s did not end", qPrintable(path));
    return found;
}

void TestFileCheck::goodFilesAreProven_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("place");
    const QVector<SourceFile> all = exportmatrix::allSources();
    int place = 0;
    for (const SourceFile &source : all) {
        if ((source.isCore || isAll()) && source.isRead && !source.isCutOff)
            QTest::newRow(qPrintable(source.name)) << source.name << place++;
    }
}

void TestFileCheck::goodFilesAreProven()
{
    QFETCH(QString, name);
    QFETCH(int, place);
    const MadeFile source = sourceOf(name);
    // Each its own kind of export; more of them take minutes.
    const QVector<ExportOptions> all = exportmatrix::optionsFor(source.source, source.source.isCore);
    const int count = static_cast<int>(all.size());
    const int kinds = isAll() ? std::min(source.source.isCore ? count : 3, count) : 1;
    for (int kind = 0; kind < kinds; ++kind) {
        const ExportOptions &options = all.at((place * 7 + kind * count / kinds) % count);
        const QTemporaryDir target;
        const QString path = exported(source, options, target.path());
        if (path.isEmpty())
            continue; // refused, such as sound alone in MXF
        const Verdict verdict = check(source, options, path);
        ++goodFiles;
        QVERIFY2(verdict.isProven, qPrintable(exportmatrix::nameOf(options) + ": " + verdict.text));
    }
}

void TestFileCheck::seededFaultsAreFound_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<ExportOptions>("options");
    QTest::addColumn<QStringList>("arguments"); // empty: the file is cut to a share
    QTest::addColumn<int>("percentKept");

    const auto add = [](const char *title, const QString &name, const ExportOptions &options,
                        const QString &arguments) {
        QTest::newRow(title) << name << options << arguments.split(' ', Qt::SkipEmptyParts) << 100;
    };
    const auto cut = [](const char *title, const QString &name, const ExportOptions &options, int percent) {
        QTest::newRow(title) << name << options << QStringList() << percent;
    };
    const QString all = "-i %1 -map 0:v? -map 0:a -c copy ";
    const QString start = "-timecode 10:11:12:13 ";

    // QuickTime with a copied picture and four channels, of which the timecode's goes.
    const QString four = "four-channels.mov";
    const ExportOptions pass = chosen(5, 0, true);
    add("QuickTime: a frame later", four, pass, all + "-timecode 10:11:12:14");
    add("QuickTime: a frame earlier", four, pass, all + "-timecode 10:11:12:12");
    add("QuickTime: an hour later", four, pass, all + "-timecode 11:11:12:13");
    add("QuickTime: no timecode", four, pass, all + "-map_metadata -1 -write_tmcd 0");
    add("QuickTime: two channels swapped", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af pan=3c|c0=c1|c1=c0|c2=c2 -c:a pcm_s24le " + start);
    add("QuickTime: a channel lost", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af pan=2c|c0=c0|c1=c1 -c:a pcm_s24le " + start);
    add("QuickTime: a channel silent", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af pan=3c|c0=c0|c1=c1|c2=0*c2 -c:a pcm_s24le " + start);
    add("QuickTime: a channel twice", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af pan=3c|c0=c0|c1=c1|c2=c1 -c:a pcm_s24le " + start);
    add("QuickTime: sound cut to 16 bit", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af aformat=s16 -c:a pcm_s24le " + start);
    add("QuickTime: sound a little softer", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af volume=0.99:precision=double -c:a pcm_s24le " + start);
    add("QuickTime: sound turned over", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af pan=3c|c0=-1*c0|c1=c1|c2=c2 -c:a pcm_s24le " + start);
    add("QuickTime: one sample lost at the beginning", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af atrim=start_sample=1,asetpts=N/SR/TB -c:a pcm_s24le " + start);
    add("QuickTime: one sample more at the beginning", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af adelay=1S:all=1 -c:a pcm_s24le " + start);
    add("QuickTime: a tenth of the sound lost at the end", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v copy -af atrim=end_sample=14000 -c:a pcm_s24le " + start);
    add("QuickTime: no sound", four, pass, "-i %1 -map 0:v -c copy " + start);
    add("QuickTime: no picture", four, pass, "-i %1 -map 0:a -c copy " + start);
    add("QuickTime: the last frame lost", four, pass, "-i %1 -map 0:v -map 0:a -c copy -frames:v 9 " + start);
    add("QuickTime: the picture coded again", four, pass,
        "-i %1 -map 0:v -map 0:a -c:v libx264 -c:a copy " + start);
    add("QuickTime: another stream of sound", four, pass,
        "-i %1 -map 0:v -map 0:a -map 0:a -c copy " + start);
    cut("QuickTime: cut in the middle", four, pass, 50);
    cut("QuickTime: its last bytes lost", four, pass, 99);
    cut("QuickTime: empty", four, pass, 0);

    // MXF with a picture that is coded again.
    const ExportOptions coded = chosen(1, 2, true);
    add("MXF: a frame later", four, coded, all + "-timecode 10:11:12:14");
    add("MXF: midnight", four, coded, all + "-timecode 00:00:00:00");
    add("MXF: the last two frames lost", four, coded, "-i %1 -map 0:v -map 0:a -c copy -frames:v 8 " + start);
    add("MXF: two channels swapped", four, coded,
        "-i %1 -map 0:v -map 0:a -c:v copy -af pan=3c|c0=c1|c1=c0|c2=c2 -c:a pcm_s24le " + start);
    cut("MXF: cut in the middle", four, coded, 50);

    // A sound file of four channels, of which the timecode's goes.
    const QString sound = "four.wav";
    const ExportOptions kept = chosen(0, 0, true);
    const QString reference = "-i %1 -write_bext 1 -map_metadata 0 ";
    add("WAV: a sample later", sound, kept, reference + "-c copy -metadata time_reference=1761393634");
    add("WAV: no start", sound, kept, "-i %1 -map_metadata -1 -c copy");
    add("WAV: two channels swapped", sound, kept, reference + "-af pan=3c|c0=c1|c1=c0|c2=c2 -c:a pcm_s24le");
    add("WAV: cut to 16 bit", sound, kept, reference + "-af aformat=s16 -c:a pcm_s24le");
    add("WAV: resampled", sound, kept, reference + "-af aresample=44100,aresample=48000 -c:a pcm_s24le");
    cut("WAV: cut in the middle", sound, kept, 50);
}

void TestFileCheck::seededFaultsAreFound()
{
    QFETCH(QString, name);
    QFETCH(ExportOptions, options);
    QFETCH(QStringList, arguments);
    QFETCH(int, percentKept);
    const MadeFile source = sourceOf(name);
    const QTemporaryDir target;
    const QString kind = name + ' ' + exportmatrix::nameOf(options);
    if (!proven.contains(kind)) {
        const QString good = exported(source, options, made.path());
        QVERIFY(!good.isEmpty());
        const Verdict before = check(source, options, good);
        QVERIFY2(before.isProven, qPrintable(before.text));
        proven[kind] = good;
    }
    const QString path = proven[kind];

    const QString damaged = target.filePath("damaged." + QFileInfo(path).suffix());
    if (arguments.isEmpty()) {
        QVERIFY(QFile::copy(path, damaged));
        QVERIFY(QFile::resize(damaged, QFileInfo(path).size() * percentKept / 100));
    } else {
        QVERIFY(writeAnother(path, damaged, arguments));
    }
    const Verdict after = check(source, options, damaged);
    QVERIFY2(!after.isProven, qPrintable(after.text));
    QVERIFY(!after.text.isEmpty());
}

QTEST_GUILESS_MAIN(TestFileCheck)
#include "tst_filecheck.moc"
