// SPDX-License-Identifier: MIT
#include "tests/export-matrix/wavechunks.h"

#include <QTest>

#include <algorithm>
#include <stdexcept>

using namespace exportmatrix;
using wavechunks::Chunk;

/// The chunks of sound files that the matrix writes and reads back.
class TestRecorderChunks : public QObject
{
    Q_OBJECT

private slots:
    void chunksComeBack_data();
    void chunksComeBack();
    void lostChunksAreMissed();
    void tracksAreNumberedByTheSource();
    void reportOfManyLinesIsTakenApart();
    void otherFilesAreRefused();
};

namespace
{

QByteArray plainFile()
{
    return {"RIFF\x1e\0\0\0WAVE"
            "fmt \2\0\0\0\1\0"
            "data\4\0\0\0\1\2\3\4",
            34};
}

QByteArray longFile()
{
    return {"RF64\xff\xff\xff\xffWAVE"
            "ds64\x1c\0\0\0\x38\0\0\0\0\0\0\0\4\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0"
            "data\xff\xff\xff\xff\1\2\3\4",
            60};
}

QString valueOf(const Facts &facts, FactGroup group, const QString &name)
{
    const Fact *const fact = find(facts, group, name);
    return fact ? fact->value : QString("none");
}

} // namespace

void TestRecorderChunks::chunksComeBack_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("isBefore");
    QTest::newRow("behind the samples") << plainFile() << false;
    QTest::newRow("before the samples") << plainFile() << true;
    QTest::newRow("in a file for sizes beyond 4 GiB") << longFile() << false;
}

void TestRecorderChunks::chunksComeBack()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, isBefore);
    const QVector<Chunk> chunks = wavechunks::ofRecorder(2, 1, 48000);
    const QByteArray written = wavechunks::withChunks(file, chunks, isBefore);
    QVERIFY(written.contains("data"));
    const QVector<Chunk> found = wavechunks::chunksOf(written);
    for (const Chunk &chunk : chunks)
        QVERIFY2(found.contains(chunk), chunk.first.constData());
    const auto samples =
        std::find_if(found.begin(), found.end(), [](const Chunk &c) { return c.first == "data"; });
    QCOMPARE(samples == found.end() - 1, isBefore);
}

void TestRecorderChunks::lostChunksAreMissed()
{
    const Facts facts = wavechunks::factsOf(wavechunks::ofRecorder(2, 1, 48000), {0, 1});
    QCOMPARE(valueOf(facts, FactGroup::BextText, "originator"), QString("Field recorder"));
    QCOMPARE(valueOf(facts, FactGroup::IxmlSpeed, "bext speed"), QString("025.000-ND"));
    QCOMPARE(valueOf(facts, FactGroup::IxmlScene, "SCENE"), QString("12A"));
    QCOMPARE(valueOf(facts, FactGroup::IxmlScene, "NOTE"), QString("plane & wind"));
    QCOMPARE(valueOf(facts, FactGroup::IxmlSpeed, "SPEED/TIMECODE_FLAG"), QString("NDF"));
    QCOMPARE(valueOf(facts, FactGroup::IxmlScene, "USER"), QString("boom operator: Kim"));
    QCOMPARE(valueOf(facts, FactGroup::InfoText, "INAM"), QString("12A-3"));
    QVERIFY(find(facts, FactGroup::Cues, "cue "));
    QVERIFY(find(facts, FactGroup::OtherChunks, "_PMX"));
    QVERIFY(wavechunks::factsOf(wavechunks::chunksOf(plainFile()), {0, 1}).isEmpty());
}

void TestRecorderChunks::tracksAreNumberedByTheSource()
{
    // The file holds the source's channels 0 and 2; channel 1, the timecode, was left out.
    const Facts facts = wavechunks::factsOf(wavechunks::ofRecorder(2, -1, 48000), {0, 2});
    QCOMPARE(valueOf(facts, FactGroup::IxmlTracks, "channel 0"), QString("Mic & 1"));
    QCOMPARE(valueOf(facts, FactGroup::IxmlTracks, "channel 2"), QString("Mic & 2"));
    QCOMPARE(valueOf(facts, FactGroup::IxmlTracks, "number matches the channels"), QString("yes"));
    const Facts stale = wavechunks::factsOf(wavechunks::ofRecorder(3, 1, 48000), {0, 2});
    QCOMPARE(valueOf(stale, FactGroup::IxmlTracks, "number matches the channels"), QString("no"));
}

void TestRecorderChunks::reportOfManyLinesIsTakenApart()
{
    const Facts facts = wavechunks::factsOfReport("Description            : sSPEED=025.000-ND\nsTAKE=3\n"
                                                  "Artist                 : \n"
                                                  "Loudness value         : -24.00\n");
    QCOMPARE(facts, (Facts{{FactGroup::BextText, "sndfile: Description", "sSPEED=\nsTAKE=3"},
                           {FactGroup::BextLoudness, "sndfile: Loudness value", "-24.00"}}));
}

void TestRecorderChunks::otherFilesAreRefused()
{
    QVERIFY_EXCEPTION_THROWN(wavechunks::withChunks("no sound", {}), std::runtime_error);
    QVERIFY(wavechunks::chunksOf("no sound at all").isEmpty());
}

QTEST_APPLESS_MAIN(TestRecorderChunks)
#include "tst_recorderchunks.moc"
