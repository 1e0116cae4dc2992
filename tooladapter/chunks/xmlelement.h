// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tooladapter
{

/// An element of an XML text and where it is [bytes], so that the text can be changed in a few places and
/// stay as it is elsewhere.
struct XmlElement {
    std::string_view name;
    std::size_t begin = 0;        ///< of its first "<"
    std::size_t contentBegin = 0; ///< behind the ">" of its start tag
    std::size_t contentEnd = 0;   ///< at the "<" of its end tag
    std::size_t end = 0; ///< behind its last ">"; contentBegin for an element without an end tag, "<A/>"
    std::vector<XmlElement> children;

    /// The children called \a name, in order.
    std::vector<const XmlElement *> childrenCalled(std::string_view name) const;
};

/// The root element of \a text, which must outlive it. Nothing for a text that is not well-formed, that has a
/// document type, or that nests deeper than 32 or holds more than 50,000 elements. What follows the root is
/// not read.
std::optional<XmlElement> parseXml(std::string_view text);

} // namespace tooladapter
