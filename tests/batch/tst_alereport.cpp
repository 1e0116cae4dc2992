// SPDX-License-Identifier: MIT
#include "batch/alereport.h"

#include <QJsonObject>
#include <QTest>

/// The logs, taken apart by the published rules of the form: a heading of names and values, the names of the
/// columns, and data, with tabs between and empty lines between the parts.
class TestAleReport : public QObject
{
    Q_OBJECT

private slots:
    void aFileIsLogged_data();
    void aFileIsLogged();
    void theHeadingDescribesTheFiles();
    void eachRateGetsALog();
    void filesWithoutTimecodeAreNotLogged();
    void tabsAndLineEndsStayTheFormsOwn();
};

namespace
{

struct Parsed {
    QMap<QString, QString> heading;
    QVector<QMap<QString, QString>> data;
    QString fault; ///< where the rules are broken
};

Parsed parse(const QByteArray &content)
{
    Parsed parsed;
    QStringList lines = QString::fromUtf8(content).split("\r\n");
    if (lines.takeLast() != "" || content.count('\n') != content.count("\r\n"))
        parsed.fault = "line ends";
    if (lines.isEmpty() || lines.takeFirst() != "Heading")
        parsed.fault = "no heading";
    while (!lines.isEmpty() && !lines.first().isEmpty()) {
        const QStringList pair = lines.takeFirst().split('\t');
        if (pair.size() != 2)
            parsed.fault = "a heading without value";
        parsed.heading[pair.value(0)] = pair.value(1);
    }
    if (lines.mid(0, 2) != QStringList{"", "Column"} || lines.mid(3, 2) != QStringList{"", "Data"})
        parsed.fault = "parts";
    const QStringList columns = lines.value(2).split('\t');
    for (const QString &line : lines.mid(5)) {
        const QStringList cells = line.split('\t');
        if (cells.size() != columns.size())
            parsed.fault = "cells: " + line;
        QMap<QString, QString> row;
        for (int i = 0; i < columns.size(); ++i)
            row[columns.at(i)] = cells.value(i);
        parsed.data += row;
    }
    return parsed;
}

QJsonObject record(const QString &timecode, double rate, const QString &pictureRate, double duration)
{
    return {{"name", "A001.take.mov"},
            {"path", "/card/A001.take.mov"},
            {"audioTimecode", timecode},
            {"frameRate", rate},
            {"dropFrame", timecode.contains(';')},
            {"durationSeconds", duration},
            {"soundChannels", 2},
            {"soundCodecs", "pcm_s24le"},
            {"pictureRate", pictureRate.isEmpty() ? QJsonValue() : QJsonValue(pictureRate)},
            {"pictureCodec", pictureRate.isEmpty() ? QJsonValue() : QJsonValue("h264")},
            {"pictureHeight", pictureRate.isEmpty() ? QJsonValue() : QJsonValue(720)},
            {"userBits", "0000002a"},
            {"linkedFrom", QJsonValue()},
            {"exportPath", QJsonValue()}};
}

} // namespace

void TestAleReport::aFileIsLogged_data()
{
    QTest::addColumn<QJsonObject>("file");
    QTest::addColumn<QString>("fps");
    QTest::addColumn<QStringList>("cells"); // start, end, duration, tracks
    QTest::newRow("25") << record("10:00:00:20", 25, "25/1", 5.0) << "25"
                        << QStringList{"10:00:00:20", "10:00:05:20", "00:00:05:00", "VA1A2"};
    QTest::newRow("23.976") << record("10:00:00:00", 23.976, "24000/1001", 5.005) << "23.976"
                            << QStringList{"10:00:00:00", "10:00:05:00", "00:00:05:00", "VA1A2"};
    QTest::newRow("drop-frame over a minute")
        << record("10:00:59;00", 29.97, "30000/1001", 2.002) << "29.97"
        << QStringList{"10:00:59;00", "10:01:01;02", "00:00:02;00", "VA1A2"};
    QTest::newRow("over midnight") << record("23:59:59:00", 24, "24/1", 2.0) << "24"
                                   << QStringList{"23:59:59:00", "00:00:01:00", "00:00:02:00", "VA1A2"};
    QTest::newRow("a picture twice as fast")
        << record("10:00:00:13", 25, "50/1", 1.0) << "50"
        << QStringList{"10:00:00:26", "10:00:01:26", "00:00:01:00", "VA1A2"};
    QTest::newRow("sound alone") << record("10:00:00:00", 30, "", 1.5) << "30"
                                 << QStringList{"10:00:00:00", "10:00:01:15", "00:00:01:15", "A1A2"};
}

void TestAleReport::aFileIsLogged()
{
    QFETCH(QJsonObject, file);
    QFETCH(QString, fps);
    QFETCH(QStringList, cells);
    const auto logs = alereport::make({file});
    QCOMPARE(logs.size(), 1);
    const Parsed parsed = parse(logs.first().content);
    QCOMPARE(parsed.fault, QString());
    QCOMPARE(parsed.heading["FPS"], fps);
    QCOMPARE(parsed.data.size(), 1);
    const auto row = parsed.data.first();
    QCOMPARE((QStringList{row["Start"], row["End"], row["Duration"], row["Tracks"]}), cells);
    QCOMPARE(row["Name"], QString("A001.take"));
    QCOMPARE(row["Source File"], QString("A001.take.mov"));
}

void TestAleReport::theHeadingDescribesTheFiles()
{
    const Parsed parsed = parse(alereport::make({record("10:00:00:20", 25, "25/1", 5.0)}).first().content);
    QCOMPARE(
        parsed.heading,
        (QMap<QString, QString>{
            {"FIELD_DELIM", "TABS"}, {"VIDEO_FORMAT", "720"}, {"AUDIO_FORMAT", "48khz"}, {"FPS", "25"}}));
}

void TestAleReport::eachRateGetsALog()
{
    const auto logs =
        alereport::make({record("10:00:00:00", 24, "24/1", 1), record("11:00:00:00", 25, "25/1", 1),
                         record("12:00:00:00", 25, "25/1", 1)});
    QCOMPARE(logs.size(), 2);
    QCOMPARE(logs.at(0).rate, QString("25"));
    QCOMPARE(parse(logs.at(0).content).data.size(), 2);
    QCOMPARE(logs.at(1).rate, QString("24"));
    QCOMPARE(parse(logs.at(1).content).data.size(), 1);
}

void TestAleReport::filesWithoutTimecodeAreNotLogged()
{
    QJsonObject none = record("", 0, "25/1", 1);
    none["audioTimecode"] = QJsonValue();
    const auto logs = alereport::make({none});
    QCOMPARE(logs.size(), 1);
    const Parsed parsed = parse(logs.first().content);
    QCOMPARE(parsed.fault, QString());
    QVERIFY(parsed.data.isEmpty());
}

void TestAleReport::tabsAndLineEndsStayTheFormsOwn()
{
    QJsonObject file = record("10:00:00:00", 25, "25/1", 1);
    file["exportPath"] = "/out/a\tb\nc.MOV";
    const Parsed parsed = parse(alereport::make({file}).first().content);
    QCOMPARE(parsed.fault, QString());
    QCOMPARE(parsed.data.first()["Source File"], QString("a b c.MOV"));
}

QTEST_APPLESS_MAIN(TestAleReport)
#include "tst_alereport.moc"
