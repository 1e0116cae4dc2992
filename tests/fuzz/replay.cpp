// SPDX-License-Identifier: MIT

// Replaces the fuzzer without clang++: runs a target on every file of a folder, once.

#include "tests/fuzz/fuzzinput.h"

#include <QDirIterator>
#include <QFile>

#include <cstdio>

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    int inputs = 0;
    for (QDirIterator files(QFile::decodeName(argv[1]), QDir::Files); files.hasNext(); ++inputs) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "replay: cannot read %s\n", qPrintable(file.fileName()));
            return 1;
        }
        const QByteArray content = file.readAll();
        std::printf("%s\n", qPrintable(files.fileName()));
        std::fflush(stdout); // the last name is that of the input that ends the program
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(content.constData()),
                               static_cast<std::size_t>(content.size()));
    }
    if (inputs == 0) {
        std::fprintf(stderr, "replay: no input in %s\n", argv[1]);
        return 1;
    }
    std::printf("%d inputs\n", inputs);
    return 0;
}
