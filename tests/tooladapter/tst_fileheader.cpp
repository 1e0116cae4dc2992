// SPDX-License-Identifier: MIT
#include "tooladapter/fileheader.h"

#include <QByteArray>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace tooladapter;

namespace
{

QByteArray big(quint64 number, int size)
{
    QByteArray bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift);
    return bytes;
}

QByteArray little(quint64 number, int size)
{
    QByteArray bytes = big(number, size);
    std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

QByteArray zeros(int count)
{
    return QByteArray(count, '\0');
}

// QuickTime

QByteArray atom(const QByteArray &type, const QByteArray &content)
{
    return big(quint64(content.size()) + 8, 4) + type + content;
}

QByteArray longAtom(const QByteArray &type, const QByteArray &content)
{
    return big(1, 4) + type + big(quint64(content.size()) + 16, 8) + content;
}

/// A media or movie header that says \a length, in units of a second's \a scale part.
QByteArray timeHeader(const QByteArray &type, quint64 length, quint64 scale)
{
    return atom(type, zeros(12) + big(scale, 4) + big(length, 4) + zeros(16));
}

QByteArray longTimeHeader(const QByteArray &type, quint64 length, quint64 scale)
{
    return atom(type, big(1, 1) + zeros(19) + big(scale, 4) + big(length, 8));
}

/// A list atom with \a count entries.
QByteArray list(const QByteArray &type, int count, const QByteArray &entries)
{
    return atom(type, zeros(4) + big(quint64(count), 4) + entries);
}

/// An edit list that begins with \a empty and goes on with \a length, in the movie's units.
QByteArray edits(quint64 empty, quint64 length)
{
    const QByteArray media = big(length, 4) + zeros(8);
    const QByteArray nothing = big(empty, 4) + big(0xffffffff, 4) + zeros(4);
    return atom("edts", empty > 0 ? list("elst", 2, nothing + media) : list("elst", 1, media));
}

QByteArray track(const QByteArray &kind, const QByteArray &header, const QByteArray &description,
                 const QByteArray &edit = {}, const QByteArray &samples = {})
{
    const QByteArray table = atom("stbl", list("stsd", 1, description) + samples);
    return atom("trak", edit + atom("mdia", header + atom("hdlr", zeros(8) + kind + zeros(12)) +
                                                atom("minf", table)));
}

QByteArray soundDescription(quint64 channels)
{
    return atom("in24", zeros(8) + big(1, 2) + zeros(6) + big(channels, 2) + zeros(10));
}

QByteArray longSoundDescription(quint64 channels)
{
    return atom("lpcm", zeros(8) + big(2, 2) + zeros(6) + big(3, 2) + zeros(22) + big(channels, 4));
}

QByteArray timecodeDescription(quint64 nominalRate, bool dropFrame)
{
    return atom("tmcd", zeros(12) + big(dropFrame ? 1 : 0, 4) + zeros(8) + big(nominalRate, 1) + zeros(1));
}

constexpr quint64 sampleAt = 8; // the timecode's frame number: the first content of a file

/// A movie of \a tracks behind the timecode's frame number \a frame.
QByteArray movie(const QByteArray &tracks, quint64 frame = 0)
{
    return atom("mdat", big(frame, 4)) + atom("moov", timeHeader("mvhd", 0, 1000) + tracks);
}

// MXF

QByteArray packet(const QByteArray &key, const QByteArray &value)
{
    return QByteArray::fromHex(key) + big(0x83, 1) + big(quint64(value.size()), 3) + value;
}

QByteArray set(const QByteArray &kind, const QByteArray &properties)
{
    return packet("060e2b34025301010d0101010101" + kind + "00", properties);
}

QByteArray property(quint64 tag, const QByteArray &value)
{
    return big(tag, 2) + big(quint64(value.size()), 2) + value;
}

/// An MXF file whose header holds \a sets; \a status 4 = closed.
QByteArray mxf(const QByteArray &sets, int status = 4)
{
    const QByteArray fill = packet("060e2b34010101020301021001000000", zeros(30));
    const QByteArray primer = packet("060e2b34020501010d01020101050100", zeros(8));
    const QByteArray body = packet("060e2b34020501010d01020101030400", zeros(80)); // its metadata ends here
    const auto header = [&](quint64 footer) {
        return packet("060e2b34020501010d01020101020" + QByteArray::number(status) + "00",
                      zeros(24) + big(footer, 8) + zeros(48));
    };
    const QByteArray content = fill + primer + sets + fill + body;
    const auto footer = quint64(header(0).size() + content.size());
    const QByteArray end = packet("060e2b34020501010d01020101110100", zeros(24));
    return header(footer) + content + packet("060e2b34020501010d01020101040400", zeros(80)) +
           end.left(end.size() - 4) + big(quint64(end.size()), 4);
}

QByteArray mxfTrack(quint64 numerator, quint64 denominator)
{
    return set("3b", property(0x4b01, big(numerator, 4) + big(denominator, 4)));
}

QByteArray mxfSequence(quint64 length)
{
    return set("0f", property(0x0201, zeros(16)) + property(0x0202, big(length, 8)));
}

QByteArray mxfTimecode(quint64 frame, quint64 nominalRate, bool dropFrame)
{
    return set("14", property(0x1501, big(frame, 8)) + property(0x1502, big(nominalRate, 2)) +
                         property(0x1503, big(dropFrame ? 1 : 0, 1)));
}

QByteArray mxfSound(quint64 channels)
{
    return set("48", property(0x3d07, big(channels, 4)));
}

// WAV

QByteArray chunk(const QByteArray &name, const QByteArray &content)
{
    return name + little(quint64(content.size()), 4) + content + zeros(content.size() % 2);
}

QByteArray wave(const QByteArray &chunks, const QByteArray &kind = "RIFF")
{
    return kind + little(quint64(chunks.size()) + 4, 4) + "WAVE" + chunks;
}

QByteArray format(quint64 channels, quint64 bytesPerSecond)
{
    return chunk("fmt ",
                 little(1, 2) + little(channels, 2) + little(8000, 4) + little(bytesPerSecond, 4) + zeros(4));
}

constexpr quint64 tenElevenTwelve = 36672; // [s] 10:11:12

/// What was read, as one text.
QString textOf(const Source &file)
{
    QStringList parts;
    for (const Stream &stream : file.streams) {
        const double end = stream.duration > 0.0 ? stream.duration : file.duration;
        QString part = stream.kind == Stream::Kind::Picture ? "picture" : "other";
        if (stream.kind == Stream::Kind::Audio)
            part = QString("%1 channels").arg(stream.channels);
        parts += part + QString(" %1 s").arg(end);
    }
    const std::string timecode = file.startTimecode();
    return parts.join(", ") + (timecode.empty() ? QString() : " from " + QString::fromStdString(timecode));
}

} // namespace

class TestFileHeader : public QObject
{
    Q_OBJECT

private slots:
    void headersAreRead_data();
    void headersAreRead();
    void aFileThatIsCutAnywhereIsNotWhole_data();
    void aFileThatIsCutAnywhereIsNotWhole();
    void whatIsNotWholeIsNotRead_data();
    void whatIsNotWholeIsNotRead();

private:
    std::optional<Source> read(const QString &suffix, const QByteArray &content);

    QTemporaryDir folder;
};

std::optional<Source> TestFileHeader::read(const QString &suffix, const QByteArray &content)
{
    const QString path = folder.filePath("file" + suffix);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
    file.close();
    return readFileHeader(QFile::encodeName(path).toStdString());
}

void TestFileHeader::headersAreRead_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected");

    const auto quickTime = [](const char *name, const QByteArray &tracks, const QString &expected,
                              quint64 frame = 0) {
        QTest::newRow(name) << ".MOV" << movie(tracks, frame) << expected;
    };
    const QByteArray second = timeHeader("mdhd", 48000, 48000);
    const QByteArray picture = track("vide", timeHeader("mdhd", 50, 25), zeros(86));
    quickTime("picture and sound", picture + track("soun", second, soundDescription(2)),
              "picture 2 s, 2 channels 1 s");
    quickTime("tracks end where their edits end",
              track("vide", second, zeros(86), edits(500, 1000)) +
                  track("soun", second, soundDescription(1), edits(0, 990)),
              "picture 1.5 s, 1 channels 0.99 s");
    quickTime("sixteen channels", track("soun", second, longSoundDescription(16)), "16 channels 1 s");
    quickTime("a duration of 64 bits",
              track("vide", longTimeHeader("mdhd", quint64{90000} * 86400, 90000), zeros(86)),
              "picture 86400 s");
    const QByteArray place = list("stco", 1, big(sampleAt, 4));
    quickTime("timecode", track("tmcd", second, timecodeDescription(25, false), {}, place),
              "other 1 s from 10:11:12:13", tenElevenTwelve * 25 + 13);
    quickTime("drop-frame timecode, at a place of 64 bits",
              track("tmcd", second, timecodeDescription(30, true), {}, list("co64", 1, big(sampleAt, 8))),
              "other 1 s from 00:10:00;00", 17982);
    QTest::newRow("an atom whose length has 64 bits")
        << ".mov" << longAtom("mdat", zeros(100)) + atom("moov", timeHeader("mvhd", 0, 1000) + picture)
        << "picture 2 s";

    const QByteArray tracks =
        mxfTrack(30000, 1001) + mxfSequence(60) + mxfTimecode(tenElevenTwelve * 30, 30, false);
    QTest::newRow("MXF") << ".MXF" << mxf(tracks + set("51", {}) + mxfSound(1) + mxfSound(3))
                         << "picture 2.002 s, 1 channels 2.002 s, 3 channels 2.002 s from 10:11:12:00";
    QTest::newRow("MXF ends with its shortest track")
        << ".mxf" << mxf(mxfTrack(25, 1) + mxfSequence(50) + mxfSequence(49) + set("28", {}))
        << "picture 1.96 s";

    QTest::newRow("WAV") << ".WAV" << wave(format(2, 8000) + chunk("data", zeros(4000)))
                         << "2 channels 0.5 s";
    QTest::newRow("WAV with chunks before and behind")
        << ".wav"
        << wave(chunk("bext", zeros(603)) + format(1, 8000) + chunk("data", zeros(4001)) +
                chunk("LIST", zeros(10)))
        << "1 channels 0.500125 s";
    QTest::newRow("RF64") << ".WAV"
                          << wave(chunk("ds64", little(0, 8) + little(2000, 8) + zeros(12)) +
                                      format(8, 8000) + "data" + little(0xffffffff, 4) + zeros(2000),
                                  "RF64")
                          << "8 channels 0.25 s";
}

void TestFileHeader::headersAreRead()
{
    QFETCH(QString, suffix);
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    const auto file = read(suffix, content);
    QVERIFY(file.has_value());
    QCOMPARE(textOf(*file), expected);
}

void TestFileHeader::aFileThatIsCutAnywhereIsNotWhole_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("content");
    const QByteArray second = timeHeader("mdhd", 48000, 48000);
    QTest::newRow("QuickTime") << ".MOV" << movie(track("soun", second, soundDescription(2)));
    QTest::newRow("MXF") << ".MXF" << mxf(mxfTrack(25, 1) + mxfSequence(50) + set("28", {}) + mxfSound(2));
    QTest::newRow("WAV") << ".WAV" << wave(format(2, 8000) + chunk("data", zeros(100)));
}

void TestFileHeader::aFileThatIsCutAnywhereIsNotWhole()
{
    QFETCH(QString, suffix);
    QFETCH(QByteArray, content);
    QVERIFY(read(suffix, content).has_value());
    for (int size = 0; size < content.size(); ++size)
        QVERIFY2(!read(suffix, content.left(size)), qPrintable(QString("cut to %1 bytes").arg(size)));
}

void TestFileHeader::whatIsNotWholeIsNotRead_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("content");
    const QByteArray sets = mxfTrack(25, 1) + mxfSequence(50) + set("28", {});
    QTest::newRow("QuickTime without its index") << ".MOV" << atom("mdat", zeros(100));
    QTest::newRow("a header without a time scale")
        << ".MOV" << movie(track("vide", timeHeader("mdhd", 50, 0), zeros(86)));
    QTest::newRow("an atom longer than its parent")
        << ".MOV" << atom("moov", big(100, 4) + "trak") + atom("free", zeros(200));
    QTest::newRow("an atom shorter than its own header") << ".MOV" << atom("moov", big(4, 4) + "trak");
    QTest::newRow("an MXF header that is still open") << ".MXF" << mxf(sets, 1);
    QTest::newRow("MXF without a rate") << ".MXF" << mxf(mxfSequence(50) + set("28", {}));
    QTest::newRow("an MXF track of no rate") << ".MXF" << mxf(mxfTrack(25, 0) + mxfSequence(50));
    QTest::newRow("an MXF sound without its channels") << ".MXF" << mxf(sets + set("48", {}));
    QTest::newRow("a length in too many bytes")
        << ".MXF" << QByteArray::fromHex("060e2b34020501010d01020101020400") + big(0x89, 1) + zeros(200);
    QTest::newRow("WAV without a format") << ".WAV" << wave(chunk("data", zeros(100)));
    QTest::newRow("another kind of RIFF file") << ".WAV"
                                               << "RIFF" + little(100, 4) + "AVI " + zeros(100);
    QTest::newRow("a kind of file that is not read here") << ".mp4" << movie({});
    QTest::newRow("an empty file") << ".MOV" << QByteArray();
}

void TestFileHeader::whatIsNotWholeIsNotRead()
{
    QFETCH(QString, suffix);
    QFETCH(QByteArray, content);
    QVERIFY(!read(suffix, content));
    QVERIFY(!readFileHeader(folder.filePath("missing" + suffix).toStdString()));
}

QTEST_APPLESS_MAIN(TestFileHeader)
#include "tst_fileheader.moc"
