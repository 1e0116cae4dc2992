// SPDX-License-Identifier: MIT
#include "tooladapter/rules/source.h"

#include <QTest>

#include <cmath>

using namespace tooladapter;

namespace
{

using Notes = std::map<std::string, std::string>;

} // namespace

class TestSource : public QObject
{
    Q_OBJECT

private slots:
    void streamsAreRead();
    void picturesAreRead();
    void notesOnTheFileAreNamed();
    void aNoteOfSeveralLinesHidesNothing();
    void anUnknownLayoutIsNone();
    void aStreamThatIsListedTwiceIsReadOnce();
    void claimsOfDamagedFilesAreBounded();
    void missingAndUnknownValuesLeaveTheDefaults_data();
    void missingAndUnknownValuesLeaveTheDefaults();
    void theDelayCountsFromTheFirstPictureOrSound_data();
    void theDelayCountsFromTheFirstPictureOrSound();
    void ratesAreRead_data();
    void ratesAreRead();
};

void TestSource::streamsAreRead()
{
    const Source source =
        parseProbe("[STREAM]\nindex=0\ncodec_name=mjpeg\ncodec_type=video\n"
                   "DISPOSITION:attached_pic=1\n[/STREAM]\n"
                   "[STREAM]\nindex=1\ncodec_name=h264\ncodec_type=video\nr_frame_rate=50/1\n"
                   "avg_frame_rate=25/1\nstart_time=1.400000\nduration=2.000000\nDISPOSITION:attached_pic=0\n"
                   "TAG:timecode=10:11:12:13\n[/STREAM]\n"
                   "[STREAM]\nindex=2\ncodec_name=pcm_s24le\ncodec_type=audio\nchannels=4\n"
                   "channel_layout=4.0\nr_frame_rate=0/0\n[/STREAM]\n"
                   "[FORMAT]\nduration=2.040000\n[/FORMAT]\n");
    QCOMPARE(int(source.streams.size()), 3);
    QCOMPARE(source.firstPicture(), 1);
    QVERIFY(source.audioStreams() == std::vector<int>{2});
    QCOMPARE(source.streams[1].baseRate.nominal(), 50);
    QCOMPARE(source.streams[1].averageRate.nominal(), 25);
    QCOMPARE(source.streams[1].start.value_or(0.0), 1.4);
    QVERIFY(!source.streams[2].start);
    QCOMPARE(source.streams[1].duration, 2.0);
    QCOMPARE(source.startTimecode(), std::string("10:11:12:13"));
    QCOMPARE(source.streams[2].codec, std::string("pcm_s24le"));
    QCOMPARE(source.streams[2].channels, 4);
    QCOMPARE(source.streams[2].layout, std::string("4.0"));
    QVERIFY(!source.streams[2].baseRate.isValid());
    QCOMPARE(source.duration, 2.04);
}

void TestSource::picturesAreRead()
{
    const Source source =
        parseProbe("[STREAM]\nindex=0\ncodec_type=video\nwidth=1440\nheight=1080\nsample_aspect_ratio=4:3\n"
                   "pix_fmt=yuv420p\ncolor_range=tv\ncolor_space=bt709\ncolor_primaries=bt470bg\n"
                   "field_order=bt\nr_frame_rate=50/1\navg_frame_rate=25/1\nbit_rate=25000000\n"
                   "TAG:reel_name=A001\n[SIDE_DATA]\nrotation=-90\n[/SIDE_DATA]\nduration=2.0\n[/STREAM]\n"
                   "[STREAM]\nindex=1\nwidth=-5\nheight=1000000\nsample_aspect_ratio=0:1\nrotation=nan\n"
                   "field_order=unknown\nbit_rate=N/A\n[/STREAM]\n");
    const Stream &picture = source.streams.at(0);
    QCOMPARE(picture.width, 1440);
    QCOMPARE(picture.height, 1080);
    QVERIFY(std::abs(picture.pixelAspect - 4.0 / 3) < 1e-9);
    QCOMPARE(picture.rotation, -90);
    QCOMPARE(picture.duration, 2.0); // what follows the side data belongs to the stream again
    QCOMPARE(picture.pixelFormat, std::string("yuv420p"));
    QCOMPARE(picture.colorRange, std::string("tv"));
    QCOMPARE(picture.colorSpace, std::string("bt709"));
    QCOMPARE(picture.colorPrimaries, std::string("bt470bg"));
    QCOMPARE(picture.bitRate, 25'000'000L);
    QCOMPARE(picture.reel, std::string("A001"));
    QVERIFY(picture.isInterlaced() && !picture.topFieldFirst());
    QCOMPARE(picture.frameRate().toText(), std::string("25/1"));

    const Stream &damaged = source.streams.at(1);
    QCOMPARE(damaged.width, 0);
    QCOMPARE(damaged.height, 32768);
    QCOMPARE(damaged.pixelAspect, 1.0);
    QCOMPARE(damaged.rotation, 0);
    QVERIFY(!damaged.isInterlaced());
}

void TestSource::notesOnTheFileAreNamed()
{
    const Source source = parseProbe("[STREAM]\nindex=0\nTAG:language=eng\n[/STREAM]\n"
                                     "[FORMAT]\nTAG:title=a note\nindex=7\nTAG:timecode=01:02:03:04\n");
    QVERIFY(source.notes == (Notes{{"timecode", "01:02:03:04"}, {"title", "a note\nindex=7"}}));
    QCOMPARE(int(source.streams.size()), 1); // a note of two lines makes no stream
}

void TestSource::aNoteOfSeveralLinesHidesNothing()
{
    const Source source = parseProbe("[FORMAT]\nduration=2.0\nTAG:comment=scene 12\n[take]\n\nduration=3.0\n"
                                     "TAG:title=12A\n[/FORMAT]\n");
    QCOMPARE(source.duration, 2.0);
    QVERIFY(source.notes == (Notes{{"comment", "scene 12\n[take]\n\nduration=3.0"}, {"title", "12A"}}));
}

void TestSource::anUnknownLayoutIsNone()
{
    const std::string stream = "[STREAM]\nindex=0\ncodec_type=audio\nchannels=2\n";
    QVERIFY(parseProbe(stream + "channel_layout=unknown\n") == parseProbe(stream));
    QVERIFY(!(parseProbe(stream + "channel_layout=stereo\n") == parseProbe(stream)));
}

void TestSource::aStreamThatIsListedTwiceIsReadOnce()
{
    const Source source = parseProbe("[PROGRAM]\n[STREAM]\nindex=0\ncodec_type=video\n[/STREAM]\n"
                                     "[STREAM]\nindex=1\ncodec_type=audio\n[/STREAM]\n[/PROGRAM]\n"
                                     "[STREAM]\nindex=0\ncodec_type=video\n[/STREAM]\n"
                                     "[STREAM]\nindex=1\ncodec_type=audio\n[/STREAM]\n");
    QCOMPARE(int(source.streams.size()), 2);
    QVERIFY(source.audioStreams() == std::vector<int>{1});
}

void TestSource::claimsOfDamagedFilesAreBounded()
{
    const Source source = parseProbe("[STREAM]\nindex=18446744073709551615\nchannels=2\n[/STREAM]\n"
                                     "[STREAM]\nindex=4000000000\nchannels=2\n[/STREAM]\n"
                                     "[STREAM]\nindex=0\nchannels=2147483647\n[/STREAM]\n"
                                     "[STREAM]\nindex=1\nchannels=-5\n[/STREAM]\n");
    QCOMPARE(int(source.streams.size()), 2);
    QCOMPARE(source.streams[0].channels, 512);
    QCOMPARE(source.streams[1].channels, 0);
}

void TestSource::missingAndUnknownValuesLeaveTheDefaults_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no last line end") << QByteArray("[FORMAT]\nduration=N/A\n[/FORMAT]");
    QTest::newRow("outside of a section") << QByteArray("duration=5\nTAG:timecode=10:00:00:00\n");
}

void TestSource::missingAndUnknownValuesLeaveTheDefaults()
{
    QFETCH(QByteArray, text);
    const Source source = parseProbe(text.toStdString());
    QVERIFY(source.streams.empty());
    QCOMPARE(source.firstPicture(), -1);
    QCOMPARE(source.duration, 0.0);
    QVERIFY(source.startTimecode().empty());
}

void TestSource::theDelayCountsFromTheFirstPictureOrSound_data()
{
    QTest::addColumn<QByteArray>("picture"); // start times
    QTest::addColumn<QByteArray>("sound");
    QTest::addColumn<QByteArray>("otherSound");
    QTest::addColumn<double>("delay"); // [s]
    QTest::newRow("together") << QByteArray("1.4") << QByteArray("1.4") << QByteArray("1.4") << 0.0;
    QTest::newRow("after the picture") << QByteArray("1.4") << QByteArray("1.9") << QByteArray("1.9") << 0.5;
    QTest::newRow("before the picture") << QByteArray("1.4") << QByteArray("1.3") << QByteArray("1.3") << 0.0;
    QTest::newRow("after other sound")
        << QByteArray("1.5") << QByteArray("1.5") << QByteArray("1.25") << 0.25;
    QTest::newRow("a picture before zero")
        << QByteArray("-0.25") << QByteArray("0") << QByteArray("0") << 0.25;
    QTest::newRow("the others do not state it")
        << QByteArray("N/A") << QByteArray("1.4") << QByteArray() << 0.0;
    QTest::newRow("it does not state its own")
        << QByteArray("1.4") << QByteArray("N/A") << QByteArray() << 0.0;
    QTest::newRow("no number") << QByteArray("1.4") << QByteArray("nan") << QByteArray("-inf") << 0.0;
}

void TestSource::theDelayCountsFromTheFirstPictureOrSound()
{
    QFETCH(QByteArray, picture);
    QFETCH(QByteArray, sound);
    QFETCH(QByteArray, otherSound);
    QFETCH(double, delay);
    const Source source =
        parseProbe(("index=0\ncodec_type=video\nstart_time=" + picture +
                    "\nindex=1\ncodec_type=audio\nstart_time=" + sound +
                    "\nindex=2\ncodec_type=audio\nstart_time=" + otherSound +
                    "\nindex=3\ncodec_type=video\nstart_time=0\nDISPOSITION:attached_pic=1"
                    "\nindex=4\ncodec_type=subtitle\nstart_time=0\n[FORMAT]\nstart_time=0\n")
                       .toStdString());
    QVERIFY(std::abs(source.delayOf(1) - delay) < 1e-9);
    QCOMPARE(source.delayOf(-1), 0.0);
    QCOMPARE(source.delayOf(5), 0.0);
}

void TestSource::ratesAreRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("nominal"); // -1: no rate
    QTest::addColumn<bool>("isNtsc");
    QTest::newRow("whole") << QByteArray("25") << 25 << false;
    QTest::newRow("fraction") << QByteArray("50/1") << 50 << false;
    QTest::newRow("23.976") << QByteArray("24000/1001") << 24 << true;
    QTest::newRow("29.97") << QByteArray("30000/1001") << 30 << true;
    QTest::newRow("29.97 in hundredths") << QByteArray("2997/100") << 30 << true;
    QTest::newRow("59.94") << QByteArray("60000/1001") << 60 << true;
    QTest::newRow("in units of a time base") << QByteArray("12800/512") << 25 << false;
    QTest::newRow("none") << QByteArray("0/0") << -1 << false;
    QTest::newRow("zero") << QByteArray("0") << -1 << false;
    QTest::newRow("zero over 1001") << QByteArray("0/1001") << -1 << false;
    QTest::newRow("division by zero") << QByteArray("25/0") << -1 << false;
    QTest::newRow("the clock of the time stamps") << QByteArray("90000/1") << -1 << false;
    QTest::newRow("beyond all bounds") << QByteArray("2147483647/1") << -1 << false;
    QTest::newRow("text") << QByteArray("25fps") << -1 << false;
    QTest::newRow("empty") << QByteArray() << -1 << false;
}

void TestSource::ratesAreRead()
{
    QFETCH(QByteArray, text);
    QFETCH(int, nominal);
    QFETCH(bool, isNtsc);
    const FrameRate rate = FrameRate::fromText(text.toStdString());
    QCOMPARE(rate.isValid(), nominal >= 0);
    if (rate.isValid()) {
        QCOMPARE(rate.nominal(), nominal);
        QCOMPARE(rate.isNtsc(), isNtsc);
    }
}

QTEST_APPLESS_MAIN(TestSource)
#include "tst_source.moc"
