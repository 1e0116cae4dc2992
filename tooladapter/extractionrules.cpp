// SPDX-License-Identifier: MIT
#include "tooladapter/extractionrules.h"

#include "tooladapter/refusal.h"

#include <algorithm>

namespace tooladapter
{

ArgumentList rewriteExtraction(ArgumentList list)
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
    return list;
}

} // namespace tooladapter
