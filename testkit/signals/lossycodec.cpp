// SPDX-License-Identifier: MIT
#include "testkit/signals/lossycodec.h"

#include "testkit/signals/wavfile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace testsignals
{

namespace
{

/// A folder of its own that goes with the object.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "ostrel-codec-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), name);
        path = name;
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    std::string file(const std::string &name) const { return (path / name).string(); }

private:
    std::filesystem::path path;
};

bool succeeds(const std::string &command)
{
    return std::system(("(" + command + ") >/dev/null 2>&1 </dev/null").c_str()) == 0; // NOLINT(cert-env33-c)
}

} // namespace

const std::vector<LossyCodec> &lossyCodecs()
{
    static const std::vector<LossyCodec> codecs{
        {"AAC 128 kbit/s", "aac", 128000, "m4a"},      {"AAC 64 kbit/s", "aac", 64000, "m4a"},
        {"AAC 32 kbit/s", "aac", 32000, "m4a"},        {"MP3 128 kbit/s", "libmp3lame", 128000, "mp3"},
        {"MP3 64 kbit/s", "libmp3lame", 64000, "mp3"}, {"MP3 32 kbit/s", "libmp3lame", 32000, "mp3"},
        {"AC-3 96 kbit/s", "ac3", 96000, "ac3"}};
    return codecs;
}

bool isAvailable(const LossyCodec &codec)
{
    // The tool ends well and says so in words when it does not know an encoder.
    return succeeds("ffmpeg -hide_banner -h encoder=" + codec.encoder + " 2>&1 | grep -q '^Encoder '");
}

std::optional<Samples> throughCodec(const Samples &samples, int sampleRate, const LossyCodec &codec)
{
    const TemporaryFolder folder;
    WavFile wav;
    wav.sampleRate = sampleRate;
    wav.format = SampleFormat::Float32;
    wav.channels = {samples};
    writeWav(folder.file("in.wav"), wav);

    const std::string coded = folder.file("coded." + codec.suffix);
    const std::string raw = folder.file("out.raw");
    const std::string tool = "ffmpeg -v error -nostdin -threads 1 -i ";
    if (!succeeds(tool + folder.file("in.wav") + " -c:a " + codec.encoder + " -b:a " +
                  std::to_string(codec.bitRate) + " " + coded) ||
        !succeeds(tool + coded + " -f f32le -ac 1 -ar " + std::to_string(sampleRate) + " " + raw))
        return std::nullopt;

    Samples decoded(samples.size(), 0.0F);
    std::ifstream stream(raw, std::ios::binary);
    stream.read(reinterpret_cast<char *>(decoded.data()),
                static_cast<std::streamsize>(decoded.size() * sizeof(float)));
    return decoded;
}

} // namespace testsignals
