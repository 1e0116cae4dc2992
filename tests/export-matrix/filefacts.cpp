// SPDX-License-Identifier: MIT
#include "tests/export-matrix/filefacts.h"

#include <QDateTime>
#include <QSet>

#include <algorithm>
#include <array>

namespace exportmatrix
{
namespace
{

struct GroupName {
    FactGroup group;
    const char *name;
};

constexpr std::array groupNames{
    GroupName{FactGroup::CreationTime, "Date and time of the recording"},
    GroupName{FactGroup::Notes, "Title, comment and other notes"},
    GroupName{FactGroup::Camera, "Make, model and software of the camera"},
    GroupName{FactGroup::Place, "Place"},
    GroupName{FactGroup::QuickTimeKeys, "QuickTime keys"},
    GroupName{FactGroup::Reel, "Reel name"},
    GroupName{FactGroup::StreamNames, "Names of the tracks"},
    GroupName{FactGroup::StreamNotes, "Other notes of the tracks"},
    GroupName{FactGroup::Languages, "Languages of the tracks"},
    GroupName{FactGroup::Chapters, "Chapters with their titles"},
    GroupName{FactGroup::DataTracks, "Data tracks"},
    GroupName{FactGroup::ColourTags, "Range, primaries, transfer and matrix"},
    GroupName{FactGroup::HdrLuminance, "HDR10 luminance of display and content"},
    GroupName{FactGroup::BextText, "bext: description, originator, reference, date, time, UMID"},
    GroupName{FactGroup::BextHistory, "bext: coding history"},
    GroupName{FactGroup::BextLoudness, "bext: loudness"},
    GroupName{FactGroup::IxmlScene, "iXML: scene, take, tape, notes and the rest"},
    GroupName{FactGroup::IxmlTracks, "iXML: names of the kept tracks"},
    GroupName{FactGroup::IxmlSpeed, "iXML: start and speed"},
    GroupName{FactGroup::Cues, "Markers and their labels"},
    GroupName{FactGroup::OtherChunks, "Chunks axml and _PMX"},
    GroupName{FactGroup::InfoText, "Notes of WAV files (INFO)"},
};
static_assert(groupNames.size() == static_cast<std::size_t>(FactGroup::Count));

/// Names the program that wrote the file, the file itself, or a timecode.
bool isOfTheFile(const QString &tag)
{
    static const QSet<QString> names{"encoder",
                                     "major_brand",
                                     "minor_version",
                                     "compatible_brands",
                                     "vendor_id",
                                     "timecode",
                                     "company_name",
                                     "product_name",
                                     "product_version_num",
                                     "product_version",
                                     "product_uid",
                                     "uid",
                                     "generation_uid",
                                     "application_platform",
                                     "toolkit_version_num",
                                     "rotate",
                                     "track_name",
                                     "operational_pattern_ul",
                                     "modification_date",
                                     "material_package_name",
                                     "data_type"};
    return names.contains(tag) || tag.endsWith("umid");
}

QString without(const QString &prefix, const QString &name)
{
    return name.startsWith(prefix) ? name.mid(prefix.size()) : name;
}

/// Who plays a QuickTime file finds a key under either of its names.
QString plainName(const QString &note)
{
    return without("com.apple.quicktime.", note);
}

FactGroup groupOf(const QString &tag)
{
    static const QSet<QString> camera{"make", "model", "software", "firmware"};
    if (tag == "creation_time")
        return FactGroup::CreationTime;
    if (tag.startsWith("com.apple.quicktime."))
        return FactGroup::QuickTimeKeys;
    if (tag.startsWith("location"))
        return FactGroup::Place;
    if (tag == "reel_name")
        return FactGroup::Reel;
    return camera.contains(tag) ? FactGroup::Camera : FactGroup::Notes;
}

QString valueOf(FactGroup group, const QString &text)
{
    if (group != FactGroup::CreationTime)
        return text;
    return QDateTime::fromString(text, Qt::ISODate).toUTC().toString(Qt::ISODate);
}

void add(Facts &facts, FactGroup group, const QString &name, const QString &value)
{
    if (!value.isEmpty() && !find(facts, group, name))
        facts += Fact{group, name, value};
}

void addTags(Facts &facts, const QJsonObject &tags)
{
    for (auto tag = tags.begin(); tag != tags.end(); ++tag) {
        const QString note = without("comment_", tag.key()); // as MXF files call it
        if (isOfTheFile(note))
            continue;
        const FactGroup group = groupOf(note);
        add(facts, group, plainName(note), valueOf(group, tag.value().toString()));
    }
    // In MXF files it is the date of the package.
    if (tags.contains("modification_date") && tags["modification_date"].toString().left(4).toInt() > 0)
        add(facts, FactGroup::CreationTime, "creation_time",
            valueOf(FactGroup::CreationTime, tags["modification_date"].toString()));
}

void addStreamTags(Facts &facts, const QString &stream, const QJsonObject &tags)
{
    for (auto tag = tags.begin(); tag != tags.end(); ++tag) {
        const QString value = tag.value().toString();
        if (isOfTheFile(tag.key()) || tag.key() == "creation_time")
            continue;
        if (tag.key() == "reel_name")
            add(facts, FactGroup::Reel, "reel_name", value);
        else if (tag.key() == "handler_name")
            add(facts, FactGroup::StreamNames, stream, value);
        else if (tag.key() != "language")
            add(facts, FactGroup::StreamNotes, stream + ' ' + tag.key(), value);
        else if (value != "und")
            add(facts, FactGroup::Languages, stream, value);
    }
}

void addColours(Facts &facts, const QJsonObject &picture)
{
    for (const char *name : {"color_range", "color_primaries", "color_transfer", "color_space"}) {
        const QString value = picture[QLatin1String(name)].toString();
        if (value != "unknown" && value != "reserved")
            add(facts, FactGroup::ColourTags, name, value);
    }
    // Players take it for granted.
    add(facts, FactGroup::ColourTags, "color_range",
        picture["pix_fmt"].toString().startsWith("yuvj") ? "pc" : "tv");
}

void addChapters(Facts &facts, const QJsonArray &chapters)
{
    for (int i = 0; i < chapters.size(); ++i) {
        const QJsonObject chapter = chapters.at(i).toObject();
        add(facts, FactGroup::Chapters, QString("chapter %1").arg(i),
            QString("%1 from %2 s")
                .arg(chapter["tags"].toObject()["title"].toString())
                .arg(chapter["start_time"].toString().toDouble(), 0, 'f', 2));
    }
}

} // namespace

QString nameOf(FactGroup group)
{
    const auto *const found = std::find_if(groupNames.begin(), groupNames.end(),
                                           [group](const GroupName &name) { return name.group == group; });
    return found->name;
}

const Fact *find(const Facts &facts, FactGroup group, const QString &name)
{
    const auto found = std::find_if(facts.begin(), facts.end(), [&](const Fact &fact) {
        return fact.group == group && fact.name == name;
    });
    return found == facts.end() ? nullptr : &*found;
}

Facts factsOfProbe(const QJsonObject &probe, const QVector<int> &audioNumbers)
{
    Facts facts;
    addTags(facts, probe["format"].toObject()["tags"].toObject());
    int audio = 0;
    const QJsonArray streams = probe["streams"].toArray();
    for (const QJsonValue &value : streams) {
        const QJsonObject stream = value.toObject();
        const QString type = stream["codec_type"].toString();
        const QJsonObject tags = stream["tags"].toObject();
        const QString tag = stream["codec_tag_string"].toString();
        const bool isCover = stream["disposition"].toObject()["attached_pic"].toInt() != 0;
        if (type == "audio")
            addStreamTags(facts, QString("audio %1").arg(audioNumbers.value(audio++, -1)), tags);
        else if (type == "video" && !isCover && !find(facts, FactGroup::StreamNames, "picture"))
            addStreamTags(facts, "picture", tags);
        if (type == "video" && !isCover)
            addColours(facts, stream);
        if (type == "data" && tag == "tmcd")
            add(facts, FactGroup::Reel, "reel_name", tags["reel_name"].toString());
        else if (type == "data" && tag != "text")
            add(facts, FactGroup::DataTracks, tag, tags["handler_name"].toString("data"));
    }
    addChapters(facts, probe["chapters"].toArray());
    return facts;
}

Facts luminanceFacts(const QJsonArray &tracks)
{
    Facts facts;
    for (const QJsonValue &value : tracks) {
        const QJsonObject track = value.toObject();
        if (track["@type"] != "Video")
            continue;
        for (const char *name : {"MasteringDisplay_Luminance", "MaxCLL", "MaxFALL"})
            add(facts, FactGroup::HdrLuminance, name, track[QLatin1String(name)].toString());
    }
    return facts;
}

} // namespace exportmatrix
