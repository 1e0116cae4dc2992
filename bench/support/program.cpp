// SPDX-License-Identifier: MIT
#include "bench/support/program.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QSysInfo>
#include <QThread>

#include <cstdio>
#include <limits>

namespace bench
{

namespace
{

/// The value of the first line of \a path that begins with \a key.
QString entryOf(const QString &path, const QByteArray &key)
{
    QFile file(path);
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const auto start = content.indexOf(key);
    return QString::fromUtf8(content.mid(start).split('\n').first()).section(':', 1).trimmed();
}

QString machine()
{
    constexpr double kibiPerGibi = 1024.0 * 1024.0;
    const double memory = entryOf("/proc/meminfo", "MemTotal").section(' ', 0, 0).toDouble() / kibiPerGibi;
    return QString("%1, %2 cores, %3 GiB, %4, kernel %5, Qt %6")
        .arg(entryOf("/proc/cpuinfo", "model name"), QString::number(QThread::idealThreadCount()),
             QString::number(qRound(memory)), QSysInfo::prettyProductName(), QSysInfo::kernelVersion(),
             QString(qVersion()));
}

/// One call, so that lines of several threads do not mix.
void writeLine(std::FILE *stream, const QByteArray &line)
{
    std::fputs((line + '\n').constData(), stream);
    std::fflush(stream);
}

quint64 numberFrom(const QString &option, const QString &text, quint64 least, quint64 limit)
{
    bool isNumber = false;
    const quint64 value = text.toULongLong(&isNumber);
    if (!isNumber || value < least || value > limit)
        throw Failure(QString("--%1 needs a whole number from %2 to %3, not \"%4\"")
                          .arg(option, QString::number(least), QString::number(limit), text));
    return value;
}

} // namespace

Program::Program(const QString &name, const QString &description) : programName(name)
{
    QCoreApplication::setApplicationName(name);
    commandLine.setApplicationDescription(description);
    commandLine.addHelpOption();
}

void Program::addSwitch(const QString &name, const QString &description)
{
    commandLine.addOption({name, description + '.'});
}

void Program::addOption(const QString &name, const QString &description, const QString &placeholder,
                        const QString &usual)
{
    const QString end = usual.isEmpty() ? QString(".") : QString(" (%1).").arg(usual);
    commandLine.addOption({name, description + end, placeholder, usual});
}

int Program::run(const std::function<int()> &work)
{
    try {
        if (!commandLine.parse(QCoreApplication::arguments()))
            throw Failure(commandLine.errorText());
        if (commandLine.isSet("help"))
            commandLine.showHelp();
        if (!commandLine.positionalArguments().isEmpty())
            throw Failure("unexpected \"" + commandLine.positionalArguments().constFirst() +
                          "\"; see --help");
        return work();
    } catch (const std::exception &failure) {
        report(programName + ": " + failure.what());
        return 2;
    }
}

quint64 Program::number(const QString &name, quint64 least) const
{
    return numberFrom(name, text(name), least, std::numeric_limits<quint64>::max());
}

QVector<int> Program::numbers(const QString &name) const
{
    QVector<int> result;
    const QStringList texts = text(name).split(',');
    for (const QString &text : texts)
        result += static_cast<int>(numberFrom(name, text, 1, std::numeric_limits<int>::max()));
    return result;
}

void Program::printRun() const
{
    QString command = programName;
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    for (const QString &argument : arguments)
        command += argument.contains(' ') ? " \"" + argument + '"' : ' ' + argument;
    print("run", {{"program", programName},
                  {"command", command},
                  {"date", QDateTime::currentDateTimeUtc().toString("yyyy-MM-dd")},
                  {"machine", machine()}});
}

void print(const QString &kind, QJsonObject figures)
{
    figures.insert("kind", kind);
    writeLine(stdout, QJsonDocument(figures).toJson(QJsonDocument::Compact));
}

void report(const QString &line)
{
    writeLine(stderr, line.toLocal8Bit());
}

} // namespace bench
