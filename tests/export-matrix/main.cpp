// SPDX-License-Identifier: MIT
// Exports real media with all options and judges the written files.
#include "tests/export-matrix/dayfiles.h"
#include "tests/export-matrix/exportcase.h"
#include "tests/export-matrix/judge.h"
#include "tests/export-matrix/keepingtable.h"
#include "tests/export-matrix/sourcelist.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <stdexcept>

using namespace exportmatrix;

namespace
{

struct Totals {
    int seen = 0;
    int right = 0;
    int refused = 0;
    int wrong = 0;
    KeepingTable kept; ///< by the sources of a day
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
    const QStringList faults = sourceFaults(made);
    if (!faults.isEmpty())
        throw std::runtime_error(
            (source.name + " was not made as it should: " + faults.join("; ")).toStdString());
    const QVector<ExportOptions> tried = optionsFor(source, choice.coreOnly);
    for (const ExportOptions &options : tried) {
        if (totals.seen++ % choice.every != 0)
            continue;
        const Outcome outcome = runExport(made, options, environment);
        const QString name = source.name + ": " + nameOf(options);
        if (source.isOfDay)
            totals.kept.add(outcome.target, outcome.findings);
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

/// Whether the page at \a path says what was measured.
bool isDocumented(const QString &path, const KeepingTable &measured, bool isWhole, QTextStream &report)
{
    QFile page(path);
    if (!page.open(QIODevice::ReadOnly)) {
        report << "export-matrix: " << path << ": " << page.errorString() << Qt::endl;
        return false;
    }
    const KeepingTable documented = KeepingTable::fromMarkdown(QString::fromUtf8(page.readAll()));
    const QStringList differences = measured.differences(documented, isWhole);
    for (const QString &difference : differences)
        report << "DOCUMENT " << difference << Qt::endl;
    return differences.isEmpty() && !documented.isEmpty();
}

void writeTable(const QString &path, const KeepingTable &table)
{
    QFile page(path);
    if (!page.open(QIODevice::WriteOnly) || page.write(table.toMarkdown().toUtf8()) < 0)
        throw std::runtime_error((path + ": " + page.errorString()).toStdString());
}

int run(const QCommandLineParser &options, QTextStream &report)
{
    for (const char *tool : {"ffmpeg.exe", "ffmpeg", "ffprobe", "mediainfo", "sndfile-metadata-get"}) {
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
    const QVector<SourceFile> sources = options.isSet("day") ? dayFiles() : allSources();
    for (const SourceFile &source : sources) {
        if (!options.isSet("source") || options.values("source").contains(source.name))
            exportAll(source, folder.path(), choice, environment, totals, report);
        if (options.isSet("table"))
            writeTable(options.value("table"), totals.kept);
    }
    report << totals.right << " right, " << totals.refused << " refused as they must be, " << totals.wrong
           << " wrong" << Qt::endl;
    const bool isWhole =
        options.isSet("day") && !options.isSet("source") && choice.every == 1 && !choice.coreOnly;
    if (options.isSet("document") && !isDocumented(options.value("document"), totals.kept, isWhole, report))
        return 1;
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
    options.addOption({"day", "The files of a large day instead of the matrix."});
    options.addOption({"document", "Compare what was kept with the table in the page <file>.", "file"});
    options.addOption({"every", "Only one of <count> exports, evenly spread.", "count", "1"});
    options.addOption({"source", "Only the source called <name>; may be given again.", "name"});
    options.addOption({"table",
                       "Write what was kept as a table into <file>, brought up to date source by source.",
                       "file"});
    options.addOption({"tools", "Let ffmpeg.exe find the media tools in <folder> first.", "folder"});
    options.process(application);
    try {
        return run(options, report);
    } catch (const std::exception &problem) {
        report << "export-matrix: " << problem.what() << Qt::endl;
        return 2;
    }
}
