// SPDX-License-Identifier: MIT
#include "tooladapter/rules/tagrules.h"

#include <QStringList>
#include <QTest>

#include <utility>

using namespace tooladapter;

namespace
{

QString textOf(const Options &options)
{
    QStringList words;
    for (const Option &option : options)
        words += QString::fromStdString(option.name + ' ' + option.value);
    return words.join(' ');
}

const char dropsTimecode[] = "-map_metadata 0 -metadata:s timecode= -metadata timecode=";

using Notes = std::map<std::string, std::string>;

} // namespace

Q_DECLARE_METATYPE(tooladapter::Container)
Q_DECLARE_METATYPE(Notes)

class TestTagRules : public QObject
{
    Q_OBJECT

private slots:
    void notesAreKept_data();
    void notesAreKept();
    void mxfHoldsNotesAsComments_data();
    void mxfHoldsNotesAsComments();
    void onlyCommentsNeedTheTextsOfNotes_data();
    void onlyCommentsNeedTheTextsOfNotes();
    void theReelIsKept();
    void aSoundFileKeepsTheListsOwn();
};

void TestTagRules::notesAreKept_data()
{
    QTest::addColumn<Container>("container");
    QTest::addColumn<QStringList>("tags"); // of the source
    QTest::addColumn<bool>("hasTimecode"); // a new one
    QTest::addColumn<bool>("isUnread");
    QTest::addColumn<QString>("options");
    const QString drops = dropsTimecode;
    const QStringList plain{"major_brand", "creation_time", "title", "location", "location-eng", "timecode"};
    const QStringList keys{"major_brand", "compatible_brands", "com.apple.quicktime.make", "title"};
    const auto row = [](const char *name, Container container, const QStringList &tags, bool hasTimecode,
                        const QString &options) {
        QTest::newRow(name) << container << tags << hasTimecode << false << options;
    };
    row("nothing to note", Container::QuickTime, {}, false, "-map_metadata 0");
    row("what QuickTime holds by itself", Container::QuickTime, plain, false, "-map_metadata 0");
    row("an old timecode gives way to a new one", Container::QuickTime, plain, true, drops);
    row("keys", Container::QuickTime, keys, false,
        "-map_metadata 0 -metadata compatible_brands= -metadata major_brand= -movflags use_metadata_tags");
    row("keys that hold a timecode", Container::QuickTime, {"com.vendor.camera.TimeCode", "reel"}, true,
        drops + " -metadata com.vendor.camera.TimeCode= -movflags use_metadata_tags");
    row("into MXF", Container::Mxf, keys, true, drops);
    row("an MXF file is not the work of the program that wrote its source", Container::Mxf,
        {"company_name", "product_name", "product_version", "uid"}, false,
        "-map_metadata 0 -metadata company_name= -metadata product_name= -metadata product_version=");
    QTest::newRow("the timecode of a source that is not read yet")
        << Container::QuickTime << plain << false << true << drops;
}

void TestTagRules::notesAreKept()
{
    QFETCH(Container, container);
    QFETCH(QStringList, tags);
    QFETCH(bool, hasTimecode);
    QFETCH(bool, isUnread);
    QFETCH(QString, options);
    ExportPlan plan;
    plan.container = container;
    plan.metadata = {{"-map_metadata", "-1"}};
    if (hasTimecode)
        plan.timecode = "10:11:12:13";
    Source source;
    for (const QString &tag : std::as_const(tags))
        source.notes[tag.toStdString()] = omittedNote;
    Hints hints;
    hints.isUnread = isUnread;
    QCOMPARE(textOf(tagOptions(plan, source, 0, hints)), options);
}

void TestTagRules::mxfHoldsNotesAsComments_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<Notes>("notes");
    QTest::addColumn<bool>("hasTimecode");
    QTest::addColumn<QString>("options");
    const QString keeps = "-map_metadata 0";
    const auto row = [](const char *name, const Notes &notes, const QString &options) {
        QTest::newRow(name) << "in.mov" << notes << false << options;
    };
    row("title and key", {{"title", "Scene 12A"}, {"com.apple.quicktime.make", "Works"}},
        keeps + " -metadata comment_com.apple.quicktime.make=Works -metadata comment_title=Scene 12A");
    row("two lines", {{"comment", "a\nb=c"}}, keeps + " -metadata comment_comment=a\nb=c");
    row("what has a place of its own, or is the tool's",
        {{"creation_time", "2024"}, {"encoder", "x"}, {"major_brand", "qt"}, {"timecode", "01:02:03:04"}},
        keeps);
    row("a time of recording that the source names twice",
        {{"creation_time", "2024-05-03T09:00:00.000000Z;2024-05-03T09:00:00Z"}},
        keeps + " -metadata creation_time=2024-05-03T09:00:00.000000Z");
    row("a comment already", {{"comment_title", "Scene 12A"}}, keeps);
    row("a text that is not known", {{"title", "..."}}, keeps);
    row("more than there is room for",
        {{"a", std::string(20'000, 'x')}, {"b", std::string(20'000, 'y')}, {"c", "z"}},
        keeps + " -metadata comment_a=" + QString(20'000, 'x') + " -metadata comment_c=z");
    row("a timecode, if no other is written", {{"startTimecode", "x"}},
        keeps + " -metadata comment_startTimecode=x");
    QTest::newRow("a timecode that gives way") << "in.mov" << Notes{{"startTimecode", "x"}} << true
                                               << QString(dropsTimecode) + " -metadata startTimecode=";
    QTest::newRow("from MXF") << "in.MXF" << Notes{{"material_package_name", "x"}, {"comment_title", "y"}}
                              << false << keeps;
}

void TestTagRules::mxfHoldsNotesAsComments()
{
    QFETCH(QString, input);
    QFETCH(Notes, notes);
    QFETCH(bool, hasTimecode);
    QFETCH(QString, options);
    ExportPlan plan;
    plan.input = input.toStdString();
    plan.output = "out.MXF";
    plan.container = Container::Mxf;
    if (hasTimecode)
        plan.timecode = "10:11:12:13";
    Source source;
    source.notes = notes;
    QCOMPARE(textOf(tagOptions(plan, source, 0, {})), options);
}

void TestTagRules::onlyCommentsNeedTheTextsOfNotes_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("output");
    QTest::addColumn<Notes>("notes");
    QTest::addColumn<bool>("lacks");
    const Notes untold{{"creation_time", "..."}, {"title", "..."}};
    QTest::newRow("into MXF") << "in.mov"
                              << "out.MXF" << untold << true;
    QTest::newRow("known already") << "in.mov"
                                   << "out.MXF" << Notes{{"title", "x"}} << false;
    QTest::newRow("nothing that becomes a comment") << "in.mov"
                                                    << "out.MXF" << Notes{{"creation_time", "..."}} << false;
    QTest::newRow("into QuickTime") << "in.mov"
                                    << "out.MOV" << untold << false;
    QTest::newRow("from MXF") << "in.mxf"
                              << "out.MXF" << untold << false;
}

void TestTagRules::onlyCommentsNeedTheTextsOfNotes()
{
    QFETCH(QString, input);
    QFETCH(QString, output);
    QFETCH(Notes, notes);
    Source source;
    source.notes = notes;
    QTEST(lacksNotes(source, input.toStdString(), output.toStdString()), "lacks");
}

void TestTagRules::theReelIsKept()
{
    ExportPlan plan;
    plan.container = Container::QuickTime;
    plan.timecode = "10:11:12:13";
    Source source;
    source.streams.resize(2);
    source.streams[1].reel = "A001";
    QCOMPARE(textOf(tagOptions(plan, source, 0, {})),
             QString(dropsTimecode) + " -metadata:s:v:0 reel_name=A001");
    QCOMPARE(textOf(tagOptions(plan, source, -1, {})),
             QString(dropsTimecode) + " -movflags use_metadata_tags"); // no picture to describe
    plan.container = Container::Mxf;
    QCOMPARE(textOf(tagOptions(plan, source, 0, {})), QString(dropsTimecode) + " -metadata reel_name=A001");
}

void TestTagRules::aSoundFileKeepsTheListsOwn()
{
    ExportPlan plan;
    plan.container = Container::Wave;
    plan.metadata = {{"-write_bext", "1"}, {"-metadata", "time_reference=5"}};
    QVERIFY(tagOptions(plan, {}, -1, {}) == plan.metadata);
}

QTEST_APPLESS_MAIN(TestTagRules)
#include "tst_tagrules.moc"
