// SPDX-License-Identifier: MIT
#include "batch/batchoptions.h"

#include "app/records/applicationinfo.h"
#include "app/records/optiontables.h"
#include "batch/reports.h"

#include <QCommandLineParser>

#include <algorithm>
#include <array>
#include <utility>

namespace
{

// In the order of their codes, which are those of the choice boxes.
constexpr std::array algorithms{"auto", "low", "mid", "high", "slope"};
constexpr std::array videoTypes{"pass",     "mxf-mpeg2",    "mxf-dnxhd-36",  "mxf-dnxhd-115", "mxf-dnxhd-175",
                                "mov-pass", "mov-dnxhd-36", "mov-dnxhd-115", "mov-dnxhd-175"};
constexpr std::array soundTypes{"pass", "pcm16", "pcm24"};

constexpr int firstMxfType = 1;
constexpr int lastMxfType = 4;

const QCommandLineOption &helpOption()
{
    static const QCommandLineOption option({"h", "help"}, "Shows this help.");
    return option;
}

const QCommandLineOption &versionOption()
{
    static const QCommandLineOption option("version", "Shows the version.");
    return option;
}

const QCommandLineOption &reportOption()
{
    static const QCommandLineOption option(
        "report", "Writes a report at the end: .csv, .json, .ale or .html. May be given several times.",
        "FILE");
    return option;
}

const QCommandLineOption &toOption()
{
    static const QCommandLineOption option("to", "Writes the new files into this folder.", "FOLDER");
    return option;
}

const QCommandLineOption &videoTypeOption()
{
    static const QCommandLineOption option(
        "video-type",
        "Picture: pass (as it is, the default), mov-pass, mxf-mpeg2, or mxf- or mov- with dnxhd-36, "
        "dnxhd-115 or dnxhd-175. The words of the window count too.",
        "TYPE");
    return option;
}

const QCommandLineOption &audioTypeOption()
{
    static const QCommandLineOption option(
        "audio-type", "Sound: pass (as it is, the default; not in MXF), pcm16 (the default in MXF) or pcm24.",
        "TYPE");
    return option;
}

const QCommandLineOption &keepTimecodeOption()
{
    static const QCommandLineOption option("keep-timecode-channel",
                                           "Keeps the timecode audible. Otherwise its channel is left out.");
    return option;
}

const QCommandLineOption &noVerifyOption()
{
    static const QCommandLineOption option(
        "no-verify", "Does not check the new files. Otherwise each is compared with its source.");
    return option;
}

const QCommandLineOption &resumeOption()
{
    static const QCommandLineOption option(
        "resume", "Keeps what an earlier run has exported and verified, and does the rest.");
    return option;
}

const QCommandLineOption &algorithmOption()
{
    static const QCommandLineOption option("algorithm", "Reads with auto, low, mid, high or slope.", "NAME");
    return option;
}

const QCommandLineOption &channelOption()
{
    static const QCommandLineOption option("channel", "Reads this channel only: 1 to 8, or auto.", "NUMBER");
    return option;
}

const QCommandLineOption &frameRateOption()
{
    static const QCommandLineOption option("frame-rate",
                                           "Reads this rate only: 23.98, 24, 25, 29.97, 30 or auto.", "RATE");
    return option;
}

const QCommandLineOption &deepOption()
{
    static const QCommandLineOption option(
        "deep", "Searches files without timecode in their first three seconds to their end.");
    return option;
}

const QCommandLineOption &jobsOption()
{
    static const QCommandLineOption option("jobs", "Runs at most this many tools together, 1 to 45.",
                                           "NUMBER");
    return option;
}

const QCommandLineOption &quietOption()
{
    static const QCommandLineOption option("quiet", "Shows neither table nor progress.");
    return option;
}

void addOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        "Reads the timecode that sound carries on an audio channel (LTC), without a window.\n\n"
        "  ostrel-batch read [options] PATH...   shows the timecode of each file and writes no media\n"
        "  ostrel-batch export --to FOLDER [options] PATH...\n"
        "                                        writes new files that start with it\n"
        "  ostrel-batch join --report FILE REPORT.json...\n"
        "                                        makes one report of several\n\n"
        "Exit code: 0 done, 1 some files failed, 2 wrong usage, 3 a tool is missing.");
    parser.addPositionalArgument("command", "read, export or join");
    parser.addPositionalArgument("PATH", "Files and folders with all their sub-folders.", "PATH...");
    parser.addOptions({helpOption(), versionOption(), reportOption(), algorithmOption(), channelOption(),
                       frameRateOption(), deepOption(), toOption(), videoTypeOption(), audioTypeOption(),
                       keepTimecodeOption(), noVerifyOption(), resumeOption(), jobsOption(), quietOption()});
}

/// The code of \a text in \a table, whose own words (such as "channel 2" or "25.00 FPS") count too.
template <typename Code>
std::optional<Code> codeOf(const QMap<QString, Code> &table, const QString &text, const QString &pattern)
{
    for (auto entry = table.begin(); entry != table.end(); ++entry) {
        if (entry.key().compare(text, Qt::CaseInsensitive) == 0 ||
            entry.key().compare(pattern.arg(text), Qt::CaseInsensitive) == 0)
            return entry.value();
    }
    return std::nullopt;
}

std::optional<double> frameRateOf(const QString &text)
{
    if (text == "23.976")
        return frameRates.value("23.98 FPS");
    if (const auto rate = codeOf(frameRates, text, "%1 FPS"))
        return rate;
    return codeOf(frameRates, text, "%1.00 FPS");
}

template <typename Names>
std::optional<int> placeOf(const QString &text, const Names &names)
{
    const auto *const found = std::find(names.begin(), names.end(), text.toLower());
    if (found == names.end())
        return std::nullopt;
    return static_cast<int>(found - names.begin());
}

std::optional<int> algorithmOf(const QString &text)
{
    return placeOf(text, algorithms);
}

std::optional<int> videoTypeOf(const QString &text)
{
    const auto code = placeOf(text, videoTypes);
    return code ? code : codeOf(exportTypes, text, "%1");
}

std::optional<int> soundTypeOf(const QString &text)
{
    const auto code = placeOf(text, soundTypes);
    return code ? code : codeOf(audioTypes, text, "%1");
}

/// Reads the settings of one run out of a parser that has understood the arguments. The first thing that is
/// wrong is kept as the reason.
class Reader
{
public:
    explicit Reader(const QCommandLineParser &parser) : parser(parser) {}

    BatchOptions options;
    QString reason;

    void readCommon()
    {
        options.quiet = parser.isSet(quietOption());
        options.reports = parser.values(reportOption());
        for (const QString &report : std::as_const(options.reports)) {
            if (!reports::isReportName(report))
                refuse("a report ends in .csv, .json, .ale or .html, not \"" + report + '"');
        }
        options.jobs = value<int>(jobsOption(), options.jobs, [](const QString &text) {
            bool isNumber = false;
            const int number = text.toInt(&isNumber);
            const bool isInRange = isNumber && number >= 1 && number <= JobQueues::maximumRunning;
            return isInRange ? std::make_optional(number) : std::nullopt;
        });
    }

    void readReading()
    {
        AudioTCOptions reading;
        reading.allFiles = true;
        reading.algorithm = value<int>(algorithmOption(), 0, algorithmOf);
        reading.channel = value<int>(channelOption(), -1, [](const QString &text) {
            return codeOf(audioChannels, text, "channel %1");
        });
        reading.frameRate = value<double>(frameRateOption(), -1.0, frameRateOf);
        if (parser.isSet(algorithmOption()) || parser.isSet(channelOption()) ||
            parser.isSet(frameRateOption()))
            options.reading = reading;
        options.deep = parser.isSet(deepOption());
    }

    void readExport(const std::function<PathKind(const QString &)> &kindOf)
    {
        ExportOptions exporting;
        exporting.exportAll = true;
        exporting.exportDir = parser.value(toOption());
        if (!parser.isSet(toOption()))
            refuse("give a folder with --to");
        else if (kindOf(exporting.exportDir) != PathKind::Folder)
            refuse("no such folder: " + exporting.exportDir);
        exporting.videoType = value<int>(videoTypeOption(), 0, videoTypeOf);
        const bool isMxf = exporting.videoType >= firstMxfType && exporting.videoType <= lastMxfType;
        exporting.audioType = value<int>(audioTypeOption(), isMxf ? 1 : 0, soundTypeOf);
        if (isMxf && exporting.audioType == 0)
            refuse("--audio-type cannot be \"" + parser.value(audioTypeOption()) + "\" in MXF");
        exporting.muteAudioTC = !parser.isSet(keepTimecodeOption());
        options.exporting = exporting;
        options.verifying = !parser.isSet(noVerifyOption());
        options.resuming = parser.isSet(resumeOption());
    }

    /// For a command that does not export.
    void refuseExportOptions(const QString &command)
    {
        for (const QCommandLineOption &option : {toOption(), videoTypeOption(), audioTypeOption(),
                                                 keepTimecodeOption(), noVerifyOption(), resumeOption()}) {
            if (parser.isSet(option))
                refuse('"' + command + "\" takes no --" + option.names().constFirst());
        }
    }

    void readPaths(const QStringList &paths, const std::function<PathKind(const QString &)> &kindOf)
    {
        options.paths = paths;
        if (paths.isEmpty())
            refuse("give files or folders");
        for (const QString &path : paths) {
            if (kindOf(path) == PathKind::Nothing)
                refuse("no such file or folder: " + path);
        }
    }

private:
    template <typename Value, typename Convert>
    Value value(const QCommandLineOption &option, Value otherwise, Convert convert)
    {
        if (!parser.isSet(option))
            return otherwise;
        const QString text = parser.value(option);
        const auto converted = convert(text);
        if (!converted)
            refuse("--" + option.names().constLast() + " cannot be \"" + text + '"');
        return converted.value_or(otherwise);
    }

    void refuse(const QString &text)
    {
        if (reason.isEmpty())
            reason = text;
    }

    const QCommandLineParser &parser;
};

BatchCommand parseJoin(const QCommandLineParser &parser, const QStringList &paths,
                       const std::function<PathKind(const QString &)> &kindOf)
{
    Reader reader(parser);
    reader.readCommon();
    reader.readPaths(paths, kindOf);
    reader.options.isJoin = true;
    if (!reader.reason.isEmpty())
        return BatchRefusal{reader.reason};
    const QStringList given = parser.optionNames();
    for (const QString &name : given) {
        if (name != "report" && name != "quiet")
            return BatchRefusal{"\"join\" takes no --" + name};
    }
    if (reader.options.reports.isEmpty())
        return BatchRefusal{"give the new report with --report"};
    return reader.options;
}

} // namespace

BatchCommand parseBatchCommand(const QStringList &arguments,
                               const std::function<PathKind(const QString &)> &kindOf)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments))
        return BatchRefusal{parser.errorText()};
    if (parser.isSet(helpOption()))
        return BatchAnswer{parser.helpText()};
    if (parser.isSet(versionOption()))
        return BatchAnswer{
            QString("ostrel-batch %1.%2\n").arg(applicationMajorVersion).arg(applicationMinorVersion)};
    QStringList paths = parser.positionalArguments();
    if (paths.isEmpty())
        return BatchRefusal{"give a command; see --help"};
    const QString command = paths.takeFirst();
    if (command == "join")
        return parseJoin(parser, paths, kindOf);
    if (command != "read" && command != "export")
        return BatchRefusal{"no such command: " + command + "; see --help"};

    Reader reader(parser);
    reader.readCommon();
    reader.readReading();
    if (command == "export")
        reader.readExport(kindOf);
    else
        reader.refuseExportOptions(command);
    reader.readPaths(paths, kindOf);
    if (!reader.reason.isEmpty())
        return BatchRefusal{reader.reason};
    return reader.options;
}
