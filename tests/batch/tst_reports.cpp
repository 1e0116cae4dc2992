// SPDX-License-Identifier: MIT
#include "batch/reportrecord.h"
#include "batch/reports.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// The reports, read back by Python's own modules.
class TestReports : public QObject
{
    Q_OBJECT

private slots:
    void csvIsReadBackCellByCell();
    void csvLinesEndAsTheStandardSays();
    void jsonIsReadBackAsItWas();
    void theSuffixChooses();
    void reportsAreJoinedByPath();
};

namespace
{

QJsonObject record(const QString &name, const QString &result)
{
    QJsonObject all;
    for (const QString &key : reportrecord::keys())
        all[key] = QJsonValue();
    all["name"] = name;
    all["result"] = result;
    return all;
}

QJsonArray records()
{
    QJsonObject first = record("a \"quoted\", ünïcode\nname;\r 100%1.mov", "found");
    first["samplesSinceMidnight"] = 16588800000.0;
    first["frameRate"] = 23.976;
    first["levelDbfs"] = -0.5;
    first["dropFrame"] = false;
    return {first, record("b.wav", "linked"), record("c.wav", "failed")};
}

/// What the Python program \a source prints when it is given \a text as a file.
QByteArray python(const QString &source, const QByteArray &text)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("report"));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return {};
    file.close();
    QProcess process;
    process.start("python3", {"-c", source, file.fileName()});
    process.waitForFinished();
    return process.readAllStandardOutput();
}

} // namespace

void TestReports::csvIsReadBackCellByCell()
{
    const QByteArray read = python("import csv, json, sys\n"
                                   "with open(sys.argv[1], newline='', encoding='utf-8') as f:\n"
                                   "    print(json.dumps(list(csv.reader(f, strict=True))))\n",
                                   reports::csv(records()));
    const QJsonArray lines = QJsonDocument::fromJson(read).array();
    QCOMPARE(lines.size(), 4);
    const QJsonArray keys = QJsonArray::fromStringList(reportrecord::keys());
    QCOMPARE(lines.at(0).toArray(), keys);
    const auto cell = [&](int line, const QString &key) {
        return lines.at(line).toArray().at(reportrecord::keys().indexOf(key)).toString();
    };
    QCOMPARE(cell(1, "name"), records().at(0).toObject()["name"].toString());
    QCOMPARE(cell(1, "samplesSinceMidnight"), QString("16588800000"));
    QCOMPARE(cell(1, "frameRate"), QString("23.976"));
    QCOMPARE(cell(1, "levelDbfs"), QString("-0.5"));
    QCOMPARE(cell(1, "dropFrame"), QString("false"));
    QCOMPARE(cell(1, "linkedFrom"), QString());
    QCOMPARE(cell(2, "name"), QString("b.wav"));
    QCOMPARE(cell(3, "result"), QString("failed"));
    for (const QJsonValue &line : lines)
        QCOMPARE(line.toArray().size(), keys.size());
}

void TestReports::csvLinesEndAsTheStandardSays()
{
    const QByteArray text = reports::csv({record("a.mov", "none")});
    QCOMPARE(text.count("\r\n"), 2);
    QCOMPARE(text.count('\n'), 2);
    QVERIFY(text.endsWith("\r\n"));
}

void TestReports::jsonIsReadBackAsItWas()
{
    const QByteArray read = python("import json, sys\n"
                                   "print(json.dumps(json.load(open(sys.argv[1], encoding='utf-8'))))\n",
                                   reports::json(records()));
    const QJsonObject report = QJsonDocument::fromJson(read).object();
    QCOMPARE(report["files"].toArray(), records());
    QCOMPARE(report["program"].toString(), QString("ostrel-batch"));
    QCOMPARE(report["summary"].toObject(),
             (QJsonObject{{"files", 3}, {"found", 1}, {"linked", 1}, {"none", 0}, {"failed", 1}}));
}

void TestReports::theSuffixChooses()
{
    const auto contents = [](const QString &path) {
        QStringList names;
        const auto files = reports::forPath(path, records());
        for (const reports::ReportFile &file : files)
            names += file.path + ' ' + QString::fromUtf8(file.content.left(9)).simplified();
        return names;
    };
    QCOMPARE(contents("/a.b/day.CSV"), QStringList{"/a.b/day.CSV name,path"});
    QCOMPARE(contents("day.json"), QStringList{"day.json { \"fi"});
    QCOMPARE(contents("day.html"), QStringList{"day.html <!DOCTYPE"});
    QCOMPARE(contents("day.ale"), QStringList{"day.ale Heading"});
    QVERIFY(reports::isReportName("day.ALE"));
    QVERIFY(!reports::isReportName("day.txt"));
}

void TestReports::reportsAreJoinedByPath()
{
    const auto at = [](const QString &path, const QString &result) {
        QJsonObject file = record(QFileInfo(path).fileName(), result);
        file["path"] = path;
        return file;
    };
    const QJsonArray first{at("/b/1.mov", "failed"), at("/a/1.mov", "found")};
    const QJsonArray second{at("/c/1.mov", "none"), at("/b/1.mov", "found")};
    QCOMPARE(reports::join({first, second}),
             (QJsonArray{at("/a/1.mov", "found"), at("/b/1.mov", "found"), at("/c/1.mov", "none")}));
    QCOMPARE(reports::recordsIn(reports::json(first)).value_or(QJsonArray()), first);
    for (const char *other : {"", "{}", "[]", "name,path", R"({"program": "another", "files": []})"})
        QVERIFY(!reports::recordsIn(other));
}

QTEST_GUILESS_MAIN(TestReports)
#include "tst_reports.moc"
