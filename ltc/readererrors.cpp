// SPDX-License-Identifier: MIT
#include "ltc/readererrors.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace
{

struct ReaderError {
    int exitCode;
    const char *text;
};

// The words are the reader's vocabulary and stay as they are, spelling included.
constexpr std::array readerErrors{
    ReaderError{100, QT_TRANSLATE_NOOP("ReaderErrors", "innsufficient arguments for LTCReader")},
    ReaderError{101, QT_TRANSLATE_NOOP("ReaderErrors", "unsupported output format")},
    ReaderError{102, QT_TRANSLATE_NOOP("ReaderErrors", "unsupported parameter for LTCReader")},
    ReaderError{103, QT_TRANSLATE_NOOP("ReaderErrors", "unsupported reading algorithm")},
    ReaderError{201, QT_TRANSLATE_NOOP("ReaderErrors", "could not open file")},
    ReaderError{202, QT_TRANSLATE_NOOP("ReaderErrors", "channel number out of range")},
    ReaderError{203, QT_TRANSLATE_NOOP("ReaderErrors", "invalid framerate")},
    ReaderError{204, QT_TRANSLATE_NOOP("ReaderErrors", "could not initialize sample reader")},
    ReaderError{205, QT_TRANSLATE_NOOP("ReaderErrors", "audio TC not found")},
    ReaderError{1000, QT_TRANSLATE_NOOP("ReaderErrors", "error while reading file data")},
    ReaderError{1001, QT_TRANSLATE_NOOP("ReaderErrors", "couldn't read file data")},
    ReaderError{2001, QT_TRANSLATE_NOOP("ReaderErrors", "couldn't get audio track from file")},
};

} // namespace

QString readerErrorText(int exitCode)
{
    const auto *const found =
        std::find_if(readerErrors.begin(), readerErrors.end(),
                     [exitCode](const ReaderError &error) { return error.exitCode == exitCode; });
    return found == readerErrors.end() ? QString() : QCoreApplication::translate("ReaderErrors", found->text);
}
