// SPDX-License-Identifier: MIT
#include "tests/export-matrix/exportcase.h"

#include "app/records/optiontables.h"
#include "ffmpeg/exportarguments.h"
#include "ffmpeg/exporthints.h"
#include "testkit/fixtures/toolrun.h"
#include "tests/export-matrix/judge.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace exportmatrix
{
namespace
{

Outcome wrong(const QString &text)
{
    return {Outcome::Kind::Wrong, text, Target::CopiedMov, {}};
}

/// \a path is the file that was to be written.
Outcome outcomeOfRefusal(const ToolRun &run, const Expectation &expected, const QString &path)
{
    QString line = QString::fromUtf8(run.errors).trimmed();
    line = line.mid(line.lastIndexOf('\n') + 1);
    if (expected.refusal.isEmpty())
        return wrong(QString("ended with %1: %2").arg(run.exitCode).arg(line));
    if (!line.contains(expected.refusal))
        return wrong("refused for another reason: " + line);
    if (QFileInfo::exists(path))
        return wrong("left a file under its final name after: " + line);
    if (expected.leavesHalf && !QFileInfo::exists(path + ".incomplete"))
        return wrong("left no half file after: " + line);
    return {Outcome::Kind::Refused, line, expected.target, {}};
}

} // namespace

QVector<ExportOptions> optionsFor(const SourceFile &source, bool coreOnly)
{
    const bool isSound = source.name.endsWith(".wav");
    QVector<ExportOptions> chosen;
    for (int videoType = 0; videoType <= 8; ++videoType) {
        for (int audioType = 0; audioType <= 2; ++audioType) {
            for (const bool mute : {true, false}) {
                // Sound files come out the same for every picture.
                if (isSound && videoType > 0)
                    continue;
                if (source.isOneSoundEach && audioType != (mute ? 2 : 0))
                    continue;
                const bool hasFields = source.shape.fields != Fields::Progressive;
                const bool isMpeg2Tried = videoType == 1 && (!source.isOfDay || hasFields);
                const bool isCoded = (isMpeg2Tried || videoType == 8) && audioType == 2 && mute;
                const bool isCopied = videoType == 5 && (mute ? audioType != 1 : audioType == 0);
                const bool isCore = isSound || isCoded || isCopied;
                if (coreOnly && (!source.isCore || !isCore))
                    continue;
                ExportOptions options;
                options.videoType = videoType;
                options.audioType = audioType;
                options.muteAudioTC = mute;
                options.progressSteps = 15;
                chosen += options;
            }
        }
    }
    return chosen;
}

QString nameOf(const ExportOptions &options)
{
    return QString("%1, %2%3")
        .arg(exportTypes.key(options.videoType), audioTypes.key(options.audioType),
             options.muteAudioTC ? ", without timecode" : "");
}

Outcome runExport(const MadeFile &source, const ExportOptions &options,
                  const QProcessEnvironment &environment)
{
    const FileData &record = source.record;
    const QTemporaryDir folder;
    ExportOptions written = options;
    written.exportDir = folder.path();
    const auto command = exportarguments::build(record, written, QFileInfo(record.absoluteFilePath).size(),
                                                [](const QString &path) { return QFileInfo(path).isFile(); });
    QProcessEnvironment toolEnvironment = environment;
    exporthints::insertInto(toolEnvironment, record, written);

    const QString tool = QStandardPaths::findExecutable("ffmpeg.exe");
    const ToolRun run = runTool(tool, command.arguments, toolEnvironment);
    const Expectation expected = expectationOf(source, written);
    if (!run.ended)
        return wrong("did not end by itself");
    if (run.exitCode != 0)
        return outcomeOfRefusal(run, expected, command.outputPath);
    if (!expected.refusal.isEmpty())
        return wrong("should have been refused: " + expected.refusal);
    const Judgement judgement = judge(command.outputPath, expected, source);
    return {judgement.faults.isEmpty() ? Outcome::Kind::Right : Outcome::Kind::Wrong,
            judgement.faults.join("; "), expected.target, judgement.findings};
}

} // namespace exportmatrix
