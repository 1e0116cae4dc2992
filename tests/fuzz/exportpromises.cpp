// SPDX-License-Identifier: MIT
#include "tests/fuzz/exportpromises.h"

#include "app/records/optiontables.h"
#include "control/readerfilename.h"
#include "ffmpeg/exportarguments.h"
#include "ffmpeg/exporthints.h"
#include "ffmpeg/toolarguments.h"
#include "tooladapter/rules/argumentlist.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <limits>

using fuzz::require;

namespace exportpromises
{

namespace
{

const char *const sourceFolder = "/card";
constexpr int lastName = 9999; // the number of the last name that is tried

bool matches(const QString &text, const char *pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

std::vector<std::string> plain(const QStringList &words)
{
    std::vector<std::string> result;
    for (const QString &word : words)
        result.push_back(word.toStdString());
    return result;
}

/// Requires that the adapter takes \a words for \a job and loses none of them.
void checkAdapterKnows(const QStringList &words, tooladapter::Job job)
{
    const auto list = tooladapter::parseArguments(plain(words));
    require(list && tooladapter::jobOf(*list) == job, "the adapter knows the list", words.join('|'));
    require(tooladapter::renderArguments(*list) == plain(words), "the adapter loses no word",
            words.join('|'));
}

bool isAudioStream(const FileData &file, const QString &index)
{
    bool isNumber = false;
    const int stream = index.toInt(&isNumber);
    return isNumber && stream >= 0 && stream < file.streams.size() &&
           file.streams.at(stream).toObject()["codec_type"].toString().compare(QLatin1String("audio"),
                                                                               Qt::CaseInsensitive) == 0;
}

bool isChannelOfTimecodeStream(const FileData &file, const QString &value)
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern("-?0\\.([0-9]+)\\.-?[0-9]+(:0\\.[0-9]+)?"));
    const auto match = form.match(value);
    return match.hasMatch() && match.captured(1).toInt() == file.audioStreamIndex &&
           isAudioStream(file, match.captured(1));
}

bool isMetadata(const QString &value)
{
    return matches(value, "time_reference=-?[0-9]+") ||
           matches(value, "comment=sSPEED=0[0-9]+\\.[0-9]{3}-(DF|ND)");
}

/// Whether the tool understands the option \a name with \a value, for \a file.
bool isKnown(const FileData &file, const QString &name, const QString &value)
{
    if (name == "-map")
        return value == "0:v" || value == "-0:d" ||
               (value.startsWith("0:") && isAudioStream(file, value.mid(2)));
    if (name == "-map_channel")
        return isChannelOfTimecodeStream(file, value);
    if (name == "-acodec")
        return audioCodecRank.contains(value);
    if (name == "-r")
        return matches(value, "-?[0-9]+(/[0-9]+)?");
    if (name == "-timecode")
        return value == file.audioTC;
    if (name == "-metadata")
        return isMetadata(value);
    static const QSet<QString> fixed{"-vcodec copy",     "-vcodec mpeg2video", "-vcodec dnxhd",
                                     "-pix_fmt yuv422p", "-pix_fmt yuv422p10", "-s 1920x1080",
                                     "-write_bext 1",    "-map_metadata -1"};
    return fixed.contains(name + ' ' + value) || (name == "-b:v" && matches(value, "[1-9][0-9]{1,2}M"));
}

void checkOptions(const FileData &file, const QStringList &options)
{
    require(options.size() % 2 == 0, "every option has its value", options.join('|'));
    for (int i = 0; i + 1 < options.size(); i += 2)
        require(isKnown(file, options.at(i), options.at(i + 1)), "options are known to the tool",
                options.at(i) + ' ' + options.at(i + 1));
}

} // namespace

ExportOptions takeOptions(fuzz::Input &input)
{
    ExportOptions options;
    options.videoType = input.choice(10);
    options.audioType = input.choice(4);
    options.muteAudioTC = input.choice(2) == 1;
    options.exportDir = input.choice(2) == 1 ? "/out" : sourceFolder;
    options.progressSteps = static_cast<uint>(input.choice(16));
    return options;
}

FileData takeFile(fuzz::Input &input)
{
    QString name = QString::fromUtf8(input.line());
    name.remove('/').remove(QChar::Null);
    if (name.isEmpty() || name == "." || name == "..")
        name = "clip.mov"; // no file can be called so
    const QFileInfo info(QString(sourceFolder) + '/' + name);
    FileData file;
    file.fileName = info.fileName();
    file.baseName = info.baseName();
    file.suffix = info.suffix();
    file.absoluteFilePath = info.filePath();
    return file;
}

void checkExport(const FileData &file, const ExportOptions &options, int takenNames)
{
    QSet<QString> taken{file.absoluteFilePath};
    const auto isTaken = [&taken, takenNames](const QString &path) {
        if (taken.size() <= takenNames)
            taken += path;
        return taken.contains(path);
    };
    constexpr qint64 largestFile = std::numeric_limits<qint64>::max();
    const auto command = exportarguments::build(file, options, largestFile, isTaken);
    const QStringList &words = command.arguments;

    require(words.mid(0, 3) == QStringList{"-y", "-i", file.absoluteFilePath}, "the input comes first");
    require(words.size() >= 4 && words.last() == command.outputPath, "the output comes last");
    const QString folder = options.exportDir + '/';
    require(command.outputPath.startsWith(folder) && !command.outputPath.mid(folder.size()).contains('/') &&
                command.outputPath.size() > folder.size() + 1,
            "the output is a file in the export folder", command.outputPath);
    require(takenNames >= lastName || !taken.contains(command.outputPath), "no existing file is written to",
            command.outputPath);
    require(command.expectedOutputSize >= 0, "a size is none below zero");
    checkOptions(file, words.mid(3, words.size() - 4));
    checkAdapterKnows(words, tooladapter::Job::Export);

    const QString rate = exporthints::timecodeRate(file);
    require(rate.isEmpty() || matches(rate, "[1-9][0-9]*/(1|1001)"), "the timecode's rate is a rate", rate);
}

void checkExtraction(const FileData &file)
{
    const QString folder = "/tmp/OstrelSyncTemp/" + file.baseName;
    const QStringList words = toolarguments::audioExtraction(file, folder);
    const auto streams = toolarguments::audioStreams(file).size();
    const QStringList outputs = words.mid(words.size() - 3 * streams);
    QSet<QString> paths;
    for (int i = 0; i + 2 < outputs.size(); i += 3) {
        const QString &path = outputs.at(i + 2);
        require(outputs.at(i) == "-map" && isAudioStream(file, outputs.at(i + 1).mid(2)),
                "each audio stream is mapped", outputs.join('|'));
        const auto origin = ReaderFileName::parse(path);
        require(path.startsWith(folder + '/') && !path.mid(folder.size() + 1).contains('/'),
                "extracted audio goes to its folder", path);
        require("0:" + QString::number(origin.audioStream) == outputs.at(i + 1) &&
                    origin.row == file.rowNumber,
                "the name of extracted audio gives its origin", path);
        require(!paths.contains(path), "each stream has a file of its own", path);
        paths += path;
    }
    if (streams > 0)
        checkAdapterKnows(words, tooladapter::Job::Extraction);
}

} // namespace exportpromises
