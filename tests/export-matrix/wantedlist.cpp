// SPDX-License-Identifier: MIT
#include "tests/export-matrix/wantedlist.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>

namespace exportmatrix
{
namespace
{

QStringList words(const QString &text)
{
    return text.split(' ', Qt::SkipEmptyParts);
}

/// One export: what comes in and what kind of file goes out.
class WantedList
{
public:
    WantedList(const FileData &file, const ExportOptions &options)
        : file(file), options(options), input(file.suffix.toLower()), written(writtenSuffix())
    {
    }

    QStringList arguments() const
    {
        const QString name = QFileInfo(file.absoluteFilePath).completeBaseName();
        return words("-y -i") + QStringList{file.absoluteFilePath} + sound() + picture() + timecode() +
               QStringList{options.exportDir + '/' + name + '.' + written};
    }

private:
    bool isCodedAsMxf() const { return input != "wav" && options.videoType >= 1 && options.videoType <= 4; }

    QString writtenSuffix() const
    {
        if (input == "wav")
            return "WAV";
        if (isCodedAsMxf())
            return "MXF";
        if (options.videoType >= 5 || input == "mts" || input == "mp4")
            return "MOV";
        return file.suffix;
    }

    QVector<int> audioStreams() const
    {
        QVector<int> indexes;
        for (const char byte : file.audioStreamMap)
            indexes += static_cast<signed char>(byte);
        return indexes;
    }

    QJsonObject stream(int index) const { return file.streams.at(index).toObject(); }
    int channels(int index) const { return stream(index)["channels"].toInt(); }

    QString chosenCodec(int index) const
    {
        if (options.audioType == 2)
            return "pcm_s24le";
        if (options.audioType == 1 || (options.muteAudioTC && isCodedAsMxf()))
            return "pcm_s16le";
        static const QStringList kept =
            words("pcm_s24be pcm_s24le pcm_s16be pcm_s16le pcm_s32be pcm_s32le pcm_alaw pcm_f32be pcm_f32le "
                  "pcm_f64be pcm_f64le pcm_mulaw pcm_s8 pcm_u16be pcm_u16le pcm_u24be pcm_u24le pcm_u32be "
                  "pcm_u32le pcm_u8 aac ac3");
        QString own = stream(index)["codec_name"].toString();
        if (kept.contains(own))
            return own;
        return written == "WAV" && !options.muteAudioTC ? "pcm_s24le" : "pcm_s24be";
    }

    QStringList sound() const
    {
        const QStringList wave = written == "WAV" ? words("-write_bext 1") : QStringList();
        if (!options.muteAudioTC)
            return wave + codecForAll();
        if (written == "WAV")
            return wave + streamsWithoutTimecode();
        if (isCodedAsMxf())
            return input == "mxf" ? QStringList() : words("-map 0:v -map -0:d") + streamsWithoutTimecode();
        return words(file.hasAudioTC ? "-map 0:v -map_metadata -1" : "-map 0:v") + streamsWithoutTimecode();
    }

    QStringList codecForAll() const
    {
        int widest = -1;
        const QVector<int> indexes = audioStreams();
        for (const int index : indexes) {
            if (widest < 0 || channels(index) > channels(widest))
                widest = index;
        }
        return widest < 0 ? QStringList() : QStringList{"-acodec", chosenCodec(widest)};
    }

    QStringList streamsWithoutTimecode() const
    {
        QStringList list;
        const QVector<int> indexes = audioStreams();
        for (const int index : indexes) {
            const bool carriesTimecode = index == file.audioStreamIndex;
            if (carriesTimecode && channels(index) == 1)
                continue;
            list += words(QString("-map 0:%1").arg(index));
            if (carriesTimecode)
                list += written == "WAV" ? channelsOfWave() : channelsOfMovie();
            list += QStringList{"-acodec", chosenCodec(index)};
        }
        return list;
    }

    QStringList channelsOfWave() const
    {
        QStringList list;
        for (int channel = 0; channel < channels(file.audioStreamIndex); ++channel) {
            if (channel != file.audioChannel)
                list += words(QString("-map_channel 0.%1.%2:0.0").arg(file.audioStreamIndex).arg(channel));
        }
        return list;
    }

    QStringList channelsOfMovie() const
    {
        const int s = file.audioStreamIndex;
        const bool bigEndianPair = channels(s) == 2 && stream(s)["codec_name"].toString().contains("be");
        const bool inverted = file.tcChannelLayout.toLower() == "stereo" || bigEndianPair;
        const int singled = inverted ? (file.audioChannel == 0 ? 1 : 0) : file.audioChannel;
        QStringList list = words(QString("-map_channel -0.%1.%2").arg(s).arg(singled));
        int target = 0;
        for (int channel = 0; channel < channels(s); ++channel) {
            if (channel != singled)
                list += words(QString("-map_channel 0.%1.%2:0.%3").arg(s).arg(channel).arg(target++));
        }
        return list;
    }

    QStringList picture() const
    {
        if (written == "WAV")
            return {};
        if (options.videoType == 0 || options.videoType == 5)
            return words("-vcodec copy");
        if (options.videoType == 1)
            return words("-vcodec mpeg2video -b:v 50M -pix_fmt yuv422p -s 1920x1080");

        const QString own = file.mainStream["r_frame_rate"].toString();
        const int rate = own.section('/', 0, 0).toInt() / qMax(1, own.section('/', 1, 1).toInt());
        static const QMap<int, QStringList> byRate{
            {23, {"36M yuv422p", "115M yuv422p", "175M yuv422p10"}},
            {24, {"36M yuv422p", "115M yuv422p", "175M yuv422p10"}},
            {25, {"36M yuv422p", "120M yuv422p", "185M yuv422p10"}},
            {29, {"45M yuv422p", "145M yuv422p", "220M yuv422p"}},
            {30, {"45M yuv422p", "145M yuv422p", "220M yuv422p"}},
        };
        if (!byRate.contains(rate))
            return {};
        const int family = (options.videoType - 2) % 4;
        const QStringList bitsAndFormat = words(byRate[rate].at(family));
        const QString coded = rate == 23 ? "24000/1001" : rate == 29 ? "30000/1001" : own;
        return words(QString("-vcodec dnxhd -b:v %1 -pix_fmt %2 -s 1920x1080 -r %3")
                         .arg(bitsAndFormat.at(0), bitsAndFormat.at(1), coded));
    }

    QStringList timecode() const
    {
        if (!file.hasAudioTC)
            return {};
        const QJsonObject &reading = file.audioTCResult;
        const int base = reading["FrameRateBaseFound"].toInt();
        if (written == "WAV") {
            const double rate = reading["NTSC"].toBool() ? base * 1000.0 / 1001.0 : base;
            return {"-metadata",
                    "time_reference=" + QString::number(qint64(reading["SamplesSinceMidnight"].toDouble())),
                    "-metadata",
                    QString("comment=sSPEED=0%1-%2")
                        .arg(rate, 0, 'f', 3)
                        .arg(reading["DropFrame"].toBool() ? "DF" : "ND")};
        }
        QStringList list{"-timecode", file.audioTC};
        if (!reading["NTSC"].toBool())
            list += words(QString("-r %1").arg(base));
        else if (options.videoType == 0 || options.videoType == 1 || options.videoType == 5)
            list += QStringList{"-r", QString::number(base) + "000/1001"};
        return list;
    }

    const FileData &file;
    const ExportOptions &options;
    const QString input;   ///< suffix of the source, in small letters
    const QString written; ///< suffix of the written file
};

} // namespace

QStringList wantedList(const FileData &file, const ExportOptions &options)
{
    return WantedList(file, options).arguments();
}

} // namespace exportmatrix
