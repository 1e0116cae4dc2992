// SPDX-License-Identifier: MIT
#include "testkit/faketools/moodyplan.h"

#include "testkit/faketools/moods.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <utility>

using moods::Mood;

namespace
{

constexpr int noTimecode = 205;
constexpr int cannotOpen = 201;

QJsonObject probeOf(const QString &path)
{
    const std::string media = path.toStdString();
    QJsonObject format{{"duration", "10.000000"}, {"filename", path}};
    QJsonArray streams;
    if (moods::isWave(media))
        format["format_name"] = "wav";
    else
        streams += QJsonObject{{"codec_type", "video"}, {"r_frame_rate", "25/1"}, {"index", 0}};
    for (int i = 0; i < moods::audioStreamsOf(media); ++i) {
        streams += QJsonObject{
            {"codec_type", "audio"}, {"codec_name", "pcm_s24le"}, {"channels", 2}, {"sample_rate", "48000"}};
    }
    return {{"streams", streams}, {"format", format}};
}

QJsonObject readingOf(const std::string &media)
{
    return {{"Timecode", QString::fromStdString(moods::timecodeOf(media))},
            {"DropFrame", false},
            {"NTSC", false},
            {"FrameRateFound", 25},
            {"FrameRateBaseFound", 25},
            {"ChannelFound", 0},
            {"SamplesSinceMidnight", static_cast<qint64>(moods::samplesOf(media))}};
}

/// The source of an export and what it says of its start: the timecode, or the time reference of WAV files.
QString noteOf(const FakeJob &job)
{
    const auto timecode = job.arguments.indexOf("-timecode");
    const auto option = timecode < 0 ? job.arguments.indexOf("-metadata") : timecode;
    QString start = option < 0 ? QString() : job.arguments.value(option + 1);
    if (timecode >= 0 && start.isEmpty())
        start = "an empty timecode";
    return job.media + '\n' + start + '\n';
}

QJsonArray answer(Mood mood, const QJsonObject &json)
{
    const QString text = QJsonDocument(json).toJson();
    if (mood == Mood::Garbage)
        return {QJsonObject{{"stdout", "{\"streams\": ["}}, QJsonObject{{"stdoutGarbage", 1000}}};
    if (mood == Mood::Dies)
        return {QJsonObject{{"stdout", text.left(text.size() / 2)}}};
    return {QJsonObject{{"stdout", mood == Mood::Twice ? text + text : text}}};
}

QJsonArray extraction(Mood mood, const QVector<FakeOutput> &outputs)
{
    QJsonArray steps;
    for (const FakeOutput &output : outputs) {
        if (mood == Mood::Garbage)
            steps += QJsonObject{{"touch", output.path}};
        else
            steps += QJsonObject{{"extract", output.stream}};
        if (mood == Mood::Dies)
            break;
        if (mood == Mood::Twice) { // the audio of a stream that the file does not have
            const auto row = output.path.lastIndexOf('_');
            const auto stream = output.path.lastIndexOf('_', row - 1);
            steps += QJsonObject{{"extractTo", output.path.left(stream) + "_99" + output.path.mid(row)}};
        }
    }
    return steps;
}

QJsonArray exportSteps(Mood mood, const QString &note)
{
    QJsonArray steps;
    for (int copies = mood == Mood::Twice ? 2 : 1; copies > 0; --copies) {
        steps += QJsonObject{{"stderr", "size= 1kB\n"}};
        if (mood == Mood::Garbage)
            steps += QJsonObject{{"stderrGarbage", 100'000}};
        steps += QJsonObject{{"pauseMs", 1}};
        steps += QJsonObject{{"append", note}};
    }
    return steps;
}

} // namespace

QJsonObject moodyPlan(const FakeJob &job, std::uint64_t seed)
{
    std::vector<std::string> words;
    for (const QString &argument : job.arguments)
        words.push_back(argument.toStdString());
    const std::string media = job.media.toStdString();
    const Mood mood = moods::moodFor(seed, media, words);
    if (mood == Mood::Never)
        return {{"hang", true}};

    int exitCode = mood == Mood::Fails ? 1 : 0;
    QJsonArray steps;
    if (job.name == "export") {
        steps = exportSteps(mood, noteOf(job));
    } else if (job.name == "extract") {
        exitCode = job.outputs.isEmpty() ? 1 : exitCode;
        steps = mood == Mood::Fails ? steps : extraction(mood, job.outputs);
    } else if (job.name == "probe") {
        steps = mood == Mood::Fails ? steps : answer(mood, probeOf(job.media));
    } else {
        const bool isExtract = job.media != job.input; // of a file that is known
        exitCode = !isExtract || exitCode != 0 ? cannotOpen : moods::holdsTimecode(media) ? 0 : noTimecode;
        steps = exitCode == 0 ? answer(mood, readingOf(media)) : steps;
    }
    if (mood == Mood::Late)
        steps.prepend(QJsonObject{{"pauseMs", 30}});
    return {{"actions", steps}, {"exitCode", exitCode}, {"crash", mood == Mood::Dies}};
}
