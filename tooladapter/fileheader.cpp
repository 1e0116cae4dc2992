// SPDX-License-Identifier: MIT
#include "tooladapter/fileheader.h"

#include "tooladapter/exportplan.h"
#include "tooladapter/mxfheader.h"
#include "tooladapter/quicktimeheader.h"
#include "tooladapter/waveheader.h"

namespace tooladapter
{

std::optional<Source> readFileHeader(const std::string &path)
{
    try {
        BinaryFile file(path);
        switch (containerOf(path)) {
        case Container::QuickTime:
            return readQuickTime(file);
        case Container::Mxf:
            return readMxf(file);
        case Container::Wave:
            return readWave(file);
        case Container::Other:
            break;
        }
    } catch (const BrokenFile &) {
        // the probe tool has the last word
    }
    return std::nullopt;
}

} // namespace tooladapter
