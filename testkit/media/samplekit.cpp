// SPDX-License-Identifier: MIT
#include "testkit/media/samplekit.h"

#include "testkit/media/expectedcell.h"
#include "testkit/media/mediamaker.h"

#include <QDir>
#include <QFile>
#include <QTimeZone>

namespace mediakit
{

namespace
{

constexpr testsignals::LtcRate rate25{25, false, false};

// Most situations are about the sound alone.
Recording usualMovie(const QString &path, const QVector<Track> &tracks)
{
    return movie(path, "25", "pcm_s16le", tracks);
}

QVector<Track> withTone(const Channel &timecode)
{
    return {{toneChannel(440), timecode}};
}

QVector<Sample> rates()
{
    struct Rate {
        QString name;
        QString pictureRate;
        testsignals::LtcRate rate;
    };
    const QVector<Rate> known{
        {"23.976", "24000/1001", {24, true, false}},
        {"24", "24", {24, false, false}},
        {"25", "25", rate25},
        {"29.97 drop-frame", "30000/1001", {30, true, true}},
        {"29.97 non-drop", "30000/1001", {30, true, false}},
        {"30", "30", {30, false, false}},
    };
    QVector<Sample> samples;
    int hour = 1;
    for (const Rate &rate : known) {
        samples += {"Clean timecode at " + rate.name + " frames per second",
                    movie("rate " + rate.name + ".mov", rate.pictureRate, "pcm_s16le",
                          withTone(timecodeChannel({hour++, 0, 0, 10}, rate.rate)))};
    }
    return samples;
}

QVector<Sample> damaged()
{
    return {
        {"Very quiet timecode, 45 dB below full scale",
         usualMovie("weak.mov", withTone(timecodeChannel({8, 0, 0, 0}, rate25, -45)))},
        {"Timecode far too loud, cut off at top and bottom",
         usualMovie("clipped.mov", withTone(timecodeChannel({8, 10, 0, 0}, rate25, -6, Damage::Clipped)))},
        {"Only spikes are left of the timecode, as behind a thin adapter",
         usualMovie("spikes.mov", withTone(timecodeChannel({8, 20, 0, 0}, rate25, -6, Damage::Spikes)))},
        {"Timecode that begins 1.5 seconds after the file",
         usualMovie("late.mov", withTone(timecodeChannel({8, 30, 0, 0}, rate25, -12, Damage::StartsLate)))},
        {"Timecode in AAC sound",
         movie("aac.mp4", "25", "aac", withTone(timecodeChannel({8, 40, 0, 0}, rate25)))},
        {"Timecode that passes midnight",
         usualMovie("midnight.mov", withTone(timecodeChannel({23, 59, 58, 12}, rate25)))},
    };
}

QVector<Sample> layouts()
{
    const Channel timecode = timecodeChannel({9, 40, 0, 0}, rate25);
    const Recording pairTimecode =
        soundFile("pair timecode.wav", {timecodeChannel({9, 30, 0, 0}, rate25), toneChannel(440)}, 4.5);
    Recording pairPartner = soundFile("pair partner.wav", {toneChannel(660)}, 4.5);
    pairPartner.siblingTimecode = timecodeOf(pairTimecode);
    Recording broken;
    broken.path = "broken.mov";
    broken.broken = true;
    return {
        {"Timecode on the left channel, where one expects the sound",
         usualMovie("wrong channel.mov", {{timecodeChannel({9, 0, 0, 0}, rate25), toneChannel(440)}})},
        {"Timecode on the third of four channels",
         usualMovie("four channels.mov", {{toneChannel(440), toneChannel(660),
                                           timecodeChannel({9, 10, 0, 0}, rate25), toneChannel(880)}})},
        {"Timecode on the fourth of four mono tracks",
         movie("four tracks.mxf", "25", "pcm_s24le",
               {{toneChannel(440)}, {toneChannel(660)}, {toneChannel(880)}, {timecode}})},
        {"A sound file with timecode ...", pairTimecode},
        {"... and the one that was recorded together with it", pairPartner},
        {"A file without timecode", usualMovie("no timecode.mov", {{toneChannel(440), toneChannel(660)}})},
        {"A recorder lost its power in mid-file", broken},
    };
}

} // namespace

QVector<Sample> sampleKit()
{
    QVector<Sample> samples = rates() + damaged() + layouts();
    // One file a minute; the pair was recorded together.
    const QDateTime firstFile(QDate(2024, 5, 4), QTime(9, 0), QTimeZone::utc());
    for (int i = 0; i < samples.size(); ++i) {
        Recording &recording = samples[i].recording;
        recording.modified = firstFile.addSecs((recording.siblingTimecode ? i - 1 : i) * 60LL);
    }
    return samples;
}

QString describe(const QVector<Sample> &samples)
{
    QString text =
        "One file per recording situation. Drop this folder on the window of Ostrel Timecode Tool\n"
        "and compare the column \"Audio TC\".\n";
    for (const Sample &sample : samples)
        text += QString("\n%1\n    %2.\n    Audio TC: %3\n")
                    .arg(sample.recording.path, sample.situation, expectedAudioTC(sample.recording));
    return text;
}

QString writeSampleKit(const QString &folder)
{
    if (!QDir().mkpath(folder))
        return QString("cannot make the folder %1").arg(folder);
    if (!QDir(folder).isEmpty())
        return QString("%1 is not empty").arg(folder);

    const QVector<Sample> samples = sampleKit();
    for (const Sample &sample : samples) {
        QString problem = make(sample.recording, folder);
        if (!problem.isEmpty())
            return problem;
    }
    QFile file(QDir(folder).filePath("READ-ME.txt"));
    if (!file.open(QIODevice::WriteOnly) || file.write(describe(samples).toUtf8()) < 0)
        return file.errorString();
    return {};
}

} // namespace mediakit
