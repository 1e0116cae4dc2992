// SPDX-License-Identifier: MIT
#pragma once

#include <QCommandLineParser>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <functional>
#include <stdexcept>

namespace bench
{

/// Why a benchmark cannot go on, in one line for the user.
class Failure : public std::runtime_error
{
public:
    explicit Failure(const QString &reason) : std::runtime_error(reason.toStdString()) {}
};

/// The frame of a benchmark program: its options, and its figures as JSON lines on standard output, one
/// object for each measured thing. bench/figures.py reads them. Needs the application object.
class Program
{
public:
    Program(const QString &name, const QString &description);

    void addSwitch(const QString &name, const QString &description);

    /// Adds an option with a value; the \a placeholder names it, \a usual is its value unless it is given.
    void addOption(const QString &name, const QString &description, const QString &placeholder,
                   const QString &usual = {});

    /// Reads the options and does \a work. Returns the exit code of \a work, or 2 when the options, a file or
    /// a tool prevented it.
    int run(const std::function<int()> &work);

    bool isSet(const QString &name) const { return commandLine.isSet(name); }
    QString text(const QString &name) const { return commandLine.value(name); }
    QStringList texts(const QString &name) const { return commandLine.values(name); }

    /// The value of the option \a name, a whole number from \a least up. Throws Failure.
    quint64 number(const QString &name, quint64 least = 1) const;

    /// The same for numbers of an int, separated by commas.
    QVector<int> numbers(const QString &name) const;

    /// Prints a line about this run: program, command, date and machine.
    void printRun() const;

private:
    QString programName;
    QCommandLineParser commandLine;
};

/// Prints \a figures of a measured thing as one line; \a kind names what was measured. Safe in any thread.
void print(const QString &kind, QJsonObject figures);

/// Writes \a line on standard error: progress and what the user should see at once. Safe in any thread.
void report(const QString &line);

} // namespace bench
