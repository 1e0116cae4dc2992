// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// What every fuzz target defines: runs the product on \a size bytes of \a data and checks what comes out.
/// The fuzzer calls it with what it makes up, the replay with the files of a corpus. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace fuzz
{

/// Ends the program, so that the fuzzer keeps the input, unless \a holds. \a promise says in a few words what
/// must hold, \a shown what was met instead.
void require(bool holds, const char *promise, const QString &shown = {});

/// One input, taken apart from its beginning: choices, names, then the text that is the matter of the target.
class Input
{
public:
    Input(const std::uint8_t *data, std::size_t size)
        : bytes(reinterpret_cast<const char *>(data), static_cast<int>(size))
    {
    }

    /// One of \a count choices, 0 ... count - 1; takes one byte. 0 at the end.
    int choice(int count);

    /// Takes a line, without its end.
    QByteArray line();

    /// All that is left.
    QByteArray rest() const { return bytes.mid(position); }

private:
    QByteArray bytes;
    int position = 0;
};

} // namespace fuzz
