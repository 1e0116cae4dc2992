// SPDX-License-Identifier: MIT
// Opens a sound file and ends: the least that any reader of sound files takes.
#include <cstdio>
#include <sndfile.h>

int main(int argc, char **argv)
{
    SF_INFO info{};
    SNDFILE *file = argc == 2 ? sf_open(argv[1], SFM_READ, &info) : nullptr;
    if (!file) {
        std::fprintf(stderr, "soundfile-opener: give one sound file\n");
        return 1;
    }
    sf_close(file);
    return 0;
}
