// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QtGlobal>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

#include <functional>

/// All that differs between the versions of Qt that the program is built with; no other file asks for the
/// version.
namespace qtversion
{

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

/// QProcess with the call by which Qt 6 lets other code act in the child, between its birth and the start of
/// the program.
class Process : public QProcess
{
public:
    using QProcess::QProcess;
    void setChildProcessModifier(const std::function<void()> &modifier) { childProcessModifier = modifier; }

protected:
    void setupChildProcess() override
    {
        if (childProcessModifier)
            childProcessModifier();
    }

private:
    std::function<void()> childProcessModifier;
};

/// Each start of a program copies the memory map of this one.
constexpr bool copiesItself = true;

inline void startWithoutCopy(QProcess &)
{
}

/// Makes the character set with the registered number \a mib that of file names. False where it cannot be
/// chosen: there file names are always UTF-8.
inline bool useFileNameCoding(int mib)
{
    if (QTextCodec::codecForLocale()->mibEnum() != mib)
        QTextCodec::setCodecForLocale(QTextCodec::codecForMib(mib));
    return true;
}

/// Draws in the resolution of the screen.
inline void useHighDpi()
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
}

/// Has the end of a desktop session close no windows.
template <typename GuiApplication>
void leaveWindowsToProgram()
{
    GuiApplication::setFallbackSessionManagementEnabled(false);
}

#else // what Qt 5 has to be asked for, Qt 6 does by itself

using Process = QProcess;

constexpr bool copiesItself = false;

/// Has \a process start programs without a copy of this one: what its modifier does, the child does in this
/// program's own memory while the thread that starts it waits. Qt 6.4 never copies; later versions ask for
/// consent.
inline void startWithoutCopy([[maybe_unused]] QProcess &process)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0) && defined(Q_OS_UNIX)
    process.setUnixProcessParameters(QProcess::UnixProcessFlag::UseVFork);
#endif
}

inline bool useFileNameCoding(int)
{
    return false;
}

inline void useHighDpi()
{
}

template <typename GuiApplication>
void leaveWindowsToProgram()
{
}

#endif

} // namespace qtversion
