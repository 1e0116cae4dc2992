// SPDX-License-Identifier: MIT
#include "testkit/fixtures/row.h"
#include "tests/tooladapter/chunks/wavebytes.h"
#include "tests/tooladapter/rules/words.h"
#include "tooladapter/chunks/bextchunk.h"
#include "tooladapter/chunks/wavefacts.h"

#include <QTest>

using namespace tooladapter;
using namespace wavebytes;

Q_DECLARE_METATYPE(std::string)

namespace
{

WaveChanges newStart(const std::string &speed = {})
{
    WaveChanges changes;
    changes.setsStart = true;
    changes.speed = speed;
    return changes;
}

} // namespace

/// The broadcast extension of a WAV file, and what an export list changes of it.
class TestBextChunk : public QObject
{
    Q_OBJECT

private slots:
    void onlyTheTimeReferenceChanges_data();
    void onlyTheTimeReferenceChanges();
    void theStartStaysWhereTheListNamesNone();
    void aShortChunkIsDamaged();
    void theSpeedInADescriptionIsTheNewOne_data();
    void theSpeedInADescriptionIsTheNewOne();
    void aDescriptionStaysInItsField();
    void changesAreReadFromTheList_data();
    void changesAreReadFromTheList();
    void channelsThatStayAreReadFromThePlan();
};

void TestBextChunk::onlyTheTimeReferenceChanges_data()
{
    QTest::addColumn<quint64>("start");
    row("midnight", quint64{0});
    row("ten o'clock", quint64{1'728'000'000});
    row("more than 32 bits", quint64{16'000'000'000});
}

void TestBextChunk::onlyTheTimeReferenceChanges()
{
    QFETCH(quint64, start);
    const std::string source = bext(123);
    const auto changed = changedBext(source, newStart("025.000-ND"), start);
    QVERIFY(changed);
    QVERIFY(*changed == bext(start));
    QCOMPARE(*timeReferenceOf(*changed), std::uint64_t{start});
}

void TestBextChunk::theStartStaysWhereTheListNamesNone()
{
    const std::string source = bext(123);
    QVERIFY(changedBext(source, {}, 456) == source);
}

void TestBextChunk::aShortChunkIsDamaged()
{
    const std::string shortest = bext(123).substr(0, 602);
    QVERIFY(changedBext(shortest, newStart(), 456));
    QVERIFY(!changedBext(shortest.substr(1), newStart(), 456));
    QVERIFY(!timeReferenceOf(shortest.substr(1)));
}

void TestBextChunk::theSpeedInADescriptionIsTheNewOne_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("changed");
    row("none", "sSCENE=12 sTAKE=3", "sSCENE=12 sTAKE=3");
    row("alone", "sSPEED=024.000-ND", "sSPEED=029.970-DF");
    row("the same", "sSPEED=029.970-DF\r\nsTAKE=3", "sSPEED=029.970-DF\r\nsTAKE=3");
    row("among others", "sTAKE=3\r\nsSPEED=024.000-ND\r\nsSCENE=12",
        "sTAKE=3\r\nsSPEED=029.970-DF\r\nsSCENE=12");
    row("another prefix", "dSPEED=25-ND", "dSPEED=029.970-DF");
    row("twice", "sSPEED=1 sSPEED=2", "sSPEED=029.970-DF sSPEED=029.970-DF");
    row("empty", "sSPEED=\nsTAKE=3", "sSPEED=029.970-DF\nsTAKE=3");
    row("ends of lines in XML", "sSPEED=024.000-ND&#13;&#10;sTAKE=3", "sSPEED=029.970-DF&#13;&#10;sTAKE=3");
    row("another word", "sTAPESPEED=19 SPEED=19 xsSPEED=19", "sTAPESPEED=19 SPEED=19 xsSPEED=19");
}

void TestBextChunk::theSpeedInADescriptionIsTheNewOne()
{
    QFETCH(QString, text);
    QFETCH(QString, changed);
    QCOMPARE(QString::fromStdString(withSpeed(text.toStdString(), "029.970-DF")), changed);
    const auto chunk = changedBext(bext(1, text.toStdString()), newStart("029.970-DF"), 2);
    QVERIFY(chunk == bext(2, changed.toStdString()));
}

void TestBextChunk::aDescriptionStaysInItsField()
{
    const std::string rest = ' ' + std::string(246, 'x'); // 256 bytes with "sSPEED=24"
    const auto chunk = changedBext(bext(1, "sSPEED=24" + rest), newStart("029.970-DF"), 2);
    QVERIFY(chunk == bext(2, "sSPEED=" + rest));
}

void TestBextChunk::changesAreReadFromTheList_data()
{
    QTest::addColumn<QString>("metadata");
    QTest::addColumn<QString>("timecodeRate");
    QTest::addColumn<bool>("setsStart");
    QTest::addColumn<QString>("speed");
    QTest::addColumn<QString>("rate");
    const QString start = "-metadata time_reference=7 -metadata comment=sSPEED=";
    row("no timecode", "", "", false, "", "0/1");
    row("the application knows the rate", start + "025.002-ND", "25/1", true, "025.002-ND", "25/1");
    row("23.976", start + "023.976-ND", "", true, "023.976-ND", "24000/1001");
    row("24", start + "024.000-ND", "", true, "024.000-ND", "24/1");
    row("29.97 drop-frame", start + "029.970-DF", "", true, "029.970-DF", "30000/1001");
    row("no rate at all", start + "000.000-ND", "", true, "000.000-ND", "0/1");
}

void TestBextChunk::changesAreReadFromTheList()
{
    QFETCH(QString, metadata);
    QFETCH(QString, timecodeRate);
    QFETCH(bool, setsStart);
    QFETCH(QString, speed);
    QFETCH(QString, rate);
    const auto list = parseArguments(wordsOf("-y -i in.wav -write_bext 1 " + metadata + " out.WAV"));
    QVERIFY(list);
    const auto changes =
        waveChangesOf(planOf(*list, {}, {}), FrameRate::fromText(timecodeRate.toStdString()));
    QCOMPARE(changes.setsStart, setsStart);
    QCOMPARE(QString::fromStdString(changes.speed), speed);
    QCOMPARE(QString("%1/%2").arg(changes.rate.numerator).arg(changes.rate.denominator), rate);
    QCOMPARE(changes.isDropFrame(), speed.endsWith("DF"));
    QVERIFY(changes.keptChannels.empty());
}

void TestBextChunk::channelsThatStayAreReadFromThePlan()
{
    ExportPlan plan;
    plan.tracks = {{0, "pcm_s24le", {0, 2}}};
    QCOMPARE(waveChangesOf(plan, {}).keptChannels, (std::vector<int>{0, 2}));
}

QTEST_GUILESS_MAIN(TestBextChunk)
#include "tst_bextchunk.moc"
