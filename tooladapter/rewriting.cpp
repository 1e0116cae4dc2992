// SPDX-License-Identifier: MIT
#include "tooladapter/rewriting.h"

namespace tooladapter
{

Job jobOf(const ArgumentList &list)
{
    if (list.inputOptions.empty() || list.inputOptions.front().name != "-y")
        return Job::Unknown;
    if (hasOption(list.inputOptions, "-guess_layout_max"))
        return Job::Extraction;
    if (list.inputOptions.size() == 1 && list.outputs.size() == 1 && !list.outputs.front().path.empty())
        return Job::Export;
    return Job::Unknown;
}

} // namespace tooladapter
