// SPDX-License-Identifier: MIT
#include "ltcreader/report.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace ltcreader;

class TestReport : public QObject
{
    Q_OBJECT

private slots:
    void jsonHoldsWhatWasRead();
    void jsonIsOneLine();
    void peopleCountChannelsFromOne();
};

namespace
{

Reading dropFrameReading()
{
    Reading reading;
    reading.start = {1, 0, 0, 2};
    reading.dropFrame = true;
    reading.ntsc = true;
    reading.baseRate = 30;
    reading.channel = 1;
    reading.samplesSinceMidnight = 7370000000;
    reading.confidence = 0.999999;
    reading.measuredRate = 29.97;
    reading.rateError = -1.5;
    reading.level = -12.25;
    reading.phase = 0.25;
    reading.framesUsed = 88;
    reading.userBits = 0x1234abcd;
    reading.algorithm = Algorithm::Slope;
    reading.inverted = true;
    return reading;
}

QJsonObject parsed(const Reading &reading)
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(toJson(reading))).object();
}

} // namespace

void TestReport::jsonHoldsWhatWasRead()
{
    const QJsonObject json = parsed(dropFrameReading());
    QCOMPARE(json.value("Timecode").toString(), QString("01:00:00;02"));
    QCOMPARE(json.value("DropFrame"), QJsonValue(true));
    QCOMPARE(json.value("NTSC"), QJsonValue(true));
    QCOMPARE(json.value("FrameRateFound").toDouble(), 30.0);
    QCOMPARE(json.value("FrameRateBaseFound").toInt(), 30);
    QCOMPARE(json.value("ChannelFound").toInt(), 1);
    QCOMPARE(json.value("SamplesSinceMidnight").toVariant().toLongLong(), 7370000000LL);
    QCOMPARE(json.value("Confidence").toDouble(), 0.999999);
    QCOMPARE(json.value("MeasuredFrameRate").toDouble(), 29.97);
    QCOMPARE(json.value("FrameRateErrorPpm").toDouble(), -1.5);
    QVERIFY(qAbs(json.value("LevelDbfs").toDouble() + 12.25) <= 0.051);
    QCOMPARE(json.value("FramePhase").toDouble(), 0.25);
    QCOMPARE(json.value("FramesUsed").toInt(), 88);
    QCOMPARE(json.value("UserBits").toString(), QString("1234abcd"));
    QCOMPARE(json.value("Algorithm").toString(), QString("SLOPE"));
    QCOMPARE(json.value("Inverted"), QJsonValue(true));
}

void TestReport::jsonIsOneLine()
{
    const std::string json = toJson(Reading{});
    QCOMPARE(json.find('\n'), json.size() - 1);
    QVERIFY(json.front() == '{');
}

void TestReport::peopleCountChannelsFromOne()
{
    const std::string text = toText(dropFrameReading());
    QVERIFY(text.find("Timecode:                 01:00:00;02\n") != std::string::npos);
    QVERIFY(text.find("Channel:                  2\n") != std::string::npos);
}

QTEST_APPLESS_MAIN(TestReport)
#include "tst_report.moc"
