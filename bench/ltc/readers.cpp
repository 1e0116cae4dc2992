// SPDX-License-Identifier: MIT
#include "bench/ltc/readers.h"

namespace ltcbench
{

std::optional<Answer> readWithOurs(const Case &recording, const ltcreader::Settings &settings)
{
    const std::size_t channels = recording.channels.size();
    std::vector<float> interleaved(channels * recording.channels.front().size());
    for (std::size_t i = 0; i < interleaved.size(); ++i)
        interleaved[i] = recording.channels[i % channels][i / channels];
    ltcreader::MemorySource source(std::move(interleaved), static_cast<int>(channels), recording.sampleRate);

    const std::optional<ltcreader::Reading> reading = ltcreader::readTimecode(source, settings);
    if (!reading)
        return std::nullopt;
    const ltcreader::Timecode &start = reading->start;
    return Answer{{start.hours, start.minutes, start.seconds, start.frames},
                  {reading->baseRate, reading->ntsc, reading->dropFrame},
                  reading->channel,
                  reading->samplesSinceMidnight};
}

} // namespace ltcbench
