// SPDX-License-Identifier: MIT
#include "ffmpeg/videocodec.h"
#include "testkit/fixtures/row.h"

#include <QTest>

class TestVideoCodec : public QObject
{
    Q_OBJECT

private slots:
    void theFrameRateIsCutToWholeFrames_data();
    void theFrameRateIsCutToWholeFrames();
    void dnxhdFamiliesFollowTheFrameRate_data();
    void dnxhdFamiliesFollowTheFrameRate();
    void ratesWithoutADnxhdFamilyAreLeftToTheTool_data();
    void ratesWithoutADnxhdFamilyAreLeftToTheTool();
    void passThroughCopiesThePicture_data();
    void passThroughCopiesThePicture();
    void mpeg2IsWrittenAtFiftyMegabit();
    void unknownTypesChooseNothing_data();
    void unknownTypesChooseNothing();
    void onlyDnxhdSetsTheFrameRate_data();
    void onlyDnxhdSetsTheFrameRate();
};

void TestVideoCodec::theFrameRateIsCutToWholeFrames_data()
{
    QTest::addColumn<QJsonValue>("rate");
    QTest::addColumn<int>("expected");

    row("24000/1001 is 23", QJsonValue("24000/1001"), 23);
    row("30000/1001 is 29", QJsonValue("30000/1001"), 29);
    row("25/1 is 25", QJsonValue("25/1"), 25);
    row("50/1 is 50", QJsonValue("50/1"), 50);
    row("60000/1001 is 59", QJsonValue("60000/1001"), 59);
    row("no fraction", QJsonValue("25"), 0);
    row("denominator 0", QJsonValue("0/0"), 0);
    row("denominator below 0", QJsonValue("-2147483648/-1"), 0);
    row("no numbers", QJsonValue("a/b"), 0);
    row("beyond 32 bits", QJsonValue("99999999999/1"), 0);
    row("more than a fraction", QJsonValue("24/1/2"), 0);
    row("blanks", QJsonValue(" 25/1"), 0);
    row("missing", QJsonValue(QJsonValue::Undefined), 0);
}

void TestVideoCodec::theFrameRateIsCutToWholeFrames()
{
    QFETCH(QJsonValue, rate);
    QFETCH(int, expected);
    QCOMPARE(videocodec::frameRateClass({{"r_frame_rate", rate}}), expected);
}

void TestVideoCodec::dnxhdFamiliesFollowTheFrameRate_data()
{
    QTest::addColumn<QList<int>>("videoTypes"); // MXF and QuickTime are written alike
    QTest::addColumn<QString>("sourceRate");
    QTest::addColumn<QString>("bitRate");
    QTest::addColumn<QString>("pixelFormat");
    QTest::addColumn<QString>("writtenRate");
    QTest::addColumn<float>("estimate"); // [bit/s]

    const QList<int> small{2, 6};
    const QList<int> medium{3, 7};
    const QList<int> large{4, 8};
    row("36/45 at 23.976", small, "24000/1001", "36M", "yuv422p", "24000/1001", 36e6F);
    row("36/45 at 23.98", small, "2398/100", "36M", "yuv422p", "24000/1001", 36e6F);
    row("36/45 at 24", small, "24/1", "36M", "yuv422p", "24/1", 36e6F);
    row("36/45 at 25", small, "25/1", "36M", "yuv422p", "25/1", 36e6F);
    row("36/45 at 29.97", small, "30000/1001", "45M", "yuv422p", "30000/1001", 45e6F);
    row("36/45 at 30", small, "30/1", "45M", "yuv422p", "30/1", 45e6F);
    row("115 at 23.976", medium, "24000/1001", "115M", "yuv422p", "24000/1001", 115e6F);
    row("115 at 24", medium, "24/1", "115M", "yuv422p", "24/1", 115e6F);
    row("120 at 25", medium, "25/1", "120M", "yuv422p", "25/1", 120e6F);
    row("145 at 29.97", medium, "30000/1001", "145M", "yuv422p", "30000/1001", 145e6F);
    row("145 at 30", medium, "30/1", "145M", "yuv422p", "30/1", 145e6F);
    row("175x at 23.976", large, "24000/1001", "175M", "yuv422p10", "24000/1001", 175e6F);
    row("175x at 24", large, "24/1", "175M", "yuv422p10", "24/1", 175e6F);
    row("185x at 25, rate as written by the source", large, "50/2", "185M", "yuv422p10", "50/2", 185e6F);
    row("220 at 29.97 stays 8 bit", large, "30000/1001", "220M", "yuv422p", "30000/1001", 220e6F);
    row("220 at 30 stays 8 bit", large, "30/1", "220M", "yuv422p", "30/1", 220e6F);
}

void TestVideoCodec::dnxhdFamiliesFollowTheFrameRate()
{
    QFETCH(QList<int>, videoTypes);
    QFETCH(QString, sourceRate);
    QFETCH(QString, bitRate);
    QFETCH(QString, pixelFormat);
    QFETCH(QString, writtenRate);
    QFETCH(float, estimate);

    const QStringList expected{"-vcodec",   "dnxhd", "-b:v",      bitRate, "-pix_fmt",
                               pixelFormat, "-s",    "1920x1080", "-r",    writtenRate};
    for (const int videoType : videoTypes) {
        const auto codec = videocodec::forType(videoType, {{"r_frame_rate", sourceRate}});
        QCOMPARE(codec.arguments, expected);
        QCOMPARE(codec.bitRate, estimate);
        QVERIFY(!codec.copied);
    }
}

void TestVideoCodec::ratesWithoutADnxhdFamilyAreLeftToTheTool_data()
{
    QTest::addColumn<int>("videoType");
    QTest::addColumn<float>("estimate"); // [bit/s]

    row("MXF 36/45 has no estimate", 2, 0.0F);
    row("MXF 115/120/145", 3, 120e6F);
    row("MXF 175x/185x/220", 4, 185e6F);
    row("QuickTime 36/45", 6, 36e6F);
    row("QuickTime 115/120/145", 7, 120e6F);
    row("QuickTime 175x/185x/220", 8, 185e6F);
}

void TestVideoCodec::ratesWithoutADnxhdFamilyAreLeftToTheTool()
{
    QFETCH(int, videoType);
    QFETCH(float, estimate);

    const QStringList rates{"26/1", "27/1", "28/1", "50/1", "60/1", "60000/1001",
                            "22/1", "31/1", "25",   "25/0", ""};
    for (const QString &rate : rates) {
        const auto codec = videocodec::forType(videoType, {{"r_frame_rate", rate}});
        QCOMPARE(codec.arguments, QStringList());
        QCOMPARE(codec.bitRate, estimate);
        QVERIFY(!codec.copied);
    }
}

void TestVideoCodec::passThroughCopiesThePicture_data()
{
    QTest::addColumn<int>("videoType");
    row("into the container of the input", 0);
    row("into QuickTime", 5);
}

void TestVideoCodec::passThroughCopiesThePicture()
{
    QFETCH(int, videoType);
    const auto codec = videocodec::forType(videoType, {{"r_frame_rate", "50/1"}});
    QCOMPARE(codec.arguments, (QStringList{"-vcodec", "copy"}));
    QVERIFY(codec.copied);
}

void TestVideoCodec::mpeg2IsWrittenAtFiftyMegabit()
{
    const auto codec = videocodec::forType(1, {{"r_frame_rate", "50/1"}});
    QCOMPARE(codec.arguments,
             (QStringList{"-vcodec", "mpeg2video", "-b:v", "50M", "-pix_fmt", "yuv422p", "-s", "1920x1080"}));
    QCOMPARE(codec.bitRate, 50e6F);
    QVERIFY(!codec.copied);
}

void TestVideoCodec::unknownTypesChooseNothing_data()
{
    QTest::addColumn<int>("videoType");
    row("below", -1);
    row("above", 9);
}

void TestVideoCodec::unknownTypesChooseNothing()
{
    QFETCH(int, videoType);
    const auto codec = videocodec::forType(videoType, {{"r_frame_rate", "25/1"}});
    QVERIFY(codec.arguments.isEmpty());
    QCOMPARE(codec.bitRate, 0.0F);
    QVERIFY(!videocodec::leavesFrameRateOpen(videoType));
}

void TestVideoCodec::onlyDnxhdSetsTheFrameRate_data()
{
    QTest::addColumn<int>("videoType");
    QTest::addColumn<bool>("open");
    for (int type = 0; type <= 8; ++type)
        QTest::addRow("type %d", type) << type << (type == 0 || type == 1 || type == 5);
}

void TestVideoCodec::onlyDnxhdSetsTheFrameRate()
{
    QFETCH(int, videoType);
    QFETCH(bool, open);
    QCOMPARE(videocodec::leavesFrameRateOpen(videoType), open);
}

QTEST_APPLESS_MAIN(TestVideoCodec)
#include "tst_videocodec.moc"
