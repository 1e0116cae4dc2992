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
