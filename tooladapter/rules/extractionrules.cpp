// SPDX-License-Identifier: MIT
#include "tooladapter/rules/extractionrules.h"

#include "tooladapter/rules/refusal.h"
#include "tooladapter/rules/trackrules.h"

#include <algorithm>

namespace tooladapter
{

namespace
{

double delayOf(const Output &output, const Source &source)
{
    const auto map = std::find_if(output.options.begin(), output.options.end(),
                                  [](const Option &option) { return option.name == "-map"; });
    return map == output.options.end() ? 0.0 : source.delayOf(mappedStream(map->value).value_or(-1));
}

/// A stream's file begins with its first sound, but exports count from the source's beginning: without the
/// silence between the two, their start timecode would be that of a later moment.
void restoreDelays(ArgumentList &list, const Source &source)
{
    std::erase_if(list.outputs,
                  [&source](const Output &output) { return delayOf(output, source) > longestSilence; });
    if (list.outputs.empty())
        throw Refusal("the sound of " + list.input + " begins too long after its picture");
    for (Output &output : list.outputs) {
        const std::string filter = delayFilter(delayOf(output, source));
        if (!filter.empty())
            output.options.push_back({"-filter:a", filter});
    }
}

} // namespace

ArgumentList rewriteExtraction(ArgumentList list, const Source &source)
{
    if (list.outputs.empty() || list.outputs.front().path.empty())
        throw Refusal("no audio stream to extract from " + list.input);

    // A seek to 0 cuts the priming samples of AAC: 1,024 samples of wrong timecode.
    std::erase(list.inputOptions, Option{"-ss", "0"});

    // After the input, the limit binds the first file only and the others are written at full length; before
    // it, the tool reads no further than this and every file ends there.
    for (Output &output : list.outputs) {
        const auto limit = std::find_if(output.options.begin(), output.options.end(),
                                        [](const Option &option) { return option.name == "-t"; });
        if (limit != output.options.end()) {
            list.inputOptions.push_back(*limit);
            output.options.erase(limit);
        }
    }
    restoreDelays(list, source);
    return list;
}

} // namespace tooladapter
