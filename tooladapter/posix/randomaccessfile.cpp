// SPDX-License-Identifier: MIT
// POSIX: reads and writes at positions.
#include "tooladapter/posix/randomaccessfile.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tooladapter
{
namespace
{

[[noreturn]] void fail(const char *what, int error = errno)
{
    throw std::system_error(error, std::generic_category(), what);
}

} // namespace

RandomAccessFile::RandomAccessFile(const std::string &path, Access access)
    : descriptor(open(path.c_str(), (access == Access::Read ? O_RDONLY : O_RDWR) | O_CLOEXEC | O_NONBLOCK))
{
    struct stat status = {};
    if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(descriptor);
        descriptor = -1;
    }
}

RandomAccessFile::~RandomAccessFile()
{
    if (descriptor >= 0)
        close(descriptor);
}

std::uint64_t RandomAccessFile::size() const
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0)
        fail("the size of a file is not known");
    return static_cast<std::uint64_t>(status.st_size);
}

std::string RandomAccessFile::read(std::uint64_t position, std::size_t count) const
{
    std::string content(count, '\0');
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got =
            pread(descriptor, content.data() + done, count - done, static_cast<off_t>(position + done));
        if (got == 0)
            fail("a file has become shorter", EIO);
        if (got > 0)
            done += static_cast<std::size_t>(got);
        else if (errno != EINTR)
            fail("a file cannot be read");
    }
    return content;
}

void RandomAccessFile::write(std::uint64_t position, const std::string &content)
{
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t put = pwrite(descriptor, content.data() + done, content.size() - done,
                                   static_cast<off_t>(position + done));
        if (put > 0)
            done += static_cast<std::size_t>(put);
        else if (put == 0 || errno != EINTR)
            fail("the metadata of the written file cannot be written");
    }
}

void RandomAccessFile::truncate(std::uint64_t size)
{
    if (ftruncate(descriptor, static_cast<off_t>(size)) != 0)
        fail("a file cannot be made shorter");
}

} // namespace tooladapter
