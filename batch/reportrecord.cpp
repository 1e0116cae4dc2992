// SPDX-License-Identifier: MIT
#include "batch/reportrecord.h"

#include "app/records/jsonnumbers.h"
#include "batch/outcome.h"
#include "filelist/celltexts.h"

#include <cmath>

namespace reportrecord
{

namespace
{

QJsonValue textOrNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonValue countOrNull(int count)
{
    return count > 0 ? QJsonValue(count) : QJsonValue();
}

void addPicture(QJsonObject &record, const QJsonObject &picture)
{
    const QString rate = picture["avg_frame_rate"].toString();
    record["pictureRate"] = textOrNull(rate.startsWith("0/") ? picture["r_frame_rate"].toString() : rate);
    record["pictureWidth"] = countOrNull(picture["width"].toInt());
    record["pictureHeight"] = countOrNull(picture["height"].toInt());
    record["pictureCodec"] = textOrNull(picture["codec_name"].toString());
}

void addSound(QJsonObject &record, const QJsonArray &streams)
{
    QStringList codecs;
    int channels = 0;
    for (const QJsonValue &stream : streams) {
        codecs += stream.toObject()["codec_name"].toString();
        channels += stream.toObject()["channels"].toInt();
    }
    codecs.removeDuplicates();
    record["soundCodecs"] = textOrNull(codecs.join(' '));
    record["soundStreams"] = streams.size();
    record["soundChannels"] = channels;
}

/// What the reader has said of \a file itself; of a sibling, only what holds for both.
void addReading(QJsonObject &record, const FileData &file, bool isOwn)
{
    const QJsonObject &reading = file.audioTCResult;
    const QJsonObject stream = file.streams.at(file.audioStreamIndex).toObject();
    record["audioTimecode"] = file.audioTC;
    record["frameRate"] = std::round(celltexts::frameRate(reading) * 1000.0) / 1000.0;
    record["dropFrame"] = reading["NTSC"].toBool() && reading["DropFrame"].toBool();
    record["samplesSinceMidnight"] = wholeNumber(reading["SamplesSinceMidnight"]);
    const int sampleRate = isOwn ? stream["sample_rate"].toString().toInt() : reading["SampleRate"].toInt();
    record["sampleRate"] = countOrNull(sampleRate);
    if (!isOwn)
        return;
    record["stream"] = file.audioStreamIndex;
    record["channel"] = file.audioChannel + 1;
    record["confidence"] = reading["Confidence"];
    record["levelDbfs"] = reading["LevelDbfs"];
    record["clockOffsetPpm"] = reading["FrameRateErrorPpm"];
    record["userBits"] = reading["UserBits"];
}

} // namespace

const QStringList &keys()
{
    static const QStringList all{
        "name",          "path",         "result",        "reason",         "durationSeconds",
        "sizeBytes",     "pictureRate",  "pictureWidth",  "pictureHeight",  "pictureCodec",
        "soundCodecs",   "soundStreams", "soundChannels", "fileTimecode",   "audioTimecode",
        "frameRate",     "dropFrame",    "stream",        "channel",        "samplesSinceMidnight",
        "sampleRate",    "confidence",   "levelDbfs",     "clockOffsetPpm", "userBits",
        "foundAtSecond", "linkedFrom",   "exportResult",  "exportStart",    "verdict",
        "exportPath",
    };
    return all;
}

QJsonObject make(const FileData &file, const RowStatus &status, qint64 size, const ExportState &exported,
                 const LaterFinding &later)
{
    QJsonObject record;
    for (const QString &key : keys())
        record[key] = QJsonValue();
    const Outcome outcome = outcomeOf(file, status);
    record["name"] = file.fileName;
    record["path"] = file.absoluteFilePath;
    record["result"] = wordFor(outcome);
    const QString exportReason = reasonFor(exported);
    record["reason"] = textOrNull(exportReason.isEmpty() ? reasonFor(file, status, later) : exportReason);
    if (size >= 0)
        record["sizeBytes"] = size;
    if (!file.streams.isEmpty()) {
        record["durationSeconds"] = file.duration;
        addPicture(record, file.mainStream);
        addSound(record, file.audioStreams);
    }
    record["fileTimecode"] = textOrNull(file.hasFileTC ? file.fileTC : QString());
    if (outcome == Outcome::Found || outcome == Outcome::Linked)
        addReading(record, file, outcome == Outcome::Found);
    if (outcome == Outcome::Found)
        record["foundAtSecond"] = later.kind == LaterFinding::Kind::Found ? later.second : 0;
    if (outcome == Outcome::Linked)
        record["linkedFrom"] = status.sourceName;
    record["exportResult"] = textOrNull(wordFor(exported));
    record["exportStart"] = textOrNull(exported.start);
    record["verdict"] = textOrNull(exported.verdict);
    record["exportPath"] = textOrNull(exported.path);
    return record;
}

bool isWrong(const QJsonObject &record)
{
    const QString exported = record["exportResult"].toString();
    return record["result"] == "failed" || exported == "failed" || exported == "unverified" ||
           exported == "not done";
}

} // namespace reportrecord
