// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace tooladapter
{

/// \a movie, the atom "moov" of a QuickTime file with all it holds, with the order of the fields noted for
/// its first picture track. Nothing where the order is noted already, or the atom is not whole. The tools
/// leave the note out for some codecs.
std::optional<std::string> withFieldOrder(const std::string &movie, bool topFieldFirst);

/// Notes the order of the fields in the QuickTime file at \a path. Where its movie atom is not the last one,
/// or is damaged, the file stays as it is. Throws Refusal where it can no longer be written.
void noteFieldOrder(const std::string &path, bool topFieldFirst);

} // namespace tooladapter
