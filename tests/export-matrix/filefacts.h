// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QVector>

namespace exportmatrix
{

/// Groups of facts that a media file records in addition to its pictures and samples.
enum class FactGroup {
    CreationTime,
    Notes,  ///< title, comment, artist and other words of people
    Camera, ///< who made the camera, which one, its software
    Place,
    QuickTimeKeys, ///< the "com.apple.quicktime." names
    Reel,
    StreamNames,
    StreamNotes, ///< what else a stream records
    Languages,
    Chapters,
    DataTracks,
    ColourTags,
    HdrLuminance,
    BextText,    ///< description, originator, reference, date, time, identifier
    BextHistory, ///< coding history
    BextLoudness,
    IxmlScene,  ///< all of iXML but what the other groups say
    IxmlTracks, ///< of the tracks that are kept
    IxmlSpeed,
    Cues, ///< markers and their labels
    OtherChunks,
    InfoText, ///< the notes of WAV files
    Count
};

/// A name of \a group for people.
QString nameOf(FactGroup group);

/// One fact of a file.
struct Fact {
    FactGroup group = FactGroup::Notes;
    QString name; ///< unique within the group
    QString value;

    bool operator==(const Fact &) const = default;
};

using Facts = QVector<Fact>;

/// The fact of \a group called \a name in \a facts; nullptr without one.
const Fact *find(const Facts &facts, FactGroup group, const QString &name);

/// The facts in \a probe, the probe tool's report of streams, chapters and the file. Its audio streams are
/// numbered as \a audioNumbers says. What names the program that wrote a file, or identifies that one file,
/// is no fact about the shoot, and neither is a timecode.
Facts factsOfProbe(const QJsonObject &probe, const QVector<int> &audioNumbers);

/// The luminance that \a tracks, mediainfo's report, give for the mastering display and the content.
Facts luminanceFacts(const QJsonArray &tracks);

} // namespace exportmatrix
