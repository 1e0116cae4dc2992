// SPDX-License-Identifier: MIT
#pragma once

namespace tooladapter
{

/// A place among the tools that one application lets work at once.
///
/// Coding one large picture takes hundreds of megabytes, and more tools than processors only stand in each
/// other's way. The place is given back at the end of this process, however it ends.
class Turn
{
public:
    /// Waits until fewer than \a together (above 0) tools of the process that has started this one have a
    /// turn.
    explicit Turn(int together);
    ~Turn();

    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

private:
    int place = -1; ///< a socket whose name no other can have; -1 = the system has none, so no tool waits
};

} // namespace tooladapter
