// SPDX-License-Identifier: MIT
#include "batch/htmlreport.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

/// The page, read back by Python's parsers.
class TestHtmlReport : public QObject
{
    Q_OBJECT

private slots:
    void thePageIsWellFormedAndShowsAll();
    void eachColumnShowsItsPart();
    void whatWentWrongComesFirst();
    void withoutFaultsNoneAreListed();
};

namespace
{

QJsonObject record(const QString &name, const QString &result, const QJsonValue &exported = {})
{
    return {{"name", name},
            {"path", "/card/" + name},
            {"result", result},
            {"reason", "a & <b> " + name},
            {"audioTimecode", "10:00:00:00"},
            {"frameRate", 25},
            {"dropFrame", false},
            {"exportResult", exported}};
}

/// A record with \a known and nothing else.
QJsonObject recordOf(const QJsonObject &known)
{
    QJsonObject record;
    for (const char *key :
         {"linkedFrom", "channel", "frameRate", "pictureCodec", "soundCodecs", "exportResult"})
        record[key] = QJsonValue();
    for (auto value = known.begin(); value != known.end(); ++value)
        record[value.key()] = value.value();
    return record;
}

/// The page as Python's strict XML parser sees it and, the same, its forgiving HTML parser: one list of cells
/// for each row of its tables, after the heading before it.
QJsonArray pageRows(const QJsonArray &records)
{
    constexpr auto program = R"(
import html.parser, json, sys, xml.etree.ElementTree as tree
page = sys.stdin.buffer.read().decode("utf-8")
rows = []
for element in tree.fromstring(page).iter():
    if element.tag in ("h1", "h2"):
        rows.append([element.text])
    if element.tag == "tr":
        rows.append(["".join(cell.itertext()) for cell in element])
class Reader(html.parser.HTMLParser):
    rows, text = [], None
    def handle_starttag(self, tag, attributes):
        if tag in ("h1", "h2", "tr"): self.rows.append([])
        if tag in ("h1", "h2", "td", "th"): self.text = ""
    def handle_endtag(self, tag):
        if tag in ("h1", "h2", "td", "th"):
            self.rows[-1].append(self.text)
            self.text = None
    def handle_data(self, data):
        if self.text is not None: self.text += data
reader = Reader()
reader.feed(page)
reader.close()
assert [[cell or "" for cell in row] for row in rows] == reader.rows
print(json.dumps(reader.rows))
)";
    QProcess python;
    python.start("python3", {"-c", program});
    python.write(htmlreport::make(records));
    python.closeWriteChannel();
    python.waitForFinished();
    return QJsonDocument::fromJson(python.readAllStandardOutput()).array();
}

QStringList cellsOf(const QJsonValue &row)
{
    return row.toVariant().toStringList();
}

QStringList firstCells(const QJsonArray &rows)
{
    QStringList cells;
    for (const QJsonValue &row : rows)
        cells += row.toArray().first().toString();
    return cells;
}

} // namespace

void TestHtmlReport::thePageIsWellFormedAndShowsAll()
{
    const QString name = "ü <script>&\"x\".mov";
    const QJsonArray rows = pageRows({record(name, "found"), record("b.wav", "linked")});
    QCOMPARE(firstCells(rows), (QStringList{"Timecode report", "All files", "File", name, "b.wav"}));
    const QJsonArray cells = rows.at(3).toArray();
    QCOMPARE(cells.at(1).toString(), QString("10:00:00:00"));
    QCOMPARE(cells.last().toString(), QString("found"));
    QCOMPARE(cells.size(), rows.at(2).toArray().size());
}

void TestHtmlReport::eachColumnShowsItsPart()
{
    const QJsonObject camera{{"name", "a.mov"},
                             {"audioTimecode", "10:00:00;02"},
                             {"frameRate", 29.97},
                             {"dropFrame", true},
                             {"channel", 2},
                             {"stream", 1},
                             {"foundAtSecond", 6},
                             {"fileTimecode", "01:02:03:04"},
                             {"durationSeconds", 12.5},
                             {"pictureCodec", "prores"},
                             {"pictureWidth", 1920},
                             {"pictureHeight", 1080},
                             {"pictureRate", "30000/1001"},
                             {"soundCodecs", "pcm_s24le"},
                             {"soundChannels", 4},
                             {"exportPath", "/out/a.MOV"},
                             {"exportStart", "10:00:00;03"},
                             {"exportResult", "verified"},
                             {"result", "found"}};
    const QJsonObject recorder{
        {"name", "b.wav"}, {"frameRate", 25}, {"channel", 1}, {"stream", 0}, {"result", "found"}};
    const QJsonObject linked{
        {"name", "c.wav"}, {"linkedFrom", "b.wav"}, {"channel", 1}, {"result", "linked"}};
    const QJsonObject none{{"name", "d.mov"}, {"result", "none"}};
    const QJsonArray rows =
        pageRows({recordOf(camera), recordOf(recorder), recordOf(linked), recordOf(none)});
    QCOMPARE(rows.size(), 2 + 1 + 4);
    QCOMPARE(cellsOf(rows.at(2)), (QStringList{"File", "Audio TC", "Rate", "Place", "File TC", "Duration [s]",
                                               "Picture", "Sound", "New file", "New start", "Result"}));
    QCOMPARE(cellsOf(rows.at(3)),
             (QStringList{"a.mov", "10:00:00;02", "29.97 DF", "channel 2 of stream 1, found at second 6",
                          "01:02:03:04", "12.5", "prores 1920x1080, 30000/1001", "pcm_s24le, 4 channels",
                          "/out/a.MOV", "10:00:00;03", "verified"}));
    QCOMPARE(cellsOf(rows.at(4)),
             (QStringList{"b.wav", "", "25", "channel 1 of stream 0", "", "", "", "", "", "", "found"}));
    QCOMPARE(cellsOf(rows.at(5)),
             (QStringList{"c.wav", "", "", "of b.wav", "", "", "", "", "", "", "linked"}));
    QCOMPARE(cellsOf(rows.at(6)), (QStringList{"d.mov", "", "", "", "", "", "", "", "", "", "none"}));
}

void TestHtmlReport::whatWentWrongComesFirst()
{
    const QJsonArray rows = pageRows({record("a.mov", "found"), record("bad.mov", "failed")});
    QCOMPARE(firstCells(rows), (QStringList{"Timecode report", "What went wrong", "File", "/card/bad.mov",
                                            "All files", "File", "a.mov", "bad.mov"}));
    QCOMPARE(rows.at(3).toArray().at(1).toString(), QString("a & <b> bad.mov"));
}

void TestHtmlReport::withoutFaultsNoneAreListed()
{
    QVERIFY(!htmlreport::make({record("a.mov", "none")}).contains("What went wrong"));
    QVERIFY(htmlreport::make({}).contains("0 files"));
}

QTEST_GUILESS_MAIN(TestHtmlReport)
#include "tst_htmlreport.moc"
