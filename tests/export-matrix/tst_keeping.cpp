// SPDX-License-Identifier: MIT
#include "tests/export-matrix/keepingtable.h"

#include <QTest>

using namespace exportmatrix;

/// What counts as kept, and the table that shows it.
class TestKeeping : public QObject
{
    Q_OBJECT

private slots:
    void factsMeetTheirVerdict_data();
    void factsMeetTheirVerdict();
    void targetFollowsFromNameAndType_data();
    void targetFollowsFromNameAndType();
    void probeTellsTheShootsNotesOnly();
    void tableComesBackFromItsPage();
    void tableDiffersFromAPageThatPromisesMore();
};

Q_DECLARE_METATYPE(exportmatrix::FactGroup)
Q_DECLARE_METATYPE(exportmatrix::Facts)
Q_DECLARE_METATYPE(exportmatrix::Target)
Q_DECLARE_METATYPE(exportmatrix::Verdict)

namespace
{

const char page[] =
    "# Exports\n\nText.\n\n"
    "| What the source holds | MOV, picture copied | MXF, picture copied | MXF MPEG-2 | MXF DNxHD | "
    "MOV DNxHD | WAV |\n"
    "|---|---|---|---|---|---|---|\n"
    "| Place | kept | not held | not held | not held | kept or LOST | - |\n"
    "| Frames | kept | kept | converted | converted | converted | - |\n\nMore text.\n";

} // namespace

void TestKeeping::factsMeetTheirVerdict_data()
{
    QTest::addColumn<Facts>("written");
    QTest::addColumn<FactGroup>("group");
    QTest::addColumn<Target>("target");
    QTest::addColumn<Verdict>("verdict");
    const auto fact = [](FactGroup group, const QString &value) { return Facts{{group, "name", value}}; };
    QTest::newRow("equal") << fact(FactGroup::Place, "value") << FactGroup::Place << Target::CopiedMov
                           << Verdict::Kept;
    QTest::newRow("missing") << Facts{} << FactGroup::Place << Target::CopiedMov << Verdict::Lost;
    QTest::newRow("changed") << fact(FactGroup::Place, "other") << FactGroup::Place << Target::DnxMov
                             << Verdict::Lost;
    QTest::newRow("no place for it") << Facts{} << FactGroup::Chapters << Target::DnxMxf << Verdict::NotHeld;
    QTest::newRow("kept without a known place")
        << fact(FactGroup::Chapters, "value") << FactGroup::Chapters << Target::DnxMxf << Verdict::Kept;
    QTest::newRow("not asked for") << Facts{} << FactGroup::DataTracks << Target::CopiedMov
                                   << Verdict::LeftOut;
    QTest::newRow("a key became a note")
        << fact(FactGroup::Camera, "value") << FactGroup::QuickTimeKeys << Target::CopiedMov << Verdict::Kept;
    QTest::newRow("a note of another value")
        << fact(FactGroup::Camera, "other") << FactGroup::QuickTimeKeys << Target::CopiedMov << Verdict::Lost;
    QTest::newRow("sound file without its markers")
        << Facts{} << FactGroup::Cues << Target::Wave << Verdict::Lost;
}

void TestKeeping::factsMeetTheirVerdict()
{
    QFETCH(Facts, written);
    QFETCH(FactGroup, group);
    QFETCH(Target, target);
    const QVector<Finding> findings = compareFacts({{group, "name", "value"}}, written, target);
    QCOMPARE(findings.size(), 1);
    QCOMPARE(findings.first().thing, nameOf(group));
    QTEST(findings.first().verdict, "verdict");
}

void TestKeeping::targetFollowsFromNameAndType_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("type");
    QTest::addColumn<Target>("target");
    QTest::newRow("pass through of MXF") << "a.MXF" << 0 << Target::CopiedMxf;
    QTest::newRow("pass through to QuickTime") << "a.MOV" << 5 << Target::CopiedMov;
    QTest::newRow("MPEG-2") << "a.MXF" << 1 << Target::Mpeg2Mxf;
    QTest::newRow("DNxHD in MXF") << "a.MXF" << 4 << Target::DnxMxf;
    QTest::newRow("DNxHD in QuickTime") << "a.MOV" << 6 << Target::DnxMov;
    QTest::newRow("sound, any type") << "a.WAV" << 6 << Target::Wave;
}

void TestKeeping::targetFollowsFromNameAndType()
{
    QFETCH(QString, name);
    QFETCH(int, type);
    ExportOptions options;
    options.videoType = type;
    QTEST(targetOf(name, options), "target");
}

void TestKeeping::probeTellsTheShootsNotesOnly()
{
    const QJsonObject picture{
        {"codec_type", "video"},
        {"tags", QJsonObject{{"handler_name", "Pictures"}, {"timecode", "01:00:00:00"}}}};
    const QJsonObject sound{{"codec_type", "audio"}, {"tags", QJsonObject{{"language", "fra"}}}};
    const QJsonObject tags{{"encoder", "a tool"},
                           {"timecode", "01:00:00:00"},
                           {"com.apple.quicktime.make", "Works"},
                           {"comment_com.apple.quicktime.model", "Cinema 1"},
                           {"comment_scene", "12A"},
                           {"creation_time", "2024-05-03T09:00:00.000000Z"}};
    const Facts facts =
        factsOfProbe({{"streams", QJsonArray{picture, sound}}, {"format", QJsonObject{{"tags", tags}}}}, {3});
    QCOMPARE(facts, (Facts{{FactGroup::QuickTimeKeys, "make", "Works"},
                           {FactGroup::QuickTimeKeys, "model", "Cinema 1"},
                           {FactGroup::Notes, "scene", "12A"},
                           {FactGroup::CreationTime, "creation_time", "2024-05-03T09:00:00Z"},
                           {FactGroup::StreamNames, "picture", "Pictures"},
                           {FactGroup::ColourTags, "color_range", "tv"},
                           {FactGroup::Languages, "audio 3", "fra"}}));
}

void TestKeeping::tableComesBackFromItsPage()
{
    const KeepingTable table = KeepingTable::fromMarkdown(page);
    QVERIFY(QString(page).contains(table.toMarkdown()));
    QVERIFY(table.differences(table, true).isEmpty());
    QVERIFY(KeepingTable::fromMarkdown("no table").isEmpty());
}

void TestKeeping::tableDiffersFromAPageThatPromisesMore()
{
    const KeepingTable documented = KeepingTable::fromMarkdown(page);
    KeepingTable measured;
    measured.add(Target::CopiedMov, {{"Place", Verdict::Kept, {}}});
    QVERIFY(measured.differences(documented, false).isEmpty()); // a part that agrees
    QVERIFY(!measured.differences(documented, true).isEmpty()); // but not the whole
    measured.add(Target::CopiedMov, {{"Place", Verdict::Lost, {}}});
    QCOMPARE(measured.differences(documented, false),
             QStringList{"Place, MOV, picture copied: measured \"kept or LOST\", documented \"kept\""});
}

QTEST_APPLESS_MAIN(TestKeeping)
#include "tst_keeping.moc"
