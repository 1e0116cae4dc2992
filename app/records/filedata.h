// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QMetaType>
#include <QPair>
#include <QString>
#include <QVector>

namespace FD
{

/// One imported media file: what its name, the probe and the timecode reader say about it.
///
/// A plain value that crosses threads in queued signals. The file table keeps one per row; rowNumber travels
/// with a copy so that results find their row.
struct FileData {
    QString audioTC = QLatin1String(""); ///< timecode read from the audio, as the reader wrote it
    QString fileTC = QLatin1String("");  ///< the file's own start timecode; time of day for WAV files
    int linkedRow = -1;                  ///< row that a linked timecode was taken from; -1 = none
    int audioStreamIndex = -1;           ///< index in streams of the stream with the timecode; -1 = none
    int audioChannel = -1;               ///< channel in that stream, from 0; -1 = none
    QString tcChannelLayout;             ///< "channel_layout" of the stream with the timecode
    qint64 timeReference = 0;            ///< [samples since midnight] of WAV files
    bool hasAudioTC = false;             ///< carries an audio timecode that exports write
    bool hasFileTC = false;              ///< fileTC was set
    bool audioTCLinked = false;          ///< the audio timecode was taken over from a sibling file
    QString fileName;                    ///< name with extension, without folder
    QString baseName;                    ///< name up to the first dot
    QString suffix;                      ///< extension after the last dot
    QString absoluteFilePath;            ///< full path
    QDateTime lastModified;              ///< modification time
    QByteArray audioStreamMap;           ///< one byte per audio stream: its index in streams
    int audioChannelCount = 0;           ///< channels of all audio streams together; WAV files only
    QJsonObject mainStream;              ///< the last video stream
    QJsonArray audioStreams;             ///< the audio streams, in stream order
    QJsonArray streams;                  ///< the probe's "streams"
    QJsonObject format;                  ///< the probe's "format"
    QJsonObject audioTCResult;           ///< the timecode reader's result
    double duration = 0.0;               ///< [s], from the probe's format
    bool isGoPro = false;                ///< a stream's encoder tag names a GoPro camera
    bool audioTCPending = false;         ///< a timecode read for this file is outstanding
    int rowNumber = -1;                  ///< row of the file table; -1 = not in the table

    /// Stores \a text as the file's own timecode and sets hasFileTC.
    void setFileTC(const QString &text);

    /// Stores a timecode that was read: its \a text and where it was found, \a source = (index in streams,
    /// channel counted from 0). Takes tcChannelLayout from that stream; sets no flag.
    void setAudioTC(const QString &text, QPair<int, int> source);

    /// Takes over the timecode \a text and reader \a result of row \a row; sets audioTCLinked and hasAudioTC.
    void setLinkedAudioTC(int row, const QString &text, const QJsonObject &result);

    /// Stores the start position of a WAV file, \a samples since midnight (above 0) at \a sampleRate [Hz]
    /// (above 0), and makes it the file timecode "HH:MM:SS.mmm"; hours are not wrapped at 24.
    void setTimeReference(qint64 samples, int sampleRate);
};

} // namespace FD

using FD::FileData; // signals spell the record as it is registered, without its namespace

Q_DECLARE_METATYPE(FD::FileData)
