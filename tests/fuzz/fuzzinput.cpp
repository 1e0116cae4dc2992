// SPDX-License-Identifier: MIT
#include "tests/fuzz/fuzzinput.h"

#include <cstdio>

namespace fuzz
{

void require(bool holds, const char *promise, const QString &shown)
{
    if (holds)
        return;
    constexpr int enough = 2000; // characters
    std::fprintf(stderr, "fuzz: broken promise: %s: %s\n", promise, shown.left(enough).toUtf8().constData());
    std::abort();
}

int Input::choice(int count)
{
    if (position >= bytes.size())
        return 0;
    return static_cast<unsigned char>(bytes.at(position++)) % count;
}

QByteArray Input::line()
{
    const auto end = bytes.indexOf('\n', position);
    QByteArray text = bytes.mid(position, end < 0 ? -1 : end - position);
    position = static_cast<int>(end < 0 ? bytes.size() : end + 1);
    return text;
}

} // namespace fuzz
