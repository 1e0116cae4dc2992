// SPDX-License-Identifier: MIT
// The leak checker is told of what stays until the end of the process on purpose.

extern "C" const char *__lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier)

extern "C" const char *__lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier)
{
    return "leak:newControllerOfTheProcess\n"
           "leak:libfontconfig\n";
}
