// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/exportplan.h"
#include "tooladapter/rules/source.h"

#include <optional>
#include <string>
#include <vector>

namespace tooladapter
{

/// One audio stream of the file to be written.
struct WrittenAudio {
    int stream = 0;   ///< index of the source's stream that it comes from
    int channels = 0; ///< how many channels it must have
};

/// What the rules make of an export: the arguments for the tool, and what the written file must hold in the
/// end.
struct Export {
    std::vector<std::string> arguments;
    std::string path;           ///< of the file to be written, as the file system knows it
    bool notesFields = false;   ///< the order of the picture's fields is to be noted in the file
    int together = 0;           ///< tools of the batch that may work at once; 0 = all
    int pictureStream = -1;     ///< index of the source's picture that is taken, -1 = none
    bool copiesPicture = false; ///< it is taken as it is
    std::vector<WrittenAudio> audio;
    std::string timecode;      ///< start timecode; empty = none is asked for
    std::string timeReference; ///< start of a sound file [samples since midnight]; empty = none is asked for
};

/// A path that the tools take for a file of that name and nothing else.
std::string filePath(const std::string &path);

/// The export that \a plan means for \a source, completed by \a hints. Throws Refusal if no correct file
/// could come of it.
Export exportOf(ExportPlan plan, const Source &source, const Hints &hints = {});

} // namespace tooladapter
