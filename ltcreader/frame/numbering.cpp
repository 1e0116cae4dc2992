// SPDX-License-Identifier: MIT
#include "ltcreader/frame/numbering.h"

namespace ltcreader
{

std::pair<int, int> placeOf(const FrameNumbering &numbering, int frame)
{
    constexpr int dropped = 2;
    int number = numbering.first + frame;
    if (numbering.droppedAt >= 0 && number >= numbering.base * numbering.droppedAt)
        number += dropped;
    const int within = number % numbering.base;
    return {number / numbering.base, numbering.illegalTens ? 30 + within % 10 : within};
}

int secondsTouched(const FrameNumbering &numbering, int frames)
{
    return placeOf(numbering, frames - 1).first + 1;
}

std::vector<FrameNumbering> possibleNumberings(int frames)
{
    std::vector<FrameNumbering> numberings;
    for (const int base : {24, 25, 30}) {
        for (int first = 0; first < base; ++first) {
            const FrameNumbering whole{base, first, -1};
            numberings.push_back(whole);
            const int lastSecond = secondsTouched(whole, frames) - 1;
            for (int droppedAt = 1; base == 30 && droppedAt <= lastSecond; ++droppedAt)
                numberings.push_back({base, first, droppedAt});
        }
    }
    return numberings;
}

} // namespace ltcreader
