// SPDX-License-Identifier: MIT
// Linux: names in the abstract socket namespace go with their process, so a killed tool blocks no other.
#include "tooladapter/posix/turn.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <string>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tooladapter
{
namespace
{

/// Gives \a socket the name of place \a number. False where another process has it; what else fails is no
/// reason to wait.
bool take(int socket, int number)
{
    const std::string name = "ostrel-export/" + std::to_string(getuid()) + '/' + std::to_string(getppid()) +
                             '/' + std::to_string(number);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::copy(name.begin(), name.end(), address.sun_path + 1); // the first byte stays zero
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    return bind(socket, reinterpret_cast<const sockaddr *>(&address), length) == 0 || errno != EADDRINUSE;
}

bool takeAny(int socket, int together)
{
    for (int number = 0; number < together; ++number) {
        if (take(socket, number))
            return true;
    }
    return false;
}

} // namespace

Turn::Turn(int together) : place(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    constexpr std::chrono::milliseconds pause(50); // nothing compared with the seconds that a tool works
    while (place >= 0 && !takeAny(place, together))
        std::this_thread::sleep_for(pause);
}

Turn::~Turn()
{
    if (place >= 0)
        close(place);
}

} // namespace tooladapter
