// SPDX-License-Identifier: MIT
#include "ffmpeg/exportarguments.h"
#include "testkit/fixtures/row.h"
#include "testkit/fixtures/samplerecords.h"

#include <QTest>

#include <limits>

using outputname::Container;
using samplerecords::mediaFile;
using samplerecords::reading;
using samplerecords::sound;
using samplerecords::withTimecode;
Q_DECLARE_METATYPE(Container)

class TestExportArguments : public QObject
{
    Q_OBJECT

private slots:
    void wholeCommands_data();
    void wholeCommands();
    void videoFilesGetTheTimecodeAsStart_data();
    void videoFilesGetTheTimecodeAsStart();
    void wavFilesGetATimeReference_data();
    void wavFilesGetATimeReference();
    void filesWithoutTimecodeGetNone_data();
    void filesWithoutTimecodeGetNone();
    void theOutputSizeIsEstimated_data();
    void theOutputSizeIsEstimated();
    void takenNamesAreAvoided();
};

namespace
{

ExportOptions chosen(int videoType, int audioType, bool mute)
{
    ExportOptions options;
    options.exportDir = "/out";
    options.videoType = videoType;
    options.audioType = audioType;
    options.muteAudioTC = mute;
    options.progressSteps = 10;
    return options;
}

bool nothingTaken(const QString &)
{
    return false;
}

} // namespace

void TestExportArguments::wholeCommands_data()
{
    QTest::addColumn<FileData>("file");
    QTest::addColumn<ExportOptions>("options");
    QTest::addColumn<QStringList>("expected");

    const auto stereo = sound("pcm_s16le", 2, "stereo");
    const auto movie = [&stereo](const QString &path, const QString &rate, const QJsonObject &result) {
        return withTimecode(mediaFile(path, {stereo}, rate), 1, 0, result);
    };
    const QJsonObject at25 = reading(25.0, 25, false, false);
    const QJsonObject drop = reading(30.0, 30, true, true);

    row("pass through, nothing left out", movie("/in/a.mov", "25/1", at25), chosen(0, 0, false),
        QStringList{"-y", "-i", "/in/a.mov", "-acodec", "pcm_s16le", "-vcodec", "copy", "-timecode",
                    "10:00:00:00", "-r", "25", "/out/a.mov"});
    row("MTS as QuickTime pass through at 29.97", movie("/in/a.MTS", "30000/1001", drop), chosen(5, 2, false),
        QStringList{"-y", "-i", "/in/a.MTS", "-acodec", "pcm_s24le", "-vcodec", "copy", "-timecode",
                    "10:00:00:00", "-r", "30000/1001", "/out/a.MOV"});
    row("MPEG2 into MXF without the timecode channel", movie("/in/a.mov", "25/1", at25), chosen(1, 1, true),
        QStringList{"-y",          "-i",       "/in/a.mov", "-map",         "0:v",        "-map",
                    "-0:d",        "-map",     "0:1",       "-map_channel", "-0.1.1",     "-map_channel",
                    "0.1.0:0.0",   "-acodec",  "pcm_s16le", "-vcodec",      "mpeg2video", "-b:v",
                    "50M",         "-pix_fmt", "yuv422p",   "-s",           "1920x1080",  "-timecode",
                    "10:00:00:00", "-r",       "25",        "/out/a.MXF"});
    row("DNxHD at 29.97, top family: 8 bit", movie("/in/a.mov", "30000/1001", drop), chosen(4, 2, false),
        QStringList{"-y", "-i", "/in/a.mov", "-acodec", "pcm_s24le", "-vcodec", "dnxhd", "-b:v", "220M",
                    "-pix_fmt", "yuv422p", "-s", "1920x1080", "-r", "30000/1001", "-timecode", "10:00:00:00",
                    "/out/a.MXF"});
    row("DNxHD at 25, top family: 10 bit, the rate twice", movie("/in/a.mov", "25/1", at25),
        chosen(8, 2, false),
        QStringList{"-y",   "-i",        "/in/a.mov",   "-acodec",   "pcm_s24le", "-vcodec",   "dnxhd",
                    "-b:v", "185M",      "-pix_fmt",    "yuv422p10", "-s",        "1920x1080", "-r",
                    "25/1", "-timecode", "10:00:00:00", "-r",        "25",        "/out/a.MOV"});
    row("DNxHD at 50 gets no codec", movie("/in/a.mov", "50/1", at25), chosen(3, 2, false),
        QStringList{"-y", "-i", "/in/a.mov", "-acodec", "pcm_s24le", "-timecode", "10:00:00:00", "-r", "25",
                    "/out/a.MXF"});
    row("a rate that is no fraction gets no codec", movie("/in/a.mov", "0/0", at25), chosen(7, 2, false),
        QStringList{"-y", "-i", "/in/a.mov", "-acodec", "pcm_s24le", "-timecode", "10:00:00:00", "-r", "25",
                    "/out/a.MOV"});
    row("MXF to MXF without the timecode channel maps nothing", movie("/in/a.mxf", "25/1", at25),
        chosen(2, 2, true),
        QStringList{"-y", "-i", "/in/a.mxf", "-vcodec", "dnxhd", "-b:v", "36M", "-pix_fmt", "yuv422p", "-s",
                    "1920x1080", "-r", "25/1", "-timecode", "10:00:00:00", "-r", "25", "/out/a.MXF"});

    const auto wave = withTimecode(mediaFile("/in/a.wav", {sound("pcm_s24le", 2)}), 0, 1,
                                   reading(25.0, 25, false, false, 1'728'000'000));
    row("WAV as MXF DNxHD: broadcast wave", wave, chosen(4, 1, false),
        QStringList{"-y", "-i", "/in/a.wav", "-write_bext", "1", "-acodec", "pcm_s16le", "-metadata",
                    "time_reference=1728000000", "-metadata", "comment=sSPEED=025.000-ND", "/out/a.WAV"});
    row("WAV without the timecode channel", wave, chosen(0, 2, true),
        QStringList{"-y", "-i", "/in/a.wav", "-write_bext", "1", "-map", "0:0", "-map_channel", "0.0.0:0.0",
                    "-acodec", "pcm_s24le", "-metadata", "time_reference=1728000000", "-metadata",
                    "comment=sSPEED=025.000-ND", "/out/a.WAV"});
    row("nothing but a path", mediaFile("/in/-x %1.mov", {}), chosen(5, 0, false),
        QStringList{"-y", "-i", "/in/-x %1.mov", "-vcodec", "copy", "/out/-x %1.MOV"});
}

void TestExportArguments::wholeCommands()
{
    QFETCH(FileData, file);
    QFETCH(ExportOptions, options);
    QFETCH(QStringList, expected);

    const auto command = exportarguments::build(file, options, 1000, nothingTaken);
    QCOMPARE(command.arguments, expected);
    QCOMPARE(command.outputPath, expected.last());
}

void TestExportArguments::videoFilesGetTheTimecodeAsStart_data()
{
    QTest::addColumn<QJsonObject>("result");
    QTest::addColumn<QList<int>>("videoTypes");
    QTest::addColumn<QStringList>("rate");

    const QList<int> all{0, 1, 2, 3, 4, 5, 6, 7, 8};
    const QList<int> openRate{0, 1, 5};
    const QList<int> dnxhd{2, 3, 4, 6, 7, 8};
    row("24", reading(24, 24, false, false), all, QStringList{"-r", "24"});
    row("25", reading(25, 25, false, false), all, QStringList{"-r", "25"});
    row("30", reading(30, 30, false, false), all, QStringList{"-r", "30"});
    row("30 drop-frame", reading(30, 30, false, true), all, QStringList{"-r", "30"});
    row("23.976", reading(24, 24, true, false), openRate, QStringList{"-r", "24000/1001"});
    row("29.97", reading(30, 30, true, false), openRate, QStringList{"-r", "30000/1001"});
    row("29.97 drop-frame", reading(30, 30, true, true), openRate, QStringList{"-r", "30000/1001"});
    row("29.97 as DNxHD", reading(30, 30, true, false), dnxhd, QStringList());
    row("29.97 drop-frame as DNxHD", reading(30, 30, true, true), dnxhd, QStringList());
    row("an empty result", QJsonObject(), all, QStringList{"-r", "0"});
    row("NTSC without a rate", QJsonObject{{"NTSC", true}}, openRate, QStringList{"-r", "0/1001"});
}

void TestExportArguments::videoFilesGetTheTimecodeAsStart()
{
    QFETCH(QJsonObject, result);
    QFETCH(QList<int>, videoTypes);
    QFETCH(QStringList, rate);

    const auto file = withTimecode(mediaFile("/a.mov", {sound("pcm_s16le", 2)}), 1, 0, result);
    const QStringList expected = QStringList{"-timecode", "10:00:00:00"} + rate;
    for (const int videoType : videoTypes) {
        for (const Container container : {Container::AsInput, Container::Mxf, Container::QuickTime})
            QCOMPARE(exportarguments::timecode(file, videoType, container), expected);
    }
}

void TestExportArguments::wavFilesGetATimeReference_data()
{
    QTest::addColumn<QJsonObject>("result");
    QTest::addColumn<QString>("samples");
    QTest::addColumn<QString>("speed");

    row("25", reading(25.0, 25, false, false, 1'728'000'000), "1728000000", "025.000-ND");
    row("29.97 drop-frame, as found", reading(29.97, 30, true, true, 7), "7", "029.970-DF");
    row("29.97 drop-frame, nominal", reading(30.0, 30, true, true, 7), "7", "029.970-DF");
    row("23.976, nominal", reading(24.0, 24, true, false, 7), "7", "023.976-ND");
    row("24", reading(24.0, 24, false, false, 7), "7", "024.000-ND");
    row("30 drop-frame", reading(30.0, 30, false, true, 7), "7", "030.000-DF");
    row("a day at 192 kHz", reading(25.0, 25, false, false, 16'588'800'000), "16588800000", "025.000-ND");
    row("midnight", reading(25.0, 25, false, false, 0), "0", "025.000-ND");
    row("an empty result", QJsonObject(), "0", "00.000-ND");
    QJsonObject beyondAllNumbers = reading(1e308, 30, true, false);
    beyondAllNumbers["FrameRateBaseFound"] = 1e308;
    beyondAllNumbers["SamplesSinceMidnight"] = 1e300;
    row("numbers beyond all bounds", beyondAllNumbers, "0", "0999.000-ND");
    row("a rate below zero", reading(-25.0, 25, false, false, 7), "7", "00.000-ND");
}

void TestExportArguments::wavFilesGetATimeReference()
{
    QFETCH(QJsonObject, result);
    QFETCH(QString, samples);
    QFETCH(QString, speed);

    const auto file = withTimecode(mediaFile("/a.wav", {sound("pcm_s16le", 2)}), 0, 0, result);
    QCOMPARE(exportarguments::timecode(file, 0, Container::BroadcastWave),
             (QStringList{"-metadata", "time_reference=" + samples, "-metadata", "comment=sSPEED=" + speed}));
}

void TestExportArguments::filesWithoutTimecodeGetNone_data()
{
    QTest::addColumn<Container>("container");
    row("as the input", Container::AsInput);
    row("MXF", Container::Mxf);
    row("QuickTime", Container::QuickTime);
    row("WAV", Container::BroadcastWave);
}

void TestExportArguments::filesWithoutTimecodeGetNone()
{
    QFETCH(Container, container);
    FileData file = withTimecode(mediaFile("/a.mov", {sound("pcm_s16le", 2)}), 1, 0);
    file.hasAudioTC = false; // a later read did not find it again
    QCOMPARE(exportarguments::timecode(file, 5, container), QStringList());
}

void TestExportArguments::theOutputSizeIsEstimated_data()
{
    QTest::addColumn<FileData>("file");
    QTest::addColumn<int>("videoType");
    QTest::addColumn<uint>("steps");
    QTest::addColumn<qint64>("expected"); // [bytes per step]

    const auto at = [](const QString &rate, double duration) {
        FileData file = mediaFile("/a.mov", {}, rate);
        file.duration = duration;
        return file;
    };
    row("pass through: the input's size", at("25/1", 10), 0, 15U, qint64{66'666'666});
    row("QuickTime pass through", at("25/1", 10), 5, 10U, qint64{100'000'000});
    row("WAV: the input's size", mediaFile("/a.wav", {}), 4, 15U, qint64{66'666'666});
    row("MPEG2", at("25/1", 10), 1, 15U, qint64{4'166'666});
    row("DNxHD 36", at("25/1", 10), 2, 10U, qint64{4'500'000});
    row("DNxHD 220", at("30/1", 10.5), 8, 10U, qint64{28'875'000});
    row("DNxHD 175 of an hour", at("24/1", 3600), 4, 15U, qint64{5'250'000'000});
    row("MXF 36/45 at 50: none", at("50/1", 10), 2, 10U, qint64{0});
    row("QuickTime 36/45 at 50: of 36", at("50/1", 10), 6, 10U, qint64{4'500'000});
    row("MXF 115/120/145 at 50: of 120", at("50/1", 10), 3, 10U, qint64{15'000'000});
    row("MXF 175x/185x/220 at 50: of 185", at("50/1", 10), 4, 10U, qint64{23'125'000});
    row("no steps, copied", at("25/1", 10), 0, 0U, qint64{0});
    row("no steps, coded", at("25/1", 10), 1, 0U, qint64{0});
    row("no duration", at("25/1", 0), 1, 10U, qint64{0});
    row("duration below 0", at("25/1", -5), 1, 10U, qint64{0});
    row("an endless duration", at("25/1", std::numeric_limits<double>::infinity()), 1, 10U,
        qint64{1'000'000'000'000'000});
}

void TestExportArguments::theOutputSizeIsEstimated()
{
    QFETCH(FileData, file);
    QFETCH(int, videoType);
    QFETCH(uint, steps);
    QFETCH(qint64, expected);

    ExportOptions options = chosen(videoType, 1, false);
    options.progressSteps = steps;
    QCOMPARE(exportarguments::build(file, options, 1'000'000'000, nothingTaken).expectedOutputSize, expected);
}

void TestExportArguments::takenNamesAreAvoided()
{
    const auto command = exportarguments::build(mediaFile("/in/clip.mov", {}), chosen(5, 2, false), 0,
                                                [](const QString &path) { return path == "/out/clip.MOV"; });
    QCOMPARE(command.outputPath, QString("/out/clip_1.MOV"));
    QCOMPARE(command.arguments.last(), command.outputPath);
}

QTEST_APPLESS_MAIN(TestExportArguments)
#include "tst_exportarguments.moc"
