// SPDX-License-Identifier: MIT
#include "testkit/fixtures/toolrun.h"
#include "tests/tooladapter/chunks/wavebytes.h"
#include "tooladapter/chunks/keptchunks.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace tooladapter;
using namespace wavebytes;
using namespace std::string_literals;

Q_DECLARE_METATYPE(std::string)

namespace
{

constexpr int frames = 4801; // odd, so that some sounds have an odd length
constexpr quint64 newStart = 1'747'000'123;

/// The bytes of \a frames samples of each of the \a channels, all different.
std::string soundOf(const QList<int> &channels, int bytesPerSample, bool isFloat)
{
    std::string sound;
    for (int frame = 0; frame < frames; ++frame) {
        for (const int channel : channels) {
            const auto number = static_cast<std::uint32_t>(frame * 7919 + channel * 104729);
            if (isFloat) {
                const float sample = static_cast<float>(number % 20011) / 20011.0F - 0.5F;
                sound.append(reinterpret_cast<const char *>(&sample), sizeof sample);
            } else {
                sound += numberBytes(number, static_cast<std::size_t>(bytesPerSample));
            }
        }
    }
    return sound;
}

/// The iXML of a recorder, with a track for each of \a channels.
std::string ixmlOf(const QString &rate, const QString &flag, quint64 start, const QStringList &tracks)
{
    QString text = QString("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<BWFXML>\n <SCENE>12 \u00dc</SCENE>\n <TAKE>3</TAKE>\n <SPEED>\n"
                           "  <MASTER_SPEED>%1</MASTER_SPEED>\n  <CURRENT_SPEED>%1</CURRENT_SPEED>\n"
                           "  <TIMECODE_RATE>%1</TIMECODE_RATE>\n  <TIMECODE_FLAG>%2</TIMECODE_FLAG>\n"
                           "  <TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>%3</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>\n"
                           "  <TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>%4</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>\n"
                           "  <TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE>\n </SPEED>\n")
                       .arg(rate, flag)
                       .arg(start >> 32)
                       .arg(start & 0xffffffff);
    text += QString(" <TRACK_LIST>\n  <TRACK_COUNT>%1</TRACK_COUNT>\n").arg(tracks.size());
    for (int i = 0; i < tracks.size(); ++i) {
        text += QString("  <TRACK><CHANNEL_INDEX>%1</CHANNEL_INDEX><INTERLEAVE_INDEX>%1</INTERLEAVE_INDEX>"
                        "<NAME>%2</NAME></TRACK>\n")
                    .arg(i + 1)
                    .arg(tracks[i]);
    }
    return (text + " </TRACK_LIST>\n</BWFXML>\n").toStdString();
}

/// What a recording is made of.
struct Recording {
    QString codec = "pcm_s24le";
    int channels = 4;
    int bytesPerSample = 3;
    bool isFloat = false;
    bool isLong = false;
    std::string description = "sSCENE=12 sTAKE=3";

    QList<int> allChannels() const
    {
        QList<int> all;
        for (int channel = 0; channel < channels; ++channel)
            all += channel;
        return all;
    }
    QStringList tracks() const { return QStringList{"Boom", "TC", "Lav 1", "Lav 2"}.mid(0, channels); }
    NewChunk form() const { return {"fmt ", format(channels, 8 * bytesPerSample, 48000, isFloat ? 3 : 1)}; }
    NewChunk sound() const { return {"data", soundOf(allChannels(), bytesPerSample, isFloat)}; }
    NewChunk ixml() const { return {"iXML", ixmlOf("24/1", "NDF", 99, tracks())}; }
};

/// Chunks of odd lengths, kept byte for byte.
Chunks others()
{
    return {{"cue ", numberBytes(1, 4) + numberBytes(1, 4) + numberBytes(480, 4) + "data" +
                         std::string(8, '\0') + numberBytes(480, 4)},
            {"LIST", "adtllabl\x09\0\0\0\1\0\0\0Clap\0\0"s},
            {"_PMX", "<x:xmpmeta/>x"},
            {"axml", "<ebuCoreMain/>\n"}};
}

} // namespace

Q_DECLARE_METATYPE(Recording)

/// Real exports of a field recorder's files: what arrives, read back by other programs.
class TestBroadcastWave : public QObject, private ToolFolder
{
    Q_OBJECT

private slots:
    void initTestCase();
    void chunksArriveAndTheSoundStays_data();
    void chunksArriveAndTheSoundStays();
    void aLongFileIsReadByOthers();
    void theTrackThatIsLeftOutIsNotListed();
    void anExportWithoutTimecodeKeepsTheStart();
    void anotherDepthIsRecorded();
    void damagedChunksAreLeftOut_data();
    void damagedChunksAreLeftOut();
    void otherTypesHaveNoChunks();
    void aFullDiskIsAFailure();

private:
    void store(const std::string &content);
    std::string written() const;
    int exportRecording(const QString &codec, const QStringList &mapping, const QStringList &metadata);
    void compareMetadata();
    void comparePlayable();

    QStringList timecode{"-metadata", QString("time_reference=%1").arg(newStart), "-metadata",
                         "comment=sSPEED=029.970-DF"};
};

void TestBroadcastWave::store(const std::string &content)
{
    QFile file(folder.filePath("source.wav"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content.data(), static_cast<qint64>(content.size())),
             static_cast<qint64>(content.size()));
}

std::string TestBroadcastWave::written() const
{
    QFile file(folder.filePath("out.WAV"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

int TestBroadcastWave::exportRecording(const QString &codec, const QStringList &mapping,
                                       const QStringList &metadata)
{
    return run("ffmpeg.exe", QStringList{"-y", "-i", folder.filePath("source.wav"), "-write_bext", "1"} +
                                 mapping + QStringList{"-acodec", codec} + metadata + QStringList{"out.WAV"});
}

/// What other programs read must be what wavebytes::bext() has written, with the new start.
void TestBroadcastWave::compareMetadata()
{
    const std::vector<std::pair<const char *, const char *>> fields{
        {"--bext-description", "sSCENE=12 sTAKE=3"},
        {"--bext-originator", "Recorder"},
        {"--bext-orig-ref", "DE123 0001"},
        {"--bext-orig-date", "2026-05-01"},
        {"--bext-orig-time", "10:11:12"},
        {"--bext-loudness-value", "-23.00"},
        {"--bext-loudness-range", "5.12"},
        {"--bext-max-truepeak", "-1.00"},
        {"--bext-coding-hist", "A=PCM,F=48000,W=24,M=multi,T=Recorder"},
        {"--str-comment", "sSPEED=029.970-DF"}};
    for (const auto &[option, text] : fields) {
        QCOMPARE(run("sndfile-metadata-get", {option, "out.WAV"}), 0);
        QCOMPARE(QString::fromUtf8(output).section(": ", 1).trimmed(), QString(text));
    }

    QCOMPARE(run("mediainfo", {"--Output=JSON", "out.WAV"}), 0);
    const QJsonObject general =
        QJsonDocument::fromJson(output).object()["media"].toObject()["track"].toArray()[0].toObject();
    QCOMPARE(general["Description"].toString(), QString("sSCENE=12 sTAKE=3"));
    QCOMPARE(general["Producer"].toString(), QString("Recorder"));
    QCOMPARE(general["Encoded_Date"].toString(), QString("2026-05-01 10:11:12"));
    QCOMPARE(general["Comment"].toString(), QString("sSPEED=029.970-DF"));
    QVERIFY(general["extra"].toObject()["UMID"].toString().startsWith("0x1020304050607"));

    run("ffprobe",
        {"-v", "error", "-show_entries", "format_tags=time_reference", "-of", "csv=p=0", "out.WAV"});
    QCOMPARE(output.trimmed().toULongLong(), newStart);
}

/// The file must be one that every program takes without a word.
void TestBroadcastWave::comparePlayable()
{
    QCOMPARE(run("ffmpeg", {"-v", "warning", "-guess_layout_max", "0", "-i", "out.WAV", "-f", "null", "-"}),
             0);
    QCOMPARE(errors, QString());
    QCOMPARE(run("sndfile-info", {"out.WAV"}), 0);
    QVERIFY2(output.contains(QByteArray("Frames      : ") + QByteArray::number(frames)), output.constData());
    QVERIFY(chunksOf(bytesOf(written())).isWhole);
}

void TestBroadcastWave::initTestCase()
{
    for (const char *tool : {"ffmpeg", "sndfile-metadata-get", "mediainfo"})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), tool);
}

void TestBroadcastWave::chunksArriveAndTheSoundStays_data()
{
    QTest::addColumn<Recording>("recording");
    Recording sixteen;
    sixteen.codec = "pcm_s16le";
    sixteen.bytesPerSample = 2;
    Recording floating;
    floating.codec = "pcm_f32le";
    floating.bytesPerSample = 4;
    floating.isFloat = true;
    Recording odd; // 4801 x 3 bytes
    odd.channels = 1;
    Recording isLong;
    isLong.isLong = true;
    QTest::newRow("16 bit") << sixteen;
    QTest::newRow("24 bit") << Recording();
    QTest::newRow("float") << floating;
    QTest::newRow("sound of an odd length") << odd;
    QTest::newRow("RF64") << isLong;
}

void TestBroadcastWave::chunksArriveAndTheSoundStays()
{
    QFETCH(Recording, recording);
    Chunks all{{"bext", bext(123)}, recording.form(), recording.sound(), recording.ixml()};
    const Chunks byteForByte = others();
    all.insert(all.end(), byteForByte.begin(), byteForByte.end());
    store(recording.isLong ? rf64(all) : riff(all));
    QVERIFY2(exportRecording(recording.codec, {}, timecode) == 0, qPrintable(errors));

    const std::string file = written();
    QVERIFY(contentOf(file, "data") == recording.sound().content);
    QVERIFY(contentOf(file, "bext") == evened(bext(newStart)));
    QCOMPARE(contentOf(file, "iXML"), ixmlOf("30000/1001", "DF", newStart, recording.tracks()));
    QVERIFY(file.ends_with(bytesOf(byteForByte)));
    compareMetadata();
    comparePlayable();
}

/// The tool makes RF64 of more than 4 GiB only; this stands for it.
void TestBroadcastWave::aLongFileIsReadByOthers()
{
    const Recording recording;
    store(riff({recording.form(), {"bext", bext(123)}, recording.ixml(), recording.sound()}));
    QFile file(folder.filePath("out.WAV"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const std::string tool =
        field(std::string(), 338) + numberBytes(newStart, 8) + std::string(bext(0).size() - 346, '\0');
    const std::string comment = "INFOICMT\x12\0\0\0sSPEED=029.970-DF\0"s;
    const std::string content =
        rf64({recording.form(), {"bext", tool}, {"LIST", comment}, recording.sound()});
    QCOMPARE(file.write(content.data(), static_cast<qint64>(content.size())),
             static_cast<qint64>(content.size()));
    file.close();
    WaveChanges changes;
    changes.setsStart = true;
    keepChunks(folder.filePath("source.wav").toStdString(), folder.filePath("out.WAV").toStdString(),
               changes);
    QVERIFY(contentOf(written(), "data") == recording.sound().content);
    compareMetadata();
    comparePlayable();
}

void TestBroadcastWave::theTrackThatIsLeftOutIsNotListed()
{
    const Recording recording;
    store(riff({recording.form(), {"bext", bext(123)}, recording.ixml(), recording.sound()}));
    qputenv("OSTREL_TIMECODE_CHANNEL", "0.1");
    qputenv("OSTREL_TIMECODE_RATE", "30000/1001");
    const int exitCode = exportRecording(recording.codec,
                                         {"-map", "0:0", "-map_channel", "0.0.0:0.0", "-map_channel",
                                          "0.0.2:0.0", "-map_channel", "0.0.3:0.0"},
                                         timecode);
    qunsetenv("OSTREL_TIMECODE_CHANNEL");
    qunsetenv("OSTREL_TIMECODE_RATE");
    QVERIFY2(exitCode == 0, qPrintable(errors));
    QVERIFY(contentOf(written(), "data") == soundOf({0, 2, 3}, 3, false));
    QCOMPARE(contentOf(written(), "iXML"), ixmlOf("30000/1001", "DF", newStart, {"Boom", "Lav 1", "Lav 2"}));
    compareMetadata();
    comparePlayable();
}

void TestBroadcastWave::anExportWithoutTimecodeKeepsTheStart()
{
    const Recording recording;
    store(riff({recording.form(), {"bext", bext(123)}, recording.ixml(), recording.sound()}));
    QVERIFY2(exportRecording(recording.codec, {}, {}) == 0, qPrintable(errors));
    QVERIFY(contentOf(written(), "bext") == evened(bext(123)));
    QCOMPARE(contentOf(written(), "iXML"), recording.ixml().content);
    comparePlayable();
}

void TestBroadcastWave::anotherDepthIsRecorded()
{
    const Recording recording;
    const std::string ixml = "<BWFXML><SPEED><AUDIO_BIT_DEPTH>24</AUDIO_BIT_DEPTH></SPEED></BWFXML>";
    store(riff({recording.form(), recording.sound(), {"iXML", ixml}}));
    QVERIFY2(exportRecording("pcm_s16le", {}, {}) == 0, qPrintable(errors));
    QCOMPARE(contentOf(written(), "iXML"),
             "<BWFXML><SPEED><AUDIO_BIT_DEPTH>16</AUDIO_BIT_DEPTH></SPEED></BWFXML>"s);
    comparePlayable();
}

void TestBroadcastWave::damagedChunksAreLeftOut_data()
{
    QTest::addColumn<std::string>("source");
    QTest::addColumn<bool>("hasBext");
    QTest::addColumn<bool>("hasIxml");
    const Recording recording;
    const NewChunk whole{"bext", bext(123)};
    QTest::newRow("short bext")
        << riff({recording.form(), {"bext", "short"}, recording.sound(), recording.ixml()}) << false << true;
    QTest::newRow("iXML that breaks off")
        << riff({recording.form(), whole, recording.sound(), {"iXML", "<BWFXML><SPEED>"}}) << true << false;
    QTest::newRow("no iXML but other bytes")
        << riff({recording.form(), whole, recording.sound(), {"iXML", std::string(300, '\xff')}}) << true
        << false;
    std::string endless = riff({recording.form(), whole, recording.sound(), recording.ixml()});
    endless.replace(endless.find("iXML") + 4, 4, 4, '\x7f');
    QTest::newRow("iXML that is longer than the file") << endless << true << false;
    QTest::newRow("the file breaks off in the iXML")
        << riff({recording.form(), whole, recording.sound(), recording.ixml()}).substr(0, 58'000 + 602)
        << true << false;
    QTest::newRow("bytes behind the last chunk")
        << riff({recording.form(), whole, recording.sound(), recording.ixml()}) + std::string(77, '\xee')
        << true << true;
}

void TestBroadcastWave::damagedChunksAreLeftOut()
{
    QFETCH(std::string, source);
    QFETCH(bool, hasBext);
    QFETCH(bool, hasIxml);
    store(source);
    QVERIFY2(exportRecording("pcm_s24le", {}, timecode) == 0, qPrintable(errors));
    const std::string file = written();
    QVERIFY(contentOf(file, "data") == Recording().sound().content);
    QCOMPARE(contentOf(file, "bext") == evened(bext(newStart)), hasBext);
    QCOMPARE(contentOf(file, "iXML"),
             hasIxml ? ixmlOf("30000/1001", "DF", newStart, Recording().tracks()) : std::string("none"));
    comparePlayable();
}

void TestBroadcastWave::otherTypesHaveNoChunks()
{
    const Recording recording;
    store(riff({recording.form(), {"bext", bext(123)}, recording.sound(), recording.ixml()}));
    QCOMPARE(
        run("ffmpeg.exe", {"-y", "-i", folder.filePath("source.wav"), "-acodec", "pcm_s24le", "out.MOV"}), 0);
    QFile file(folder.filePath("out.MOV"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(!file.readAll().contains("BWFXML"));
}

void TestBroadcastWave::aFullDiskIsAFailure()
{
    const Recording recording;
    store(riff({recording.form(),
                {"bext", bext(123)},
                recording.sound(),
                recording.ixml(),
                {"axml", std::string(100'000, 'x')}}));
    // A limit on the size of files gives the same error as a full disk, once its signal is ignored.
    const int exitCode =
        run("bash", {"-c", "trap '' XFSZ; ulimit -f 100; exec \"$@\"", "bash", "ffmpeg.exe", "-y", "-i",
                     folder.filePath("source.wav"), "-write_bext", "1", "-acodec", "pcm_s24le", "out.WAV"});
    QVERIFY(exitCode > 0);
    QVERIFY2(errors.contains("the metadata of the written file cannot be written"), qPrintable(errors));
    QVERIFY(contentOf(written(), "data") == recording.sound().content);
    comparePlayable();
}

QTEST_GUILESS_MAIN(TestBroadcastWave)
#include "tst_broadcastwave.moc"
