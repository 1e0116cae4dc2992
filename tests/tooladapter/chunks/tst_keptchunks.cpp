// SPDX-License-Identifier: MIT
#include "tests/tooladapter/chunks/wavebytes.h"
#include "tooladapter/chunks/bextchunk.h"
#include "tooladapter/chunks/keptchunks.h"
#include "tooladapter/rules/refusal.h"

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <system_error>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace tooladapter;
using namespace wavebytes;
using namespace std::string_literals;

Q_DECLARE_METATYPE(std::string)

namespace
{

std::string samples()
{
    return "abcdefgh";
}

/// A file as the tool writes it, with a start of its own.
std::string toolFile(std::uint64_t start = 777)
{
    return riff({{"JUNK", std::string(28, '\0')},
                 {"fmt ", format(2, 16)},
                 {"bext", field(std::string(), 338) + numberBytes(start, 8) +
                              std::string(evened(bext(0)).size() - 346, '\0')},
                 {"LIST", "INFOICMT\4\0\0\0tool"s},
                 {"data", samples()}});
}

WaveChanges newStart()
{
    WaveChanges changes;
    changes.setsStart = true;
    changes.speed = "025.000-ND";
    changes.rate = {25, 1};
    return changes;
}

/// What becomes of the tool's file with the chunks of \a source; the tool's file where nothing does.
std::string kept(const std::string &source, const WaveChanges &changes = newStart())
{
    const std::string written = toolFile();
    const auto rewriting = rewritingWithChunksOf(bytesOf(source), bytesOf(written), changes);
    return rewriting ? rewritten(written, *rewriting) : written;
}

QString namesIn(const std::string &file)
{
    QStringList names;
    for (const Chunk &chunk : chunksOf(bytesOf(file)).chunks)
        names += QString::fromStdString(chunk.name).trimmed();
    return names.join(' ');
}

} // namespace

/// The chunks that an export brings from one WAV file into another.
class TestKeptChunks : public QObject
{
    Q_OBJECT

private slots:
    void theBroadcastExtensionHasTheNewStart();
    void theSourcesStartStaysWithoutANewOne();
    void theBroadcastExtensionHasAnEvenLength();
    void chunksAreKeptByteForByte();
    void whatIsDamagedIsLeftOut_data();
    void whatIsDamagedIsLeftOut();
    void whatIsTooMuchIsLeftOut();
    void whatNumbersChannelsGoesWithAChannel();
    void metadataIsCompleted();
    void filesOnDiskAreRewritten();
    void filesThatCannotBeReadCostNothing_data();
    void filesThatCannotBeReadCostNothing();
    void aFullDiskLeavesTheFileAsItWas();

private:
    QString path(const char *name) const { return folder.filePath(name); }
    void store(const char *name, const std::string &content) const;
    std::string stored(const char *name) const;
    void keep(const char *source, const char *written) const;

    QTemporaryDir folder;
};

void TestKeptChunks::store(const char *name, const std::string &content) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content.data(), static_cast<qint64>(content.size())),
             static_cast<qint64>(content.size()));
}

std::string TestKeptChunks::stored(const char *name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "missing";
}

void TestKeptChunks::keep(const char *source, const char *written) const
{
    keepChunks(path(source).toStdString(), path(written).toStdString(), newStart());
}

void TestKeptChunks::theBroadcastExtensionHasTheNewStart()
{
    const std::string file = kept(riff({{"bext", bext(123)}, {"fmt ", format(2, 16)}, {"data", samples()}}));
    QVERIFY(contentOf(file, "bext") == evened(bext(777)));
    QCOMPARE(contentOf(file, "data"), samples());
    QVERIFY(file.find("bext") < file.find("data"));
}

void TestKeptChunks::theSourcesStartStaysWithoutANewOne()
{
    const std::string file =
        kept(riff({{"bext", bext(123)}, {"fmt ", format(2, 16)}, {"data", samples()}}), {});
    QVERIFY(contentOf(file, "bext") == evened(bext(123)));
}

void TestKeptChunks::theBroadcastExtensionHasAnEvenLength()
{
    const std::string odd = bext(123);
    QCOMPARE(odd.size() % 2, std::size_t{1});
    const std::string file = kept(riff({{"bext", odd}, {"fmt ", format(2, 16)}, {"data", samples()}}), {});
    QVERIFY(contentOf(file, "bext") == odd + '\0');
    const std::string even = odd + "\r";
    const std::string other = kept(riff({{"bext", even}, {"fmt ", format(2, 16)}, {"data", samples()}}), {});
    QVERIFY(contentOf(other, "bext") == even);
}

void TestKeptChunks::chunksAreKeptByteForByte()
{
    const Chunks others{{"cue ", "cue, odd"},
                        {"LIST", "adtllabl\0\0\0\0"s},
                        {"_PMX", "<x:xmpmeta/>"},
                        {"axml", "<odd/>"},
                        {"chna", "numbers"}};
    const Chunks notKept{{"LIST", "exifxxxx"}, {"levl", "curve"}, {"JUNK", "room"}, {"PAD ", ""}};
    for (const bool isLong : {false, true}) {
        Chunks all{{"fmt ", format(2, 16)}};
        all.insert(all.end(), others.begin(), others.begin() + 2);
        all.insert(all.end(), notKept.begin(), notKept.end());
        all.push_back({"data", "odd"});
        all.insert(all.end(), others.begin() + 2, others.end());
        const std::string file = kept(isLong ? rf64(all) : riff(all));
        const std::string written = toolFile();
        QVERIFY(file.substr(12, written.size() - 12) == written.substr(12));
        QCOMPARE(file.substr(written.size()), bytesOf(others));
        QCOMPARE(numberAt(file, 4, 4), file.size() - 8);
    }
}

void TestKeptChunks::whatIsDamagedIsLeftOut_data()
{
    QTest::addColumn<std::string>("source");
    QTest::addColumn<QString>("names");
    QTest::addColumn<bool>("isBextKept");
    const QString tools = "JUNK fmt bext LIST data";
    const NewChunk form{"fmt ", format(2, 16)};
    const NewChunk sound{"data", samples()};
    const NewChunk ixml{"iXML", "<BWFXML><SCENE>1</SCENE></BWFXML>"};
    QTest::newRow("nothing damaged") << riff({form, {"bext", bext(1)}, sound, ixml}) << tools + " iXML"
                                     << true;
    QTest::newRow("not a WAV file") << std::string("ID3") + std::string(1000, 'x') << tools << false;
    QTest::newRow("empty") << std::string() << tools << false;
    QTest::newRow("a short bext") << riff({form, {"bext", bext(1).substr(0, 601)}, sound, ixml})
                                  << tools + " iXML" << false;
    QTest::newRow("a short bext before a whole one")
        << riff({form, {"bext", "short"}, {"bext", bext(1)}, sound, ixml}) << tools + " iXML" << true;
    QTest::newRow("iXML that breaks off")
        << riff({form, {"bext", bext(1)}, sound, {"iXML", "<BWFXML><SCENE>"}}) << tools << true;
    const std::string whole = riff({form, {"bext", bext(1)}, sound, ixml});
    QTest::newRow("breaks off in the iXML") << whole.substr(0, whole.size() - 4) << tools << true;
    QTest::newRow("breaks off in the samples") << whole.substr(0, whole.find("abcd") + 3) << tools << true;
    QTest::newRow("breaks off in the bext")
        << riff({form, {"bext", bext(1)}}).substr(0, 400) << tools << false;
    std::string endless = whole;
    endless.replace(endless.find("bext") + 4, 4, 4, '\xff');
    QTest::newRow("an endless bext") << endless << tools << false;
    QTest::newRow("no form") << riff({{"bext", bext(1)}, sound, ixml}) << tools << false;
    QTest::newRow("a short form") << riff({{"fmt ", "short"}, {"bext", bext(1)}, sound}) << tools << false;
    QTest::newRow("two iXML") << riff({form, sound, ixml, {"iXML", "<BWFXML/>"}}) << tools + " iXML" << false;
}

void TestKeptChunks::whatIsDamagedIsLeftOut()
{
    QFETCH(std::string, source);
    QFETCH(QString, names);
    QFETCH(bool, isBextKept);
    const std::string file = kept(source);
    QCOMPARE(namesIn(file), names);
    QVERIFY(chunksOf(bytesOf(file)).isWhole);
    QCOMPARE(contentOf(file, "data"), samples());
    QCOMPARE(contentOf(file, "bext") == evened(bext(777)), isBextKept);
    QCOMPARE(*timeReferenceOf(contentOf(file, "bext")), std::uint64_t{777});
}

void TestKeptChunks::whatIsTooMuchIsLeftOut()
{
    constexpr std::size_t most = 16 << 20;
    const NewChunk form{"fmt ", format(2, 16)};
    const auto size = [&form](const Chunks &chunks) {
        Chunks all{form};
        all.insert(all.end(), chunks.begin(), chunks.end());
        return kept(riff(all)).size() - toolFile().size();
    };
    QCOMPARE(size({{"axml", std::string(most, 'x')}}), most + 8);
    QCOMPARE(size({{"axml", std::string(most + 1, 'x')}}), std::size_t{0});
    QCOMPARE(size({{"axml", std::string(most - 4, 'x')}, {"cue ", "12345"}, {"_PMX", "1234"}}),
             most - 4 + 8 + 4 + 8);
}

void TestKeptChunks::whatNumbersChannelsGoesWithAChannel()
{
    const std::string source =
        riff({{"fmt ", format(4, 16)},
              {"chna", "numbers"},
              {"axml", "<x/>"},
              {"iXML", "<BWFXML><TRACK_LIST><TRACK_COUNT>4</TRACK_COUNT><TRACK>1</TRACK><TRACK>2</TRACK>"
                       "<TRACK>3</TRACK><TRACK>4</TRACK></TRACK_LIST></BWFXML>"},
              {"data", samples()}});
    WaveChanges changes;
    changes.keptChannels = {0, 1, 3};
    const std::string file = kept(source, changes);
    QCOMPARE(namesIn(file), QString("JUNK fmt bext LIST data axml iXML"));
    QCOMPARE(contentOf(file, "iXML"),
             std::string("<BWFXML><TRACK_LIST><TRACK_COUNT>3</TRACK_COUNT><TRACK>1</TRACK><TRACK>2</TRACK>"
                         "<TRACK>4</TRACK></TRACK_LIST></BWFXML>"));
}

void TestKeptChunks::metadataIsCompleted()
{
    const std::string file = kept(riff(
        {{"fmt ", format(2, 16)}, {"LIST", "INFOICMT\2\0\0\0noIXYZ\4\0\0\0more"s}, {"data", samples()}}));
    QCOMPARE(contentOf(file, "LIST"), "INFOICMT\4\0\0\0toolIXYZ\4\0\0\0more"s);
}

void TestKeptChunks::filesOnDiskAreRewritten()
{
    const std::string source =
        riff({{"fmt ", format(2, 16)}, {"bext", bext(1)}, {"data", samples()}, {"cue ", "c"}});
    store("source.wav", source);
    store("written.WAV", toolFile());
    keep("source.wav", "written.WAV");
    QVERIFY(stored("written.WAV") == kept(source));
    QVERIFY(stored("written.WAV") != toolFile());
    QVERIFY(stored("source.wav") == source);
}

void TestKeptChunks::filesThatCannotBeReadCostNothing_data()
{
    QTest::addColumn<QString>("source");
    QTest::newRow("missing") << "missing.wav";
    QTest::newRow("a folder") << ".";
    QTest::newRow("a pipe without a writer") << "pipe.wav";
}

void TestKeptChunks::filesThatCannotBeReadCostNothing()
{
    QFETCH(QString, source);
    ::mkfifo(qPrintable(path("pipe.wav")), 0600);
    store("untouched.WAV", toolFile());
    keep(qPrintable(source), "untouched.WAV");
    QVERIFY(stored("untouched.WAV") == toolFile());
    store("source.wav", riff({{"fmt ", format(2, 16)}, {"data", samples()}}));
    QVERIFY_EXCEPTION_THROWN(keep("source.wav", qPrintable(source)), Refusal);
}

void TestKeptChunks::aFullDiskLeavesTheFileAsItWas()
{
    store("source.wav",
          riff({{"fmt ", format(2, 16)}, {"data", samples()}, {"axml", std::string(100'000, 'x')}}));
    store("full.WAV", toolFile());
    // A limit on the size of files gives the same error as a full disk, once its signal is ignored.
    rlimit old = {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit room = old;
    room.rlim_cur = toolFile().size() + 50'000;
    const auto oldAction = std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &room), 0);
    bool failed = false;
    try {
        keep("source.wav", "full.WAV");
    } catch (const std::system_error &error) {
        failed = error.code().value() == EFBIG;
    }
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, oldAction);
    QVERIFY(failed);
    QVERIFY(stored("full.WAV") == toolFile());
    keep("source.wav", "full.WAV");
    QVERIFY(stored("full.WAV").size() > 100'000);
}

QTEST_GUILESS_MAIN(TestKeptChunks)
#include "tst_keptchunks.moc"
