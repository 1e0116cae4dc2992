// SPDX-License-Identifier: MIT
#include "testkit/fixtures/row.h"
#include "tests/tooladapter/chunks/wavebytes.h"
#include "tooladapter/chunks/infochunk.h"
#include "tooladapter/chunks/wavechunks.h"
#include "tooladapter/chunks/wavelayout.h"

#include <QStringList>
#include <QTest>

using namespace tooladapter;
using namespace wavebytes;
using namespace std::string_literals;

Q_DECLARE_METATYPE(std::string)

namespace
{

/// Names and lengths of the chunks of \a file, and whether they are all of it.
QString described(const std::string &file)
{
    const ChunkList list = chunksOf(bytesOf(file));
    QStringList texts;
    for (const Chunk &chunk : list.chunks)
        texts += QString("%1:%2").arg(QString::fromStdString(chunk.name)).arg(chunk.length);
    return texts.join(' ') + (list.isWhole ? "" : " ...");
}

std::string samples()
{
    return "ssssssss";
}

/// A file as the tool writes it.
std::string toolFile(const std::string &info = "INFOISFT\4\0\0\0tool"s)
{
    return riff({{"JUNK", std::string(28, '\0')},
                 {"fmt ", format(1, 16)},
                 {"bext", std::string(602, '\0')},
                 {"LIST", info},
                 {"data", samples()}});
}

} // namespace

/// The chunks of WAV files, read and laid out.
class TestWaveChunks : public QObject
{
    Q_OBJECT

private slots:
    void chunksAreListedUpToTheFirstDamage_data();
    void chunksAreListedUpToTheFirstDamage();
    void aChunkIsWhereItIs();
    void manyChunksAreNotReadToTheEnd();
    void chunksThatFitStayBeforeTheSamples_data();
    void chunksThatFitStayBeforeTheSamples();
    void samplesAndOtherChunksStay();
    void aMissingPaddingIsAdded();
    void longFilesTellTheirLengthElsewhere();
    void aFileThatGrowsBeyondFourGibibytesBecomesLong();
    void filesThatAreNotTheToolsStayAsTheyAre_data();
    void filesThatAreNotTheToolsStayAsTheyAre();
    void anUnchangedFileNeedsNoRewriting();
    void missingEntriesAreAddedToTheMetadata_data();
    void missingEntriesAreAddedToTheMetadata();
};

void TestWaveChunks::chunksAreListedUpToTheFirstDamage_data()
{
    QTest::addColumn<std::string>("file");
    QTest::addColumn<QString>("list");
    const std::string whole = riff({{"fmt ", format(1, 16)}, {"data", samples()}, {"iXML", "<a/>"}});
    row("whole", whole, "fmt :16 data:8 iXML:4");
    row("long", rf64({{"fmt ", format(1, 16)}, {"data", samples()}, {"iXML", "<a/>"}}),
        "ds64:28 fmt :16 data:8 iXML:4");
    row("long, the other name", "BW64" + rf64({{"fmt ", format(1, 16)}, {"data", samples()}}).substr(4),
        "ds64:28 fmt :16 data:8");
    row("odd length", riff({{"iXML", "<a />"}, {"data", samples()}}), "iXML:5 data:8");
    const std::string odd = riff({{"data", samples()}, {"iXML", "<a />"}});
    row("odd length at the end", odd, "data:8 iXML:5");
    row("odd length at the end, no padding", odd.substr(0, odd.size() - 1), "data:8 iXML:5");
    row("empty chunk", riff({{"cue ", ""}, {"data", samples()}}), "cue :0 data:8");
    row("breaks off in the last chunk", whole.substr(0, whole.size() - 1), "fmt :16 data:8 ...");
    row("breaks off in a head", whole.substr(0, whole.size() - 5), "fmt :16 data:8 ...");
    row("length of the file is wrong", whole.substr(0, 4) + std::string(4, '\0') + whole.substr(8),
        "fmt :16 data:8 iXML:4");
    row("endless chunk", riff({{"fmt ", format(1, 16)}}) + "iXML\xff\xff\xff\xff<a/>", "fmt :16 ...");
    row("samples of a long length in a short file", "RIFF" + rf64({{"data", samples()}}).substr(4),
        "ds64:28 ...");
    std::string endless = rf64({{"data", samples()}});
    endless.replace(28, 8, 8, '\xff');
    row("long length beyond the file", endless, "ds64:28 ...");
    row("long without the long lengths", "RF64" + whole.substr(4), " ...");
    row("long lengths too short",
        "RF64" + riff({{"ds64", std::string(27, '\0')}, {"data", samples()}}).substr(4), " ...");
    row("no name", riff({{"fmt ", format(1, 16)}}) + std::string(64, '\0'), "fmt :16 ...");
    row("big-endian", "RIFX" + whole.substr(4), " ...");
    row("no WAV file", whole.substr(0, 8) + "AVI " + whole.substr(12), " ...");
    row("nothing", std::string(), " ...");
    row("less than a head", whole.substr(0, 11), " ...");
    row("head only", whole.substr(0, 12), "");
}

void TestWaveChunks::chunksAreListedUpToTheFirstDamage()
{
    QFETCH(std::string, file);
    QFETCH(QString, list);
    QCOMPARE(described(file), list);
}

void TestWaveChunks::aChunkIsWhereItIs()
{
    const std::string file = riff({{"iXML", "<a />"}, {"data", samples()}});
    QCOMPARE(contentOf(file, "iXML"), std::string("<a />"));
    QCOMPARE(contentOf(file, "data"), samples());
    QCOMPARE(contentOf(file, "bext"), std::string("none"));
}

void TestWaveChunks::manyChunksAreNotReadToTheEnd()
{
    const ChunkList list = chunksOf(bytesOf(riff(Chunks(1001, {"cue ", ""}))));
    QCOMPARE(list.chunks.size(), std::size_t{1000});
    QVERIFY(!list.isWhole);
}

void TestWaveChunks::chunksThatFitStayBeforeTheSamples_data()
{
    QTest::addColumn<int>("bextLength");
    QTest::addColumn<int>("infoLength");
    QTest::addColumn<QString>("list");
    // The room is that of "bext" (602 bytes), the metadata (16) and their heads.
    const QString fixed = "JUNK:28 fmt :16 ";
    row("same lengths", 602, 16, fixed + "bext:602 LIST:16 data:8 iXML:3");
    row("shorter", 602, 8, fixed + "bext:602 LIST:8 JUNK:0 data:8 iXML:3");
    row("too little less for a filler", 602, 10, fixed + "bext:602 JUNK:16 data:8 LIST:10 iXML:3");
    row("longer metadata", 602, 30, fixed + "bext:602 JUNK:16 data:8 LIST:30 iXML:3");
    row("longer bext", 610, 16, fixed + "bext:610 JUNK:8 data:8 LIST:16 iXML:3");
    row("bext takes all the room", 626, 16, fixed + "bext:626 data:8 LIST:16 iXML:3");
    row("odd bext takes all the room", 625, 16, fixed + "bext:625 data:8 LIST:16 iXML:3");
    row("bext leaves too little for a filler", 624, 16, fixed + "JUNK:626 data:8 bext:624 LIST:16 iXML:3");
    row("much longer bext", 5000, 16, fixed + "JUNK:626 data:8 bext:5000 LIST:16 iXML:3");
}

void TestWaveChunks::chunksThatFitStayBeforeTheSamples()
{
    QFETCH(int, bextLength);
    QFETCH(int, infoLength);
    QFETCH(QString, list);
    const std::string bext(static_cast<std::size_t>(bextLength), 'b');
    const std::string info = "INFO" + std::string(static_cast<std::size_t>(infoLength - 4), 'i');
    const std::string written = toolFile();
    const auto rewriting = rewritingOf(bytesOf(written), bext, info, {{"iXML", "<a>"}});
    QVERIFY(rewriting);
    const std::string file = rewritten(written, *rewriting);
    QCOMPARE(described(file), list);
    QCOMPARE(contentOf(file, "bext"), bext);
    QCOMPARE(contentOf(file, "LIST"), info);
    QCOMPARE(contentOf(file, "iXML"), std::string("<a>"));
    QCOMPARE(numberAt(file, 4, 4), file.size() - 8);
}

void TestWaveChunks::samplesAndOtherChunksStay()
{
    const std::string written = riff({{"JUNK", std::string(28, '\0')},
                                      {"fmt ", format(1, 32, 48000, 3)},
                                      {"fact", "1234"},
                                      {"bext", std::string(602, '\0')},
                                      {"data", samples()},
                                      {"PEAK", "abc"}});
    const auto rewriting = rewritingOf(bytesOf(written), std::string(700, 'b'), {}, {{"cue ", "c"}});
    QVERIFY(rewriting);
    const std::string file = rewritten(written, *rewriting);
    QCOMPARE(described(file), QString("JUNK:28 fmt :16 fact:4 JUNK:602 data:8 PEAK:3 bext:700 cue :1"));
    const std::size_t data = written.find("data");
    QCOMPARE(file.substr(data, written.size() - data), written.substr(data));
    QCOMPARE(contentOf(file, "fact"), std::string("1234"));
    QCOMPARE(contentOf(file, "fmt "), format(1, 32, 48000, 3));
}

void TestWaveChunks::aMissingPaddingIsAdded()
{
    std::string written = riff({{"fmt ", format(1, 8)}, {"bext", std::string(602, '\0')}, {"data", "abc"}});
    written.pop_back();
    const auto rewriting = rewritingOf(bytesOf(written), std::string(602, 'b'), {}, {{"cue ", "c"}});
    QVERIFY(rewriting);
    const std::string file = rewritten(written, *rewriting);
    QCOMPARE(described(file), QString("fmt :16 bext:602 data:3 cue :1"));
    QCOMPARE(contentOf(file, "data"), std::string("abc"));
    QCOMPARE(numberAt(file, 4, 4), file.size() - 8);
}

void TestWaveChunks::longFilesTellTheirLengthElsewhere()
{
    const std::string written =
        rf64({{"fmt ", format(1, 16)}, {"bext", std::string(602, '\0')}, {"data", samples()}});
    const auto rewriting = rewritingOf(bytesOf(written), std::string(602, 'b'), {}, {{"cue ", "c"}});
    QVERIFY(rewriting);
    const std::string file = rewritten(written, *rewriting);
    QCOMPARE(described(file), QString("ds64:28 fmt :16 bext:602 data:8 cue :1"));
    QCOMPARE(numberAt(file, 4, 4), std::uint64_t{0xffffffff});
    QCOMPARE(numberAt(contentOf(file, "ds64"), 0, 8), file.size() - 8);
    QCOMPARE(numberAt(contentOf(file, "ds64"), 8, 8), samples().size());
}

void TestWaveChunks::aFileThatGrowsBeyondFourGibibytesBecomesLong()
{
    const std::uint64_t length = 0xfffffff0 - 4096; // [bytes] of the samples
    std::string header = toolFile();
    header.resize(header.size() - samples().size());
    header.replace(header.size() - 4, 4, numberBytes(length, 4));
    const Bytes written{header.size() + length, [&header](std::uint64_t position, std::size_t count) {
                            return position < header.size() ? header.substr(position, count)
                                                            : std::string(count, 's');
                        }};
    const std::string info = "INFOISFT" + numberBytes(4, 4) + "tool";
    const std::string bext(602, 'b');
    const auto stillShort = rewritingOf(written, bext, info, {{"iXML", std::string(1000, 'x')}});
    QVERIFY(stillShort);
    QVERIFY(stillShort->header.starts_with("RIFF"));

    const auto rewriting = rewritingOf(written, bext, info, {{"iXML", std::string(10'000, 'x')}});
    QVERIFY(rewriting);
    const Bytes file{written.size + rewriting->tail.size(), [&](std::uint64_t position, std::size_t count) {
                         if (position < rewriting->header.size())
                             return rewriting->header.substr(position, count);
                         return position < written.size
                                    ? std::string(count, 's')
                                    : rewriting->tail.substr(position - written.size, count);
                     }};
    const ChunkList list = chunksOf(file);
    QVERIFY(list.isLong);
    QVERIFY(list.isWhole);
    QCOMPARE(list.find("data")->length, length);
    const std::string lengths = file.at(list.find("ds64")->begin, 28);
    QCOMPARE(numberAt(lengths, 0, 8), file.size - 8);
    QCOMPARE(numberAt(lengths, 8, 8), length);
    QCOMPARE(numberAt(lengths, 16, 8), length / 2);
    QCOMPARE(numberAt(lengths, 24, 4), std::uint64_t{0});

    header.replace(12, 4, "junk"); // no room for the long lengths
    QVERIFY(!rewritingOf(written, bext, info, {{"iXML", std::string(10'000, 'x')}}));
}

void TestWaveChunks::filesThatAreNotTheToolsStayAsTheyAre_data()
{
    QTest::addColumn<std::string>("written");
    const std::string bext(602, '\0');
    row("no bext", riff({{"fmt ", format(1, 16)}, {"data", samples()}}));
    row("bext behind the samples", riff({{"fmt ", format(1, 16)}, {"data", samples()}, {"bext", bext}}));
    row("two of bext",
        riff({{"fmt ", format(1, 16)}, {"bext", bext}, {"bext", "short"}, {"data", samples()}}));
    row("metadata behind the samples",
        riff({{"fmt ", format(1, 16)}, {"bext", bext}, {"data", samples()}, {"LIST", "INFO"}}));
    row("no samples", riff({{"fmt ", format(1, 16)}, {"bext", bext}}));
    row("damaged", toolFile() + "x");
    row("a header of more than a mebibyte",
        riff({{"bext", bext}, {"JUNK", std::string(1 << 20, 'j')}, {"data", samples()}}));
}

void TestWaveChunks::filesThatAreNotTheToolsStayAsTheyAre()
{
    QFETCH(std::string, written);
    QVERIFY(!rewritingOf(bytesOf(written), std::string(602, 'b'), "INFO", {{"iXML", "<a/>"}}));
}

void TestWaveChunks::anUnchangedFileNeedsNoRewriting()
{
    const std::string written = toolFile();
    QVERIFY(!rewritingOf(bytesOf(written), contentOf(written, "bext"), contentOf(written, "LIST"), {}));
}

void TestWaveChunks::missingEntriesAreAddedToTheMetadata_data()
{
    QTest::addColumn<std::string>("written");
    QTest::addColumn<std::string>("source");
    QTest::addColumn<std::string>("merged");
    const std::string tool = "INFOICMT\3\0\0\0abc\0"s;
    const std::string other = "IXYZ\2\0\0\0xy"s;
    row("nothing in the source", tool, std::string(), tool);
    row("nothing in both", std::string(), std::string(), std::string("INFO"));
    row("a new one", tool, "INFO" + other, tool + other);
    row("none written", std::string(), "INFO" + other, "INFO" + other);
    row("the written one stays", tool, "INFOICMT\2\0\0\0xy"s, tool);
    row("once only", tool, "INFO" + other + other, tool + other);
    row("odd length without padding, at the end", tool, "INFOIXYZ\1\0\0\0x"s, tool + "IXYZ\1\0\0\0x\0"s);
    row("written without the last padding", tool.substr(0, 15), "INFO" + other, tool + other);
    row("what breaks off is left out", tool, "INFOIXYZ\3\0\0\0xy"s, tool);
    row("what follows damage is left out", tool, "INFO" + "\0\0\0\0\2\0\0\0xy"s + other, tool);
}

void TestWaveChunks::missingEntriesAreAddedToTheMetadata()
{
    QFETCH(std::string, written);
    QFETCH(std::string, source);
    QFETCH(std::string, merged);
    QCOMPARE(mergedInfo(written, source), merged);
}

QTEST_GUILESS_MAIN(TestWaveChunks)
#include "tst_wavechunks.moc"
