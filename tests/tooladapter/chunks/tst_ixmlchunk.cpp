// SPDX-License-Identifier: MIT
#include "testkit/fixtures/row.h"
#include "tooladapter/chunks/ixmlchunk.h"
#include "tooladapter/chunks/xmlelement.h"

#include <QStringList>
#include <QTest>

using namespace tooladapter;

namespace
{

/// An element in one line: name, content or children, and where it ends.
QString described(const XmlElement &element, const std::string &text)
{
    const QString name = QString::fromStdString(std::string(element.name));
    if (element.children.empty()) {
        const std::size_t length = element.contentEnd - element.contentBegin;
        return name + '=' + QString::fromStdString(text.substr(element.contentBegin, length));
    }
    QStringList children;
    for (const XmlElement &child : element.children)
        children += described(child, text);
    return name + '(' + children.join(' ') + ')';
}

WaveChanges newStart(const std::string &speed, const FrameRate &rate)
{
    WaveChanges changes;
    changes.setsStart = true;
    changes.speed = speed;
    changes.rate = rate;
    return changes;
}

WaveChanges left(std::vector<int> channels)
{
    WaveChanges changes;
    changes.keptChannels = std::move(channels);
    return changes;
}

/// A sound that starts at 2^32 + 1234 and was made of four channels.
WrittenSound sound()
{
    return {(std::uint64_t{1} << 32) + 1234, 48000, {}, 4};
}

QString changed(const QString &source, const WaveChanges &changes, const WrittenSound &written = sound())
{
    const auto text = changedIxml(source.toStdString(), changes, written);
    return text ? QString::fromStdString(*text) : QString("damaged");
}

QString track(int channel, int place, const char *name)
{
    return QString("  <TRACK><CHANNEL_INDEX>%1</CHANNEL_INDEX><INTERLEAVE_INDEX>%2</INTERLEAVE_INDEX>"
                   "<NAME>%3</NAME></TRACK>\n")
        .arg(channel)
        .arg(place)
        .arg(name);
}

QString trackList(int count, const QString &tracks)
{
    return QString("<BWFXML>\n <TRACK_LIST>\n  <TRACK_COUNT>%1</TRACK_COUNT>\n%2 </TRACK_LIST>\n</BWFXML>")
        .arg(count)
        .arg(tracks);
}

} // namespace

/// The text about a recording that a WAV file carries, and what an export changes of it.
class TestIxmlChunk : public QObject
{
    Q_OBJECT

private slots:
    void xmlIsTakenApart_data();
    void xmlIsTakenApart();
    void elementsAreWhereTheyAre();
    void theStartAndTheSpeedAreTheNewOnes_data();
    void theStartAndTheSpeedAreTheNewOnes();
    void everythingElseStays();
    void nothingChangesWithoutAReason();
    void theDepthOfTheSamplesIsTheNewOne();
    void aTrackThatIsLeftOutIsNotListed_data();
    void aTrackThatIsLeftOutIsNotListed();
    void whatIsNoIxmlIsDamaged_data();
    void whatIsNoIxmlIsDamaged();
};

void TestIxmlChunk::xmlIsTakenApart_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tree");
    row("one element", "<A>text</A>", "A=text");
    row("children", "<A><B>1</B> <C>2</C></A>", "A(B=1 C=2)");
    row("prologue", "\ufeff<?xml version=\"1.0\"?>\r\n<!-- <B> --> <A>1</A>", "A=1");
    row("without an end tag", "<A><B/><C x='1' /></A>", "A(B= C=)");
    row("attributes", "<A b=\"<x>\" c='/>'>1</A>", "A=1");
    row("blanks in tags", "<A\n><B >1</B\t></A >", "A(B=1)");
    row("remark, raw text, instruction", "<A><!-- <B> --><![CDATA[</A><B>]]><?x <B> ?><C>1</C></A>",
        "A(C=1)");
    row("entities are text", "<A>&lt;B&gt;</A>", "A=&lt;B&gt;");
    row("what follows is not read", "<A>1</A><B", "A=1");
    row("depth 32", QString("<A>").repeated(32) + QString("</A>").repeated(32),
        QString("A(").repeated(31) + "A=" + QString(")").repeated(31));

    row("nothing", "", "none");
    row("no element", "text", "none");
    row("only a prologue", "<?xml version=\"1.0\"?>", "none");
    row("not closed", "<A><B>1</B>", "none");
    row("closed by another", "<A><B>1</A></B>", "none");
    row("breaks off in a tag", "<A><B", "none");
    row("breaks off in an end tag", "<A>1</A", "none");
    row("breaks off in an attribute", "<A b=\"1></A>", "none");
    row("breaks off in a remark", "<A><!-- </A>", "none");
    row("a tag in a tag", "<A <B></A>", "none");
    row("no name", "<A>< B></ B></A>", "none");
    row("document type", "<!DOCTYPE A [<!ENTITY x \"y\">]><A>1</A>", "none");
    row("document type inside", "<A><!ENTITY x \"y\"></A>", "none");
    row("too deep", QString("<A>").repeated(33) + QString("</A>").repeated(33), "none");
    row("very deep", QString("<A>").repeated(1'000'000), "none");
    row("too many elements", "<A>" + QString("<B/>").repeated(50'000) + "</A>", "none");
}

void TestIxmlChunk::xmlIsTakenApart()
{
    QFETCH(QString, text);
    QFETCH(QString, tree);
    const std::string bytes = text.toStdString();
    const auto root = parseXml(bytes);
    QCOMPARE(root ? described(*root, bytes) : QString("none"), tree);
}

void TestIxmlChunk::elementsAreWhereTheyAre()
{
    const std::string text = "<A> <B c='1'>2</B><B/></A>x";
    const auto root = parseXml(text);
    QVERIFY(root);
    QCOMPARE(text.substr(root->begin, root->end - root->begin), std::string("<A> <B c='1'>2</B><B/></A>"));
    const auto children = root->childrenCalled("B");
    QCOMPARE(children.size(), std::size_t{2});
    const XmlElement &first = *children[0];
    QCOMPARE(text.substr(first.begin, first.end - first.begin), std::string("<B c='1'>2</B>"));
    QCOMPARE(text.substr(first.contentBegin, first.contentEnd - first.contentBegin), std::string("2"));
    const XmlElement &second = *children[1];
    QCOMPARE(text.substr(second.begin, second.end - second.begin), std::string("<B/>"));
    QCOMPARE(second.contentBegin, second.end);
    QVERIFY(root->childrenCalled("C").empty());
}

void TestIxmlChunk::theStartAndTheSpeedAreTheNewOnes_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("speed");
    QTest::addColumn<QString>("rate");
    QTest::addColumn<QString>("result");
    const QString high = "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>%1</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>";
    const QString low = "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>%1</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>";
    const QString sampleRate = "<TIMESTAMP_SAMPLE_RATE>%1</TIMESTAMP_SAMPLE_RATE>";
    const QString rate = "<TIMECODE_RATE>%1</TIMECODE_RATE>";
    const QString flag = "<TIMECODE_FLAG>%1</TIMECODE_FLAG>";
    const QString speeds = "<MASTER_SPEED>%1</MASTER_SPEED><CURRENT_SPEED>%1</CURRENT_SPEED>";
    const QString otherStart = high.arg(0) + low.arg(99) + sampleRate.arg(96000);
    const QString start = high.arg(1) + low.arg(1234) + sampleRate.arg(48000);
    const QString other = otherStart + rate.arg("24/1") + flag.arg("NDF");
    const QString newDropFrame = start + rate.arg("30000/1001") + flag.arg("DF");

    const QString frame = "<BWFXML><SPEED>%1</SPEED></BWFXML>";
    row("all there, drop-frame", frame.arg(speeds.arg("24/1") + other), "029.970-DF", "30000/1001",
        frame.arg(speeds.arg("30000/1001") + newDropFrame));
    row("all there, 25", frame.arg(otherStart + rate.arg("30000/1001") + flag.arg("DF")), "025.000-ND",
        "25/1", frame.arg(start + rate.arg("25/1") + flag.arg("NDF")));
    row("missing ones are added, one a line",
        "<BWFXML>\n\t<SPEED>\n\t\t<NOTE>x</NOTE>\n\t\t" + low.arg("99") + "\n\t</SPEED>\n</BWFXML>",
        "025.000-ND", "25/1",
        "<BWFXML>\n\t<SPEED>\n\t\t<NOTE>x</NOTE>\n\t\t" + low.arg("1234") + "\n\t\t" + high.arg("1") +
            "\n\t\t" + sampleRate.arg("48000") + "\n\t\t" + rate.arg("25/1") + "\n\t\t" + flag.arg("NDF") +
            "\n\t</SPEED>\n</BWFXML>");
    row("an empty element is filled", "<BWFXML><SPEED/></BWFXML>", "029.970-DF", "30000/1001",
        frame.arg(newDropFrame));
    row("empty numbers are filled",
        frame.arg("<TIMECODE_RATE/>" + high.arg("") + low.arg("") + sampleRate.arg("") + flag.arg("")),
        "029.970-DF", "30000/1001",
        frame.arg(rate.arg("30000/1001") + high.arg("1") + low.arg("1234") + sampleRate.arg("48000") +
                  flag.arg("DF")));
    row("no speed at all", "<BWFXML>\n <SCENE>12</SCENE>\n</BWFXML>", "029.970-DF", "30000/1001",
        "<BWFXML>\n <SCENE>12</SCENE>\n <SPEED>" + newDropFrame + "</SPEED>\n</BWFXML>");
    row("every place says the same",
        "<BWFXML><SPEED>" + other + "</SPEED><SPEED>" + other + "</SPEED></BWFXML>", "029.970-DF",
        "30000/1001",
        "<BWFXML><SPEED>" + newDropFrame + "</SPEED><SPEED>" + newDropFrame + "</SPEED></BWFXML>");
    row("the same number twice", frame.arg(otherStart + low.arg(99) + rate.arg("24/1") + flag.arg("NDF")),
        "029.970-DF", "30000/1001",
        frame.arg(start + low.arg(1234) + rate.arg("30000/1001") + flag.arg("DF")));
    row("rate not known: only the start", frame.arg(other), "", "",
        frame.arg(start + rate.arg("24/1") + flag.arg("NDF")));
    const QString repeated = "<BEXT><BWF_DESCRIPTION>%1</BWF_DESCRIPTION><BWF_TIME_REFERENCE_LOW>%2"
                             "</BWF_TIME_REFERENCE_LOW><BWF_TIME_REFERENCE_HIGH>%3"
                             "</BWF_TIME_REFERENCE_HIGH></BEXT>";
    row("the broadcast extension is repeated",
        "<BWFXML><SPEED/>" + repeated.arg("sSPEED=024.000-ND&#10;sTAKE=3", "99", "0") + "</BWFXML>",
        "029.970-DF", "30000/1001",
        "<BWFXML><SPEED>" + newDropFrame + "</SPEED>" +
            repeated.arg("sSPEED=029.970-DF&#10;sTAKE=3", "1234", "1") + "</BWFXML>");
}

void TestIxmlChunk::theStartAndTheSpeedAreTheNewOnes()
{
    QFETCH(QString, source);
    QFETCH(QString, speed);
    QFETCH(QString, rate);
    QFETCH(QString, result);
    QCOMPARE(changed(source, newStart(speed.toStdString(), FrameRate::fromText(rate.toStdString()))), result);
}

void TestIxmlChunk::everythingElseStays()
{
    const QString before = "\ufeff<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<!-- remark -->\r\n"
                           "<BWFXML  version='1'>\r\n <SCENE>12 \u00dc &amp; 3</SCENE>\r\n"
                           " <USER><![CDATA[<SPEED>]]></USER> <X><SPEED>5</SPEED></X>\r\n <SPEED a=\"1\">";
    const QString after = "</SPEED >\r\n</BWFXML>\r\n\t";
    const QString start = "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>%1</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>"
                          "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>%2</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>"
                          "<TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE>";
    const std::string room = std::string(40, '\0') + "<SPEED>";
    const auto text =
        changedIxml((before + start.arg(0).arg(9) + after).toStdString() + room, newStart({}, {}), sound());
    QVERIFY(text);
    QVERIFY(*text == (before + start.arg(1).arg(1234) + after).toStdString() + room);
}

void TestIxmlChunk::nothingChangesWithoutAReason()
{
    const QString source = trackList(2, track(1, 1, "a") + track(2, 2, "b"));
    QCOMPARE(changed(source, {}), source);
    const QString speed = "<BWFXML><SPEED><AUDIO_BIT_DEPTH>24</AUDIO_BIT_DEPTH></SPEED></BWFXML>";
    QCOMPARE(changed(speed, {}), speed);
}

void TestIxmlChunk::theDepthOfTheSamplesIsTheNewOne()
{
    const QString speed = "<BWFXML><SPEED><AUDIO_BIT_DEPTH>%1</AUDIO_BIT_DEPTH></SPEED></BWFXML>";
    WrittenSound coded = sound();
    coded.bits = 16;
    QCOMPARE(changed(speed.arg(24), {}, coded), speed.arg(16));
    const QString none = "<BWFXML><SPEED></SPEED></BWFXML>";
    QCOMPARE(changed(none, {}, coded), none);
}

void TestIxmlChunk::aTrackThatIsLeftOutIsNotListed_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<int>("muted"); // of four channels, from 0
    QTest::addColumn<QString>("result");
    const QString four =
        trackList(4, track(1, 1, "a") + track(2, 2, "b") + track(3, 3, "c") + track(4, 4, "d"));
    row("first", four, 0, trackList(3, track(1, 1, "b") + track(2, 2, "c") + track(3, 3, "d")));
    row("second", four, 1, trackList(3, track(1, 1, "a") + track(2, 2, "c") + track(3, 3, "d")));
    row("last", four, 3, trackList(3, track(1, 1, "a") + track(2, 2, "b") + track(3, 3, "c")));
    row("listed in another order", trackList(3, track(4, 4, "d") + track(2, 2, "b") + track(1, 1, "a")), 1,
        trackList(2, track(3, 3, "d") + track(1, 1, "a")));
    row("the recorder's inputs keep their numbers",
        trackList(4, track(1, 1, "a") + track(2, 2, "b") + track(5, 3, "c") + track(8, 4, "d")), 1,
        trackList(3, track(1, 1, "a") + track(5, 2, "c") + track(8, 3, "d")));
    row("not listed", trackList(2, track(1, 1, "a") + track(4, 4, "d")), 1,
        trackList(2, track(1, 1, "a") + track(3, 3, "d")));
    row("beyond the channels", trackList(2, track(2, 2, "b") + track(9, 9, "x")), 1,
        trackList(1, track(8, 8, "x")));
    const QString counted = "<BWFXML><TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX></TRACK><TRACK>"
                            "<CHANNEL_INDEX> 2 </CHANNEL_INDEX></TRACK>%1</TRACK_LIST></BWFXML>";
    row("by the channel alone", counted.arg("<TRACK><CHANNEL_INDEX>3</CHANNEL_INDEX></TRACK>"), 1,
        "<BWFXML><TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX></TRACK><TRACK><CHANNEL_INDEX>2"
        "</CHANNEL_INDEX></TRACK></TRACK_LIST></BWFXML>");
    row("by the order alone",
        "<BWFXML><TRACK_LIST><TRACK>a</TRACK><TRACK><INTERLEAVE_INDEX>x</INTERLEAVE_INDEX></TRACK>"
        "<TRACK>c</TRACK></TRACK_LIST></BWFXML>",
        1, "<BWFXML><TRACK_LIST><TRACK>a</TRACK><TRACK>c</TRACK></TRACK_LIST></BWFXML>");
    row("no list", "<BWFXML><SCENE>1</SCENE></BWFXML>", 1, "<BWFXML><SCENE>1</SCENE></BWFXML>");
}

void TestIxmlChunk::aTrackThatIsLeftOutIsNotListed()
{
    QFETCH(QString, source);
    QFETCH(int, muted);
    QFETCH(QString, result);
    std::vector<int> kept{0, 1, 2, 3};
    kept.erase(kept.begin() + muted);
    QCOMPARE(changed(source, left(kept)), result);
}

void TestIxmlChunk::whatIsNoIxmlIsDamaged_data()
{
    QTest::addColumn<QString>("source");
    row("empty", "");
    row("breaks off", "<BWFXML><SPEED>");
    row("another root", "<XML><SPEED/></XML>");
    row("two bytes a letter", QString::fromLatin1("<\0B\0W\0F\0X\0M\0L\0/\0>\0", 18));
}

void TestIxmlChunk::whatIsNoIxmlIsDamaged()
{
    QFETCH(QString, source);
    QCOMPARE(changed(source, newStart({}, {})), QString("damaged"));
    QCOMPARE(changed(source, {}), QString("damaged"));
}

QTEST_GUILESS_MAIN(TestIxmlChunk)
#include "tst_ixmlchunk.moc"
