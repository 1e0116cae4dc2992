// SPDX-License-Identifier: MIT
#include "bench/support/benchmarkprogram.h"

#include "bench/support/machine.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonDocument>
#include <QSaveFile>
#include <QTextStream>

namespace bench
{

namespace
{

enum ExitCode { AllKept = 0, LimitMissed = 1, CannotMeasure = 2 };

void write(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        throw Failure(path + ": " + file.errorString());
}

} // namespace

BenchmarkProgram::BenchmarkProgram(const QString &name, const QString &description) : programName(name)
{
    QCoreApplication::setApplicationName(name);
    commandLine.setApplicationDescription(
        description + "\n\nExit code: 0; 1 when a limit was missed; 2 when something was wrong with the "
                      "options, a file or a tool.");
    commandLine.addHelpOption();
    commandLine.addOption({"json", "Writes all figures as JSON.", "file"});
    commandLine.addOption({"plot", "Writes an SVG picture of the figures.", "file"});
}

void BenchmarkProgram::addOption(const QString &name, const QString &description, const QString &usual)
{
    const QString placeholder = usual.contains(',') ? "list" : "number";
    commandLine.addOption({name, QString("%1 (%2).").arg(description, usual), placeholder, usual});
}

int BenchmarkProgram::run(const std::function<Outcome()> &measure)
{
    try {
        if (!commandLine.parse(QCoreApplication::arguments()))
            throw Failure(commandLine.errorText());
        if (commandLine.isSet("help"))
            commandLine.showHelp();
        if (!commandLine.positionalArguments().isEmpty())
            throw Failure("unexpected \"" + commandLine.positionalArguments().constFirst() +
                          "\"; see --help");
        const Outcome outcome = measure();
        report(outcome);
        return outcome.figures.allHold() ? AllKept : LimitMissed;
    } catch (const std::exception &failure) {
        QTextStream(stderr) << programName << ": " << failure.what() << '\n';
        return CannotMeasure;
    }
}

void BenchmarkProgram::report(const Outcome &outcome) const
{
    const QString date = QDateTime::currentDateTimeUtc().toString("yyyy-MM-dd");
    const QString command = (QStringList{programName} + QCoreApplication::arguments().mid(1)).join(' ');
    const QString machine = describeMachine();
    QTextStream(stdout) << command << '\n' << date << ", " << machine << "\n\n" << outcome.figures.toText();
    if (commandLine.isSet("json")) {
        QJsonObject json = outcome.figures.toJson();
        json.insert("benchmark", programName);
        json.insert("command", command);
        json.insert("date", date);
        json.insert("machine", machine);
        write(commandLine.value("json"), QJsonDocument(json).toJson());
    }
    if (commandLine.isSet("plot"))
        write(commandLine.value("plot"), toSvg(outcome.charts).toUtf8());
}

QVector<int> BenchmarkProgram::numbers(const QString &name, int least) const
{
    QVector<int> result;
    const QStringList texts = commandLine.value(name).split(',');
    for (const QString &text : texts) {
        bool isNumber = false;
        const int value = text.toInt(&isNumber);
        if (!isNumber || value < least)
            throw Failure(QString("--%1 needs whole numbers from %2 up, not \"%3\"")
                              .arg(name, QString::number(least), text));
        result += value;
    }
    return result;
}

int BenchmarkProgram::number(const QString &name, int least) const
{
    const QVector<int> all = numbers(name, least);
    if (all.size() != 1)
        throw Failure("--" + name + " needs one number");
    return all.first();
}

void tellProgress(const QString &text)
{
    QTextStream(stderr) << text << '\n';
}

} // namespace bench
