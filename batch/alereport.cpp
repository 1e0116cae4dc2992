// SPDX-License-Identifier: MIT
#include "batch/alereport.h"

#include "batch/framecount.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QMap>

#include <algorithm>
#include <cmath>
#include <utility>

namespace alereport
{

namespace
{

using framecount::Rate;

const QStringList &columns()
{
    static const QStringList all{"Name",        "Tracks",      "Start", "End",       "Duration",
                                 "Source File", "Source Path", "Audio", "User Bits", "Comments"};
    return all;
}

/// The rate that the timecode of \a record was recorded at.
Rate soundRate(const QJsonObject &record)
{
    const double rate = record["frameRate"].toDouble();
    const int base = static_cast<int>(std::ceil(rate - 0.001));
    return {base, rate < base - 0.01, record["dropFrame"].toBool()};
}

/// The rate that \a record counts at in the log: the picture's, or without one the timecode's.
Rate loggedRate(const QJsonObject &record)
{
    const Rate sound = soundRate(record);
    auto rate = framecount::pictureRate(record["pictureRate"].toString());
    if (!rate)
        return sound;
    rate->dropFrame = sound.dropFrame;
    return *rate;
}

QString headingRate(const Rate &rate)
{
    QString text = QString::number(rate.framesPerSecond(), 'f', 3);
    while (text.endsWith('0'))
        text.chop(1);
    return text.endsWith('.') ? text.chopped(1) : text;
}

/// Tabs and line ends are the form's own.
QString cell(const QString &text)
{
    return text.simplified();
}

QString line(const QStringList &cells)
{
    return cells.join('\t') + "\r\n";
}

QString tracks(const QJsonObject &record)
{
    QString names = record["pictureCodec"].isNull() ? QString() : QString("V");
    for (int channel = 1; channel <= record["soundChannels"].toInt(); ++channel)
        names += 'A' + QString::number(channel);
    return names;
}

QString comment(const QJsonObject &record)
{
    if (!record["linkedFrom"].isNull())
        return "timecode of " + record["linkedFrom"].toString();
    const int second = record["foundAtSecond"].toInt();
    return second > 0 ? QString("timecode found at second %1").arg(second) : QString();
}

QString dataLine(const QJsonObject &record)
{
    const Rate rate = loggedRate(record);
    const QString start = framecount::atRate(record["audioTimecode"].toString(), soundRate(record), rate);
    const auto first = framecount::fromText(start, rate).value_or(0);
    const auto length =
        static_cast<qint64>(std::llround(record["durationSeconds"].toDouble() * rate.framesPerSecond()));
    const QString exported = record["exportPath"].toString();
    const QString path = exported.isEmpty() ? record["path"].toString() : exported;
    return line({cell(QFileInfo(path).completeBaseName()), tracks(record), start,
                 framecount::toText(first + length, rate), framecount::toText(length, rate),
                 cell(QFileInfo(path).fileName()), cell(path), cell(record["soundCodecs"].toString()),
                 record["userBits"].toString(), cell(comment(record))});
}

QString videoFormat(int height)
{
    switch (height) {
    case 480:
    case 486:
        return "NTSC";
    case 576:
        return "PAL";
    case 720:
    case 1080:
        return QString::number(height);
    default:
        return "CUSTOM";
    }
}

QByteArray log(const QString &rate, const QVector<QJsonObject> &records)
{
    int height = 1080;
    for (const QJsonObject &record : records) {
        if (!record["pictureHeight"].isNull())
            height = record["pictureHeight"].toInt();
    }
    QString text = line({"Heading"}) + line({"FIELD_DELIM", "TABS"}) +
                   line({"VIDEO_FORMAT", videoFormat(height)}) + line({"AUDIO_FORMAT", "48khz"}) +
                   line({"FPS", rate}) + line({}) + line({"Column"}) + line(columns()) + line({}) +
                   line({"Data"});
    for (const QJsonObject &record : records)
        text += dataLine(record);
    return text.toUtf8();
}

} // namespace

QVector<Log> make(const QJsonArray &records)
{
    QMap<QString, QVector<QJsonObject>> byRate;
    for (const QJsonValue &value : records) {
        const QJsonObject record = value.toObject();
        if (!record["audioTimecode"].toString().isEmpty())
            byRate[headingRate(loggedRate(record))] += record;
    }
    if (byRate.isEmpty())
        byRate["25"] = {};
    QStringList rates = byRate.keys();
    std::stable_sort(rates.begin(), rates.end(), [&byRate](const QString &first, const QString &second) {
        return byRate.value(first).size() > byRate.value(second).size();
    });
    QVector<Log> logs;
    for (const QString &rate : std::as_const(rates))
        logs += Log{rate, log(rate, byRate.value(rate))};
    return logs;
}

} // namespace alereport
