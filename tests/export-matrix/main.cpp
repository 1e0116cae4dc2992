// SPDX-License-Identifier: MIT
// Exports real media with all options and judges the written files.
#include "tests/export-matrix/exportcase.h"
#include "tests/export-matrix/sourcelist.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <exception>

using namespace exportmatrix;

namespace
{

struct Totals {
    int seen = 0;
    int right = 0;
    int refused = 0;
    int wrong = 0;
};

/// Which exports are run.
struct Choice {
    bool coreOnly = false;
    int every = 1; ///< only one of so many
};

void exportAll(const SourceFile &source, const QString &folder, const Choice &choice,
               const QProcessEnvironment &environment, Totals &totals, QTextStream &report)
{
    const MadeFile made = makeSource(source, folder);
    const QVector<ExportOptions> tried = optionsFor(source, choice.coreOnly);
    for (const ExportOptions &options : tried) {
        if (totals.seen++ % choice.every != 0)
            continue;
        const Outcome outcome = runExport(made, options, environment);
        const QString name = source.name + ": " + nameOf(options);
        switch (outcome.kind) {
        case Outcome::Kind::Right:
            ++totals.right;
            report << "right    " << name << Qt::endl;
            break;
        case Outcome::Kind::Refused:
            ++totals.refused;
            report << "refused  " << name << " (" << outcome.text << ')' << Qt::endl;
            break;
        case Outcome::Kind::Wrong:
            ++totals.wrong;
            report << "WRONG    " << name << ": " << outcome.text << Qt::endl;
            break;
        }
    }
}

int run(const QCommandLineParser &options, QTextStream &report)
{
    for (const char *tool : {"ffmpeg.exe", "ffmpeg", "ffprobe", "mediainfo"}) {
        if (QStandardPaths::findExecutable(tool).isEmpty()) {
            report << "export-matrix: no program \"" << tool << "\" in PATH" << Qt::endl;
            return 2;
        }
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (options.isSet("tools"))
        environment.insert("PATH",
                           QDir(options.value("tools")).absolutePath() + ':' + environment.value("PATH"));

    const QTemporaryDir folder;
    const Choice choice{options.isSet("core"), std::max(1, options.value("every").toInt())};
    Totals totals;
    const QVector<SourceFile> sources = allSources();
    for (const SourceFile &source : sources) {
        if (!options.isSet("source") || source.name == options.value("source"))
            exportAll(source, folder.path(), choice, environment, totals, report);
    }
    report << totals.right << " right, " << totals.refused << " refused as they must be, " << totals.wrong
           << " wrong" << Qt::endl;
    return totals.wrong == 0 && totals.right + totals.refused > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTextStream report(stdout);
    QCommandLineParser options;
    options.setApplicationDescription(
        "Exports real media through ffmpeg.exe, found in PATH, and judges the files.");
    options.addHelpOption();
    options.addOption({"core", "Only a choice that touches every rule."});
    options.addOption({"every", "Only one of <count> exports, evenly spread.", "count", "1"});
    options.addOption({"source", "Only the source called <name>.", "name"});
    options.addOption({"tools", "Let ffmpeg.exe find the media tools in <folder> first.", "folder"});
    options.process(application);
    try {
        return run(options, report);
    } catch (const std::exception &problem) {
        report << "export-matrix: " << problem.what() << Qt::endl;
        return 2;
    }
}
