// SPDX-License-Identifier: MIT
#include "ltcreader/sound/soundfile.h"

#include "ltcreader/sound/wavbytes.h"

#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace ltcreader
{
namespace
{

constexpr int highestSampleRate = 1'000'000; // [Hz] above it the head of the file is damaged
constexpr int mostChannels = 256;

WavBytes &bytesOf(void *user)
{
    return *static_cast<WavBytes *>(user);
}

SF_VIRTUAL_IO virtualAccess()
{
    SF_VIRTUAL_IO access{};
    access.get_filelen = [](void *user) -> sf_count_t { return bytesOf(user).size(); };
    access.seek = [](sf_count_t offset, int whence, void *user) -> sf_count_t {
        return bytesOf(user).seek(offset, whence);
    };
    access.read = [](void *to, sf_count_t count, void *user) -> sf_count_t {
        return bytesOf(user).read(to, count);
    };
    access.write = [](const void *, sf_count_t, void *) -> sf_count_t { return 0; };
    access.tell = [](void *user) -> sf_count_t { return bytesOf(user).seek(0, SEEK_CUR); };
    return access;
}

} // namespace

struct SoundFile::Handle {
    WavBytes bytes;
    SNDFILE *file = nullptr;
    SF_INFO info{};

    explicit Handle(std::FILE *opened) : bytes(opened) {}
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    ~Handle()
    {
        if (file)
            sf_close(file);
    }
};

std::unique_ptr<SoundFile> SoundFile::open(const std::string &path, SoundFileError &error)
{
    error = SoundFileError::CannotOpen;
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        return nullptr;
    std::FILE *opened = std::fopen(path.c_str(), "rb");
    if (!opened)
        return nullptr;

    error = SoundFileError::NotASound;
    auto handle = std::make_unique<Handle>(opened);
    SF_VIRTUAL_IO access = virtualAccess();
    handle->file = sf_open_virtual(&access, SFM_READ, &handle->info, &handle->bytes);
    const SF_INFO &info = handle->info;
    if (!handle->file || info.channels < 1 || info.channels > mostChannels || info.samplerate < 1 ||
        info.samplerate > highestSampleRate) {
        return nullptr;
    }
    error = SoundFileError::None;
    return std::unique_ptr<SoundFile>(new SoundFile(std::move(handle)));
}

SoundFile::SoundFile(std::unique_ptr<Handle> handle) : handle(std::move(handle))
{
}

SoundFile::~SoundFile() = default;

int SoundFile::channels() const
{
    return handle->info.channels;
}

int SoundFile::sampleRate() const
{
    return handle->info.samplerate;
}

std::size_t SoundFile::read(float *interleaved, std::size_t frames)
{
    const sf_count_t given = sf_readf_float(handle->file, interleaved, static_cast<sf_count_t>(frames));
    return static_cast<std::size_t>(std::max<sf_count_t>(0, given));
}

bool SoundFile::rewind()
{
    return sf_seek(handle->file, 0, SF_SEEK_SET) == 0;
}

} // namespace ltcreader
