// SPDX-License-Identifier: MIT

// A sound file in the timecode reader: from its bytes to the reader's answer.
//
// Input: the algorithm, the channel and the frame rate that are asked for, whether the answer is for people,
// then the bytes of the file.

#include "ltcreader/decoder/decoder.h"
#include "ltcreader/diagnosis.h"
#include "ltcreader/report.h"
#include "ltcreader/sound/soundfile.h"
#include "tests/fuzz/fuzzinput.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <cmath>

#include <sys/mman.h>
#include <unistd.h>

using fuzz::require;
using namespace ltcreader;

namespace
{

/// A file that lives in memory, for as long as the object does.
class MemoryFile
{
public:
    explicit MemoryFile(const QByteArray &content) : descriptor(memfd_create("sound", MFD_CLOEXEC))
    {
        if (descriptor < 0 || write(descriptor, content.constData(),
                                    static_cast<std::size_t>(content.size())) != content.size())
            std::abort();
    }
    ~MemoryFile() { close(descriptor); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    int descriptor;
};

Settings takeSettings(fuzz::Input &input)
{
    Settings settings;
    settings.algorithm = static_cast<Algorithm>(input.choice(5));
    settings.channel = input.choice(4) - 1;
    settings.frameRate =
        std::array{-1.0, 23.976, 24.0, 25.0, 29.97, 30.0}.at(static_cast<std::size_t>(input.choice(6)));
    return settings;
}

void checkReading(const Reading &reading, const SampleSource &file, const Settings &settings)
{
    const timecode::Rate rate{reading.baseRate, reading.ntsc, reading.dropFrame};
    require(rate.base == 24 || rate.base == 25 || rate.base == 30, "the rate is one of LTC");
    require(isLabel(reading.start, rate), "the timecode exists at its rate");
    require(!reading.dropFrame || reading.ntsc, "drop-frame only together with NTSC");
    require(reading.channel >= 0 && reading.channel < file.channels(), "the channel exists");
    require(settings.channel < 0 || reading.channel == settings.channel, "the channel is the one asked for");
    const double daySamples =
        static_cast<double>(framesPerDay(rate)) / rate.framesPerSecond() * file.sampleRate();
    require(reading.samplesSinceMidnight >= 0 &&
                static_cast<double>(reading.samplesSinceMidnight) < daySamples + 0.5,
            "samples lie within the day", QString::number(reading.samplesSinceMidnight));
    require(std::isfinite(reading.level) && std::isfinite(reading.measuredRate) &&
                reading.confidence >= 0.0 && reading.confidence <= 1.0,
            "what is measured is a number");
}

void checkAnswer(const Reading &reading)
{
    const QByteArray answer = QByteArray::fromStdString(toJson(reading));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(answer, &error);
    require(error.error == QJsonParseError::NoError && document.isObject(), "the answer is one JSON object",
            answer);
    const QJsonObject json = document.object();
    for (const char *key : {"Timecode", "DropFrame", "NTSC", "FrameRateFound", "FrameRateBaseFound",
                            "ChannelFound", "SamplesSinceMidnight"})
        require(json.contains(QLatin1String(key)), "the answer has all keys", answer);
    for (const char *key :
         {"Confidence", "MeasuredFrameRate", "FrameRateErrorPpm", "LevelDbfs", "FramePhase"})
        require(json[QLatin1String(key)].isDouble() && std::isfinite(json[QLatin1String(key)].toDouble()),
                "the answer's numbers are finite", answer);
    const double speed = json["MeasuredFrameRate"].toDouble() / json["FrameRateBaseFound"].toInt();
    require(std::abs(speed - 1.0) < 0.15, "the measured rate is near the claimed one", answer);
    require(json["SamplesSinceMidnight"].toDouble() == static_cast<double>(reading.samplesSinceMidnight),
            "numbers survive", answer);
}

/// What is printed for people, whether a timecode was found or not.
void checkDiagnosis(const MemoryFile &sound)
{
    SoundFileError error = SoundFileError::None;
    const auto file = SoundFile::open(sound.path(), error);
    const std::vector<Diagnosis> channels = diagnose(*file);
    require(channels.size() == static_cast<std::size_t>(file->channels()), "each channel is looked at");
    for (const Diagnosis &channel : channels) {
        require(!toText(channel, 0, Doubt::TooNoisy).empty(), "a refusal is described");
        require(!reasonFor(Doubt::NoTimecode, channel).empty(), "a reason is given");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const Settings settings = takeSettings(input);
    const bool forPeople = input.choice(2) == 1;
    const MemoryFile sound(input.rest());
    SoundFileError error = SoundFileError::None;
    const auto file = SoundFile::open(sound.path(), error);
    require((file == nullptr) == (error != SoundFileError::None), "a file that cannot be read has a reason");
    if (!file || settings.channel >= file->channels())
        return 0;
    if (forPeople)
        checkDiagnosis(sound);
    const auto reading = readTimecode(*file, settings);
    if (!reading)
        return 0;
    checkReading(*reading, *file, settings);
    checkAnswer(*reading);
    return 0;
}
