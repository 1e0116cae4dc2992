// SPDX-License-Identifier: MIT
#include "tests/export-matrix/wavechunks.h"

#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>
#include <QtEndian>

#include <algorithm>
#include <stdexcept>

namespace exportmatrix::wavechunks
{
namespace
{

constexpr int headerSize = 12;
constexpr int chunkHeaderSize = 8;
constexpr int bextTextEnd = 602; ///< [bytes] the coding history begins here

QByteArray littleEndian(quint32 number, int bytes = 4)
{
    QByteArray text(4, '\0');
    qToLittleEndian(number, text.data());
    return text.left(bytes);
}

quint32 numberAt(const QByteArray &bytes, int position)
{
    return qFromLittleEndian<quint32>(bytes.constData() + position);
}

QByteArray padded(QByteArray text, int length)
{
    return text.leftJustified(length, '\0', true);
}

QByteArray bytesOf(const Chunk &chunk)
{
    QByteArray bytes = chunk.first + littleEndian(quint32(chunk.second.size())) + chunk.second;
    return chunk.second.size() % 2 ? bytes + '\0' : bytes;
}

QByteArray bextOfRecorder(int sampleRate)
{
    QByteArray umid(64, '\x2a');
    const quint32 reference = quint32(3600 * sampleRate);
    const QByteArray loudness = littleEndian(0xf6a0, 2) + littleEndian(700, 2) + littleEndian(0xffd0, 2) +
                                littleEndian(0xf800, 2) + littleEndian(0xf780, 2);
    return padded("sSPEED=025.000-ND\r\nsSCENE=12A\r\nsTAKE=3\r\nsTAPE=DAY04\r\n", 256) +
           padded("Field recorder", 32) + padded("FRFIELD0120240503090000", 32) + "2024-05-03" + "09:00:00" +
           littleEndian(reference) + littleEndian(0) + littleEndian(2, 2) + umid + loudness +
           QByteArray(180, '\0') + "A=PCM,F=48000,W=24,M=poly,T=field recorder\r\n";
}

QByteArray ixmlOfRecorder(int channels, int timecodeChannel, int sampleRate, int bits)
{
    QString tracks;
    for (int i = 0; i < channels; ++i) {
        const QString name = i == timecodeChannel ? "TC" : QString("Mic & %1").arg(i + 1).toHtmlEscaped();
        tracks += QString("<TRACK><CHANNEL_INDEX>%1</CHANNEL_INDEX><INTERLEAVE_INDEX>%1</INTERLEAVE_INDEX>"
                          "<NAME>%2</NAME><FUNCTION/></TRACK>\n")
                      .arg(QString::number(i + 1), name);
    }
    return QString(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<BWFXML>\n<IXML_VERSION>1.61</IXML_VERSION>\n"
               "<PROJECT>Feature</PROJECT>\n<SCENE>12A</SCENE>\n<TAKE>3</TAKE>\n<TAPE>DAY04</TAPE>\n"
               "<CIRCLED>TRUE</CIRCLED>\n<NOTE>plane &amp; wind</NOTE>\n<FILE_UID>FR0120240503</FILE_UID>\n"
               "<SPEED>\n<NOTE/>\n<MASTER_SPEED>25/1</MASTER_SPEED>\n<CURRENT_SPEED>25/1</CURRENT_SPEED>\n"
               "<TIMECODE_RATE>25/1</TIMECODE_RATE>\n<TIMECODE_FLAG>NDF</TIMECODE_FLAG>\n"
               "<FILE_SAMPLE_RATE>%2</FILE_SAMPLE_RATE>\n<AUDIO_BIT_DEPTH>%5</AUDIO_BIT_DEPTH>\n"
               "<DIGITIZER_SAMPLE_RATE>%2</DIGITIZER_SAMPLE_RATE>\n"
               "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>\n"
               "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>%3</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>\n"
               "<TIMESTAMP_SAMPLE_RATE>%2</TIMESTAMP_SAMPLE_RATE>\n</SPEED>\n"
               "<TRACK_LIST>\n<TRACK_COUNT>%1</TRACK_COUNT>\n%4</TRACK_LIST>\n"
               "<USER>boom operator: Kim</USER>\n</BWFXML>\n")
        .arg(QString::number(channels), QString::number(sampleRate), QString::number(3600 * sampleRate),
             tracks, QString::number(bits))
        .toUtf8();
}

/// One marker at sample 480, and its label.
QVector<Chunk> marker()
{
    const QByteArray cue = littleEndian(1) + littleEndian(1) + littleEndian(480) + "data" + littleEndian(0) +
                           littleEndian(0) + littleEndian(480);
    const QByteArray label = bytesOf({"labl", littleEndian(1) + QByteArray("slate\0", 6)});
    return {{"cue ", cue}, {"LIST", "adtl" + label}};
}

QString textAt(const QByteArray &bytes, int position, int length)
{
    const QByteArray part = bytes.mid(position, length);
    return QString::fromLatin1(part.left(int(qstrnlen(part.constData(), uint(part.size())))));
}

void add(Facts &facts, FactGroup group, const QString &name, const QString &value)
{
    if (!value.isEmpty())
        facts += Fact{group, name, value};
}

/// The description of a take gives its speed, which follows the timecode.
const QRegularExpression &speedWord()
{
    static const QRegularExpression word("(?<=sSPEED=)\\S*");
    return word;
}

QString withoutSpeed(QString text)
{
    return text.remove(speedWord());
}

void addBext(Facts &facts, const QByteArray &bext)
{
    if (bext.size() < bextTextEnd)
        return;
    const QString description = textAt(bext, 0, 256);
    add(facts, FactGroup::IxmlSpeed, "bext speed", speedWord().match(description).captured());
    add(facts, FactGroup::BextText, "description", withoutSpeed(description));
    add(facts, FactGroup::BextText, "originator", textAt(bext, 256, 32));
    add(facts, FactGroup::BextText, "originator reference", textAt(bext, 288, 32));
    add(facts, FactGroup::BextText, "date", textAt(bext, 320, 10));
    add(facts, FactGroup::BextText, "time", textAt(bext, 330, 8));
    const QByteArray umid = bext.mid(348, 64);
    if (umid.count('\0') < umid.size())
        add(facts, FactGroup::BextText, "UMID", umid.toHex());
    const QByteArray loudness = bext.mid(412, 10);
    if (loudness.count('\0') < loudness.size())
        add(facts, FactGroup::BextLoudness, "loudness", loudness.toHex());
    add(facts, FactGroup::BextHistory, "coding history", textAt(bext, bextTextEnd, -1));
}

FactGroup groupOfIxml(const QString &path)
{
    const bool isSpeed =
        path.contains("/TIMESTAMP_") || path.contains("/TIMECODE_") || path.endsWith("_SPEED");
    return isSpeed ? FactGroup::IxmlSpeed : FactGroup::IxmlScene;
}

/// Reads a "TRACK" whose beginning has just been read.
QMap<QString, QString> readTrack(QXmlStreamReader &xml)
{
    QMap<QString, QString> track;
    while (xml.readNextStartElement()) {
        const QString name = xml.name().toString();
        track[name] = xml.readElementText(QXmlStreamReader::SkipChildElements);
    }
    return track;
}

void addIxml(Facts &facts, const QByteArray &content, const QVector<int> &channels)
{
    QXmlStreamReader xml(content);
    QStringList path;
    QString text;
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            if (xml.name() == QLatin1String("TRACK")) {
                const QMap<QString, QString> track = readTrack(xml);
                const int place = track["INTERLEAVE_INDEX"].toInt() - 1;
                add(facts, FactGroup::IxmlTracks, QString("channel %1").arg(channels.value(place, -1)),
                    track["NAME"]);
                break;
            }
            path += xml.name().toString();
            text.clear();
            break;
        case QXmlStreamReader::Characters:
            text += xml.text();
            break;
        case QXmlStreamReader::EndElement:
            if (path.size() > 1 && path.last() == "TRACK_COUNT") {
                add(facts, FactGroup::IxmlTracks, "number matches the channels",
                    text.toInt() == channels.size() ? "yes" : "no");
            } else if (path.size() > 1 && !text.trimmed().isEmpty()) {
                add(facts, groupOfIxml(path.join('/')), path.mid(1).join('/'), text);
            }
            text.clear();
            path.removeLast();
            break;
        default:
            break;
        }
    }
    if (xml.hasError())
        add(facts, FactGroup::IxmlScene, "damage", xml.errorString());
}

void addInfo(Facts &facts, const QByteArray &list)
{
    int position = 4;
    while (position + chunkHeaderSize <= list.size()) {
        const int size = int(numberAt(list, position + 4));
        const QString name = textAt(list, position, 4);
        if (name != "ISFT") // the program that wrote the file
            add(facts, FactGroup::InfoText, name, textAt(list, position + chunkHeaderSize, size));
        position += chunkHeaderSize + size + size % 2;
    }
}

} // namespace

QVector<Chunk> ofRecorder(int channels, int timecodeChannel, int sampleRate, int bits)
{
    QVector<Chunk> chunks{{"bext", bextOfRecorder(sampleRate)},
                          {"iXML", ixmlOfRecorder(channels, timecodeChannel, sampleRate, bits)}};
    chunks += marker();
    chunks += Chunk{"axml", "<ebuCoreMain/>"};
    chunks += Chunk{"_PMX", "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"/>"};
    chunks += Chunk{"LIST", "INFO" + bytesOf({"INAM", QByteArray("12A-3\0", 6)}) +
                                bytesOf({"IART", QByteArray("Sound department\0", 17)})};
    return chunks;
}

QByteArray withChunks(const QByteArray &file, const QVector<Chunk> &chunks, bool isBefore)
{
    QByteArray added;
    QSet<QByteArray> names;
    for (const Chunk &chunk : chunks) {
        added += bytesOf(chunk);
        names += chunk.first;
    }
    const bool isLong = file.startsWith("RF64");
    if (file.size() < headerSize || (!isLong && !file.startsWith("RIFF")))
        throw std::runtime_error("no WAV file");
    QByteArray result = file.left(headerSize);
    int position = headerSize;
    while (position + chunkHeaderSize <= file.size()) {
        const QByteArray name = file.mid(position, 4);
        quint32 size = numberAt(file, position + 4);
        if (name == "data" && size == 0xffffffffU)
            size = numberAt(file, headerSize + chunkHeaderSize + 8); // in "ds64"
        const int whole = chunkHeaderSize + int(size + size % 2);
        if (name == "data" && isBefore)
            result += added;
        if (!names.contains(name))
            result += file.mid(position, whole);
        position += whole;
    }
    if (!isBefore)
        result += added;
    const quint32 size = quint32(result.size() - chunkHeaderSize);
    if (isLong)
        result.replace(headerSize + chunkHeaderSize, 4, littleEndian(size));
    else
        result.replace(4, 4, littleEndian(size));
    return result;
}

QVector<Chunk> chunksOf(const QByteArray &file)
{
    QVector<Chunk> chunks;
    if (!file.startsWith("RF64") && !file.startsWith("RIFF"))
        return chunks;
    int position = headerSize;
    while (position + chunkHeaderSize <= file.size()) {
        const QByteArray name = file.mid(position, 4);
        qint64 size = numberAt(file, position + 4);
        if (name == "data" && size == 0xffffffffLL)
            size = numberAt(file, headerSize + chunkHeaderSize + 8); // in "ds64"
        if (name != "ds64")
            chunks +=
                Chunk{name, name == "data" ? QByteArray() : file.mid(position + chunkHeaderSize, int(size))};
        position += chunkHeaderSize + int(std::min<qint64>(size + size % 2, file.size()));
    }
    return chunks;
}

Facts factsOf(const QVector<Chunk> &chunks, const QVector<int> &channels)
{
    Facts facts;
    for (const auto &[name, content] : chunks) {
        if (name == "bext")
            addBext(facts, content);
        else if (name == "iXML")
            addIxml(facts, content, channels);
        else if (name == "LIST" && content.startsWith("INFO"))
            addInfo(facts, content);
        else if (name == "cue " || (name == "LIST" && content.startsWith("adtl")))
            add(facts, FactGroup::Cues, QString::fromLatin1(name), content.toHex());
        else if (name == "axml" || name == "_PMX")
            add(facts, FactGroup::OtherChunks, QString::fromLatin1(name), content.toHex());
    }
    return facts;
}

Facts factsOfReport(const QString &report)
{
    constexpr int nameLength = 23; // [characters] then comes a colon
    static const QMap<QString, FactGroup> groups{{"Loudness value", FactGroup::BextLoudness},
                                                 {"Loudness range", FactGroup::BextLoudness},
                                                 {"Max. true peak level", FactGroup::BextLoudness},
                                                 {"Max. momentary level", FactGroup::BextLoudness},
                                                 {"Max. short term level", FactGroup::BextLoudness},
                                                 {"Coding history", FactGroup::BextHistory},
                                                 {"Name", FactGroup::InfoText},
                                                 {"Artist", FactGroup::InfoText}};
    Facts facts;
    const QStringList lines = report.trimmed().split('\n');
    for (const QString &line : lines) {
        if (line.indexOf(':') == nameLength) {
            const QString name = line.left(nameLength).trimmed();
            facts += Fact{groups.value(name, FactGroup::BextText), "sndfile: " + name,
                          withoutSpeed(line.mid(nameLength + 1).trimmed())};
        } else if (!facts.isEmpty()) {
            facts.last().value += '\n' + withoutSpeed(line.trimmed());
        }
    }
    facts.erase(
        std::remove_if(facts.begin(), facts.end(), [](const Fact &fact) { return fact.value.isEmpty(); }),
        facts.end());
    return facts;
}

} // namespace exportmatrix::wavechunks
