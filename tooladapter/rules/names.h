// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace tooladapter
{

template <typename Names>
bool isOneOf(const Names &names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// \a text with small letters; only those of English are changed.
inline std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

} // namespace tooladapter
