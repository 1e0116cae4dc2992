// SPDX-License-Identifier: MIT
#include "filelist/linking.h"
#include "filelist/siblinglinks.h"
#include "tests/filelist/linkedfile.h"

#include <QTest>

#include <limits>

using linkedfile::file;
using linkedfile::noon;

namespace
{

SiblingLinks linksOf(const QVector<FileData> &files)
{
    SiblingLinks links;
    for (const FileData &file : files)
        links.append(file);
    return links;
}

Link link(const QString &timecode, int cellWidth = 100)
{
    return Link{0, "source.wav", timecode, {}, cellWidth};
}

QString timecodeOf(const SiblingLinks &links, int row)
{
    const auto shared = links.linkOf(row);
    return shared ? shared->latest->timecode : "none";
}

} // namespace

class TestSiblingLinks : public QObject
{
    Q_OBJECT

private slots:
    void aTimecodeReachesTheSiblingsOnly();
    void aLaterLinkTakesThePlaceOfTheEarlierOne();
    void aRowThatLeavesKeepsOutUntilTheNextLink();
    void theLastRowWithATimecodeIsFound();
    void anotherDurationMeansOtherSiblings();
    void whatIsNoNumberHasNoSiblings_data();
    void whatIsNoNumberHasNoSiblings();
    void theWidestLinkIsThatOfRowsThatFollowIt();
    void rowsThatGoLeaveTheirSiblingsBehind();
};

void TestSiblingLinks::aTimecodeReachesTheSiblingsOnly()
{
    SiblingLinks links =
        linksOf({file("wav", 10.0), file("WAV", 10.04), file("wav", 10.05), file("mov", 10.0),
                 file("wav", 10.0, noon().addMSecs(1)), file("wav", 9.96)});
    const SiblingLinks::PassedOn passedOn = links.passOn(0, link("a"));
    QVERIFY(passedOn.hasFollowers);
    QCOMPARE(QSet<int>(passedOn.newFollowers.begin(), passedOn.newFollowers.end()), (QSet<int>{1, 5}));
    QStringList timecodes;
    for (int row = 0; row < 6; ++row)
        timecodes += timecodeOf(links, row);
    QCOMPARE(timecodes, (QStringList{"none", "a", "none", "none", "none", "a"}));
    for (const int alone : {3, 4}) {
        QVERIFY(!links.mayHaveSiblings(alone));
        QVERIFY(!links.passOn(alone, link("b")).hasFollowers);
    }
    for (const int sibling : {0, 1, 2, 5})
        QVERIFY(links.mayHaveSiblings(sibling));
}

void TestSiblingLinks::aLaterLinkTakesThePlaceOfTheEarlierOne()
{
    SiblingLinks links =
        linksOf({file("wav", 10.0), file("wav", 10.0), file("wav", 10.04), file("wav", 10.08)});
    links.passOn(0, link("a"));
    const auto seenByTheCell = links.linkOf(2);
    QCOMPARE(links.passOn(3, link("b")).newFollowers, QVector<int>());
    QCOMPARE(timecodeOf(links, 1), QString("a"));
    QCOMPARE(timecodeOf(links, 2), QString("b"));
    QCOMPARE(seenByTheCell->latest->timecode, QString("b"));
}

void TestSiblingLinks::aRowThatLeavesKeepsOutUntilTheNextLink()
{
    SiblingLinks links = linksOf({file("wav", 10.0), file("wav", 10.0), file("wav", 10.0)});
    links.passOn(0, link("a"));
    links.leave(1);
    QCOMPARE(timecodeOf(links, 1), QString("none"));
    QCOMPARE(timecodeOf(links, 2), QString("a"));
    QCOMPARE(links.passOn(1, link("b")).newFollowers, QVector<int>{0});
    QCOMPARE(timecodeOf(links, 0), QString("b"));
    QCOMPARE(timecodeOf(links, 1), QString("none"));
}

void TestSiblingLinks::theLastRowWithATimecodeIsFound()
{
    SiblingLinks links =
        linksOf({file("wav", 10.0), file("wav", 10.02), file("wav", 10.0), file("wav", 11.0)});
    QCOMPARE(links.lastRowWithTimecode(0), -1);
    for (const int row : {1, 2, 3})
        links.setHasTimecode(row, true);
    QCOMPARE(links.lastRowWithTimecode(0), 2);
    QCOMPARE(links.lastRowWithTimecode(2), 1);
    links.setHasTimecode(2, false);
    QCOMPARE(links.lastRowWithTimecode(0), 1);
    links.passOn(1, link("a"));
    QCOMPARE(links.lastRowWithTimecode(0), 2);
    QCOMPARE(links.lastRowWithTimecode(3), -1);
}

void TestSiblingLinks::anotherDurationMeansOtherSiblings()
{
    SiblingLinks links = linksOf({file("wav", 0.0), file("wav", 10.0), file("wav", 0.0), file("mov", 0.0)});
    links.setHasTimecode(0, true);
    QCOMPARE(links.lastRowWithTimecode(1), -1);
    links.setDuration(0, 10.0);
    links.setDuration(3, 10.0);
    QCOMPARE(links.lastRowWithTimecode(1), 0);
    QCOMPARE(links.lastRowWithTimecode(2), -1);
    links.setDuration(0, std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(links.lastRowWithTimecode(1), -1);
    links.setDuration(0, 0.0);
    QCOMPARE(links.lastRowWithTimecode(2), 0);
}

void TestSiblingLinks::whatIsNoNumberHasNoSiblings_data()
{
    QTest::addColumn<double>("duration"); // [s]
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("endless") << std::numeric_limits<double>::infinity();
}

void TestSiblingLinks::whatIsNoNumberHasNoSiblings()
{
    QFETCH(double, duration);
    QVERIFY(!linking::recordedTogether(file("wav", duration), file("wav", duration)));
    SiblingLinks links = linksOf({file("wav", duration), file("wav", duration)});
    links.setHasTimecode(1, true);
    QCOMPARE(links.lastRowWithTimecode(0), -1);
    QVERIFY(!links.passOn(1, link("a")).hasFollowers);
}

void TestSiblingLinks::theWidestLinkIsThatOfRowsThatFollowIt()
{
    SiblingLinks links = linksOf({file("wav", 10.0), file("wav", 10.04), file("wav", 10.08)});
    QCOMPARE(links.widestLink(), 0);
    links.passOn(0, link("a", 120));
    QCOMPARE(links.widestLink(), 120);
    links.leave(1);
    QCOMPARE(links.widestLink(), 0);
    links.passOn(1, link("b", 80));
    QCOMPARE(links.widestLink(), 80);
}

void TestSiblingLinks::rowsThatGoLeaveTheirSiblingsBehind()
{
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    SiblingLinks links =
        linksOf({file("mov", 10.0), file("wav", 10.0), file("wav", 10.02), file("wav", noNumber),
                 file("wav", 10.0, noon().addSecs(1)), file("wav", 10.0)});
    links.passOn(5, link("a", 120));
    const auto seenByTheCell = links.linkOf(2);
    links.setHasTimecode(4, true);

    links.rebuildWithout({0, 1}); // what were the rows 2 to 5 are now the rows 0 to 3
    QCOMPARE(links.widestLink(), 0);
    for (int row = 0; row < 4; ++row)
        QCOMPARE(timecodeOf(links, row), QString("none"));
    QCOMPARE(links.lastRowWithTimecode(3), 0); // it has taken one over
    QCOMPARE(links.lastRowWithTimecode(0), -1);
    QVERIFY(!links.mayHaveSiblings(1));
    QVERIFY(!links.mayHaveSiblings(2));
    QCOMPARE(links.passOn(3, link("b")).newFollowers, QVector<int>{0});
    QCOMPARE(timecodeOf(links, 0), QString("b"));
    QCOMPARE(seenByTheCell->latest->timecode, QString("a"));
}

QTEST_APPLESS_MAIN(TestSiblingLinks)
#include "tst_siblinglinks.moc"
