// SPDX-License-Identifier: MIT

// Plays ffprobe.exe, ffmpeg.exe and LTCReader.exe for the monkey, by the name it is started under. Small and
// without libraries, as it is started hundreds of thousands of times. Its mood follows from the seed in
// OSTREL_MONKEY_SEED and its arguments.

#include "tests/monkey/moods.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace
{

using moods::Mood;
using Words = std::vector<std::string>;

constexpr int noTimecode = 205;
constexpr int cannotOpen = 201;

struct Job {
    Words words;
    Mood mood = Mood::Normal;
    std::string media; ///< the file that it is about in the end
};

std::string after(const Words &words, const std::string &option)
{
    const auto found = std::find(words.begin(), words.end(), option);
    return found == words.end() || found + 1 == words.end() ? std::string() : *(found + 1);
}

std::string contentOf(const std::string &path)
{
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

[[noreturn]] void die()
{
    std::raise(SIGKILL);
    std::abort();
}

[[noreturn]] void waitToBeKilled()
{
    prctl(PR_SET_NAME, "never");
    while (true)
        pause();
}

/// Prints the answer \a text in the mood of \a job; returns the exit code.
int answer(const Job &job, const std::string &text)
{
    switch (job.mood) {
    case Mood::Garbage:
        std::cout << "{\"streams\": [" << std::string(1000, '\xFF');
        return 0;
    case Mood::Dies:
        std::cout << text.substr(0, text.size() / 2) << std::flush;
        die();
    case Mood::Twice:
        std::cout << text << text;
        return 0;
    default:
        std::cout << text;
        return 0;
    }
}

std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char letter : text)
        result += letter == '"' || letter == '\\' ? std::string("\\") + letter : std::string(1, letter);
    return result + '"';
}

int probe(const Job &job)
{
    if (job.mood == Mood::Fails)
        return 1;
    const std::string audio =
        R"({"codec_type": "audio", "codec_name": "pcm_s24le", "channels": 2, "sample_rate": "48000"})";
    std::string streams;
    if (!moods::isWave(job.media))
        streams = R"({"codec_type": "video", "r_frame_rate": "25/1", "index": 0})";
    for (int i = 0; i < moods::audioStreamsOf(job.media); ++i)
        streams += (streams.empty() ? "" : ", ") + audio;
    const std::string format = moods::isWave(job.media) ? R"("format_name": "wav", )" : "";
    return answer(job, "{\"streams\": [" + streams + "], \"format\": {" + format +
                           "\"duration\": \"10.000000\", \"filename\": " + quoted(job.media) + "}}");
}

int extract(const Job &job)
{
    if (job.mood == Mood::Fails)
        return 1;
    int written = 0;
    for (std::size_t i = 0; i + 2 < job.words.size(); ++i) {
        if (job.words[i] != "-map")
            continue;
        const std::string &path = job.words[i + 2];
        std::ofstream(path) << (job.mood == Mood::Garbage ? "garbage" : job.media);
        if (job.mood == Mood::Dies)
            die();
        if (job.mood == Mood::Twice) { // the audio of a stream that the file does not have
            const std::size_t row = path.rfind('_');
            std::ofstream(path.substr(0, path.rfind('_', row - 1)) + "_99" + path.substr(row)) << job.media;
        }
        ++written;
    }
    return written > 0 ? 0 : 1;
}

int read(const Job &job)
{
    if (job.media.empty() || job.mood == Mood::Fails)
        return cannotOpen;
    if (!moods::holdsTimecode(job.media))
        return noTimecode;
    return answer(job, "{\"Timecode\": \"" + moods::timecodeOf(job.media) +
                           R"(", "DropFrame": false, "NTSC": false, "FrameRateFound": 25, )"
                           R"("FrameRateBaseFound": 25, "ChannelFound": 0, "SamplesSinceMidnight": )" +
                           std::to_string(moods::samplesOf(job.media)) + "}");
}

/// What an export says of its start: the words of the timecode, or of the time reference of WAV files.
std::string startOf(const Words &words)
{
    if (std::find(words.begin(), words.end(), "-timecode") == words.end())
        return after(words, "-metadata");
    const std::string timecode = after(words, "-timecode");
    return timecode.empty() ? "an empty timecode" : timecode;
}

int exportFile(const Job &job)
{
    const std::string &path = job.words.back();
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0)
        return 1;
    const bool isAlone = flock(file, LOCK_EX | LOCK_NB) == 0 && ftruncate(file, 0) == 0;
    const std::string content =
        isAlone ? job.media + '\n' + startOf(job.words) + '\n' : "two exports at once\n";
    const int copies = job.mood == Mood::Twice ? 2 : 1;
    for (int i = 0; i < copies; ++i) {
        std::cerr << "size= 1kB\n";
        if (job.mood == Mood::Garbage)
            std::cerr << std::string(100'000, '\xFE');
        usleep(1000);
        if (write(file, content.data(), content.size()) < 0)
            return 1;
        if (job.mood == Mood::Dies)
            die();
    }
    return job.mood == Mood::Fails ? 1 : 0;
}

/// The file that \a words are about; for a reader the one whose audio its WAV file holds.
std::string mediaOf(const std::string &tool, const Words &words)
{
    if (words.empty())
        return {};
    if (tool.starts_with("ffprobe"))
        return words.back();
    if (tool.starts_with("ffmpeg"))
        return after(words, "-i");
    const std::string origin = contentOf(words.front());
    return origin.starts_with('/') ? origin : std::string();
}

int play(int argc, char *argv[])
{
    const std::string path = argv[0];
    const std::string tool = path.substr(path.rfind('/') + 1);
    Job job{Words(argv + 1, argv + argc), Mood::Normal, {}};
    job.media = mediaOf(tool, job.words);
    const char *seed = std::getenv("OSTREL_MONKEY_SEED");
    job.mood = moods::moodFor(seed ? std::strtoull(seed, nullptr, 10) : 0, job.media, job.words);
    if (job.mood == Mood::Never)
        waitToBeKilled();
    if (job.mood == Mood::Late)
        usleep(30'000);

    if (tool.starts_with("ffprobe"))
        return probe(job);
    if (tool.starts_with("LTCReader"))
        return read(job);
    return after(job.words, "-guess_layout_max").empty() ? exportFile(job) : extract(job);
}

} // namespace

// Ends at once, without a search for leaks: that stops the process for a moment, and lasts for ever where it
// is crossed by the signal to go on that the monkey sends to tools it has stopped.
int main(int argc, char *argv[])
{
    const int exitCode = play(argc, argv);
    std::cout.flush();
    std::fflush(nullptr);
    _exit(exitCode);
}
