// SPDX-License-Identifier: MIT
#include "testkit/faketools/faketool_job.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

namespace
{

constexpr auto extractedFrom = "fakeExtractOf";
constexpr auto extractedStream = "stream";

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QJsonObject objectIn(const QString &path)
{
    return QJsonDocument::fromJson(contentOf(path)).object();
}

int ownPriority()
{
#ifdef Q_OS_UNIX
    return getpriority(PRIO_PROCESS, 0);
#else
    return 0;
#endif
}

QVector<FakeOutput> extractionOutputs(const QStringList &arguments)
{
    QVector<FakeOutput> outputs;
    for (int i = 0; i + 2 < arguments.size(); ++i) {
        if (arguments[i] == "-map")
            outputs += FakeOutput{arguments[i + 2], arguments[i + 1].section(':', 1).toInt()};
    }
    return outputs;
}

} // namespace

FakeJob FakeJob::fromArguments(const QString &tool, const QStringList &arguments)
{
    FakeJob job;
    job.tool = tool;
    job.arguments = arguments;
    if (tool.startsWith("ffprobe")) {
        job.name = "probe";
        job.input = arguments.value(arguments.size() - 1);
    } else if (tool.startsWith("ffmpeg")) {
        const bool extracts = arguments.contains("-guess_layout_max");
        job.name = extracts ? "extract" : "export";
        job.input = arguments.value(arguments.indexOf("-i") + 1);
        job.outputs = extracts ? extractionOutputs(arguments)
                               : QVector<FakeOutput>{{arguments.value(arguments.size() - 1)}};
    } else {
        job.name = "read";
        job.input = arguments.value(0);
    }

    job.media = job.input;
    if (job.name == "read") {
        const QJsonObject origin = objectIn(job.input);
        if (origin.contains(extractedFrom)) {
            job.media = origin[extractedFrom].toString();
            job.stream = origin[extractedStream].toInt();
        }
    }
    return job;
}

int FakeJob::noteCall() const
{
    int earlier = 0;
    const QString path = media + ".calls";
    const QList<QByteArray> lines = contentOf(path).split('\n');
    for (const QByteArray &line : lines) {
        const QJsonObject call = QJsonDocument::fromJson(line).object();
        if (call["job"].toString() == name && call["stream"].toInt(-1) == stream)
            ++earlier;
    }

    QJsonObject call{{"tool", tool}, {"job", name}, {"arguments", QJsonArray::fromStringList(arguments)}};
    if (stream >= 0)
        call["stream"] = stream;
    if (qEnvironmentVariableIsSet("OSTREL_TIMECODE_CHANNEL"))
        call["timecodeChannel"] = qEnvironmentVariable("OSTREL_TIMECODE_CHANNEL");
    if (qEnvironmentVariableIsSet("OSTREL_TIMECODE_RATE"))
        call["timecodeRate"] = qEnvironmentVariable("OSTREL_TIMECODE_RATE");
    if (qEnvironmentVariableIsSet("OSTREL_SOURCE"))
        call["source"] = qEnvironmentVariable("OSTREL_SOURCE");
    call["processId"] = QCoreApplication::applicationPid();
    call["priority"] = ownPriority();
    call["oomScore"] = contentOf("/proc/self/oom_score_adj").trimmed().toInt();
    appendLine(path, call);
    return earlier;
}

QJsonObject FakeJob::plan(int earlierCalls) const
{
    QJsonObject plans = objectIn(media + ".fake.json");
    if (plans.isEmpty())
        plans = objectIn(QFileInfo(media).path() + "/default.fake.json");

    const QString ofStream = name + ':' + QString::number(stream);
    const QJsonValue part = plans.contains(ofStream) ? plans[ofStream] : plans[name];
    if (!part.isArray())
        return part.toObject();
    const QJsonArray turns = part.toArray();
    return turns.at(qMin(earlierCalls, static_cast<int>(turns.size()) - 1)).toObject();
}

void appendLine(const QString &path, const QJsonObject &line)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        file.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
}

QByteArray extractContent(const FakeJob &job, int stream)
{
    return QJsonDocument(QJsonObject{{extractedFrom, job.media}, {extractedStream, stream}}).toJson();
}
