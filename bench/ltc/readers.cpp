// SPDX-License-Identifier: MIT
#include "bench/ltc/readers.h"

namespace ltcbench
{

ltcreader::Outcome outcomeOf(const Case &recording)
{
    const std::size_t channels = recording.channels.size();
    std::vector<float> interleaved(channels * recording.channels.front().size());
    for (std::size_t i = 0; i < interleaved.size(); ++i)
        interleaved[i] = recording.channels[i % channels][i / channels];
    ltcreader::MemorySource source(std::move(interleaved), static_cast<int>(channels), recording.sampleRate);
    return ltcreader::examine(source, {});
}

Answer answerOf(const ltcreader::Reading &reading)
{
    const timecode::Label &start = reading.start;
    return {{start.hours, start.minutes, start.seconds, start.frames},
            {reading.baseRate, reading.ntsc, reading.dropFrame},
            reading.channel,
            reading.samplesSinceMidnight};
}

std::optional<Answer> readWithOurs(const Case &recording)
{
    const ltcreader::Outcome outcome = outcomeOf(recording);
    return outcome.doubt == ltcreader::Doubt::None ? std::optional(answerOf(*outcome.likeliest))
                                                   : std::nullopt;
}

} // namespace ltcbench
