// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/sound/samplesource.h"

#include <memory>
#include <string>

namespace ltcreader
{

/// Why a sound file could not be read.
enum class SoundFileError {
    None,
    CannotOpen, ///< no such file, a folder, or not allowed
    NotASound   ///< none of the formats that are known, or a damaged head
};

/// A WAV file (plain, extensible, RF64 or W64), read as it is needed. Headers with no length or a wrong
/// one, as pipes leave them, and files that are cut off are read up to their end.
class SoundFile : public SampleSource
{
public:
    /// Opens the file at \a path. Null when that fails; \a error then says why.
    static std::unique_ptr<SoundFile> open(const std::string &path, SoundFileError &error);

    SoundFile(const SoundFile &) = delete;
    SoundFile &operator=(const SoundFile &) = delete;
    ~SoundFile() override;

    int channels() const override;
    int sampleRate() const override;
    std::size_t read(float *interleaved, std::size_t frames) override;

    /// Goes back to the first sample. False when that fails.
    bool rewind();

private:
    struct Handle;
    explicit SoundFile(std::unique_ptr<Handle> handle);

    std::unique_ptr<Handle> handle;
};

} // namespace ltcreader
