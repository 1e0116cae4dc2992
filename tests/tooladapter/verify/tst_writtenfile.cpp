// SPDX-License-Identifier: MIT
#include "testkit/fixtures/row.h"
#include "tooladapter/verify/writtenfile.h"

#include <QList>
#include <QTest>

#include <algorithm>

using namespace tooladapter;

namespace
{

/// When the packets of a stream end whose header says \a end, 0 for one that does not say.
double whatIsThere(double end)
{
    return end > 0.0 ? end : 60.0;
}

Stream picture(double duration, const char *timecode = "", double start = 0.0)
{
    Stream stream;
    stream.kind = Stream::Kind::Picture;
    stream.averageRate = FrameRate{25, 1};
    stream.duration = duration;
    stream.timecode = timecode;
    stream.start = start;
    stream.shownUntil = whatIsThere(start + duration);
    return stream;
}

Stream audio(int channels, double duration)
{
    Stream stream;
    stream.kind = Stream::Kind::Audio;
    stream.channels = channels;
    stream.duration = duration;
    stream.shownUntil = whatIsThere(duration);
    return stream;
}

} // namespace

Q_DECLARE_METATYPE(tooladapter::Source)

class TestWrittenFile : public QObject
{
    Q_OBJECT

private slots:
    void onlyACompleteFileIsASuccess_data();
    void onlyACompleteFileIsASuccess();
    void theStartOfASoundFileIsReadBack_data();
    void theStartOfASoundFileIsReadBack();
    void theEndMustBeThere_data();
    void theEndMustBeThere();
    void onlyTheEndIsRead_data();
    void onlyTheEndIsRead();
};

void TestWrittenFile::onlyACompleteFileIsASuccess_data()
{
    QTest::addColumn<Source>("written");
    QTest::addColumn<QString>("fault"); // empty: complete
    const char *timecode = "10:11:12:13";
    const auto file = [](std::vector<Stream> streams) { return Source{std::move(streams), 0.0, 0.0, {}}; };
    row("complete", file({picture(60, timecode), audio(3, 60)}), QString());
    row("timecode of the file as a whole", Source{{picture(60), audio(3, 60)}, 0.0, 0.0, timecode},
        QString());
    row("lengths only of the file as a whole", Source{{picture(0, timecode), audio(3, 0)}, 0.0, 60.0, {}},
        QString());
    row("a frame shorter", file({picture(59.96, timecode), audio(3, 59.95)}), QString());
    row("longer", file({picture(60.04, timecode), audio(3, 60.02)}), QString());
    row("no whole frame in the first half second", file({picture(59.5, timecode, 0.5), audio(3, 60)}),
        QString());
    row("picture breaks off", file({picture(59.8, timecode), audio(3, 60)}), "picture ends after 59.80 s");
    row("sound breaks off", file({picture(60, timecode), audio(3, 31)}), "sound ends after 31.00 s");
    row("no picture", file({audio(3, 60)}), "no picture");
    row("no sound", file({picture(60, timecode)}), "0 audio streams instead of 1");
    row("a channel too many", file({picture(60, timecode), audio(4, 60)}), "4 channels instead of 3");
    row("nothing that can be read", Source{}, "no picture");
    row("no timecode", file({picture(60), audio(3, 60)}), "starts at \"\" instead of 10:11:12:13");
    row("another timecode", file({picture(60, "10:11:13:04"), audio(3, 60)}), "10:11:13:04");
}

void TestWrittenFile::onlyACompleteFileIsASuccess()
{
    QFETCH(Source, written);
    QFETCH(QString, fault);
    const Source source{{picture(60), audio(2, 60), audio(4, 60)}, 0.0, 60.0, {}};
    Export job;
    job.pictureStream = 0;
    job.audio = {{2, 3}};
    job.timecode = "10:11:12:13";
    const QString reported = QString::fromStdString(faultIn(written, job, source));
    QCOMPARE(reported.isEmpty(), fault.isEmpty());
    QVERIFY2(reported.contains(fault), qPrintable(reported));
}

void TestWrittenFile::theStartOfASoundFileIsReadBack_data()
{
    QTest::addColumn<QByteArray>("note");
    QTest::addColumn<bool>("isRight");
    row("as asked for", QByteArray("TAG:time_reference=1760232000\n"), true);
    row("another", QByteArray("TAG:time_reference=1760232001\n"), false);
    row("none", QByteArray(), false);
}

void TestWrittenFile::theStartOfASoundFileIsReadBack()
{
    QFETCH(QByteArray, note);
    Export job;
    job.audio = {{0, 2}};
    job.timeReference = "1760232000";
    const Source source{{audio(2, 60)}, 0.0, 60.0, {}};
    Source written = parseProbe("[FORMAT]\n" + note.toStdString());
    written.streams = source.streams;
    QTEST(faultIn(written, job, source).empty(), "isRight");
}

void TestWrittenFile::theEndMustBeThere_data()
{
    QTest::addColumn<QByteArray>("packets"); // one a line: stream, time of showing, of decoding, duration
    QTest::addColumn<bool>("isCopied");
    QTest::addColumn<double>("rate"); // [frames/s]
    QTest::addColumn<bool>("isComplete");
    const auto row = [](const char *name, const char *packets, bool isComplete, bool isCopied = false,
                        double rate = 25.0) { ::row(name, QByteArray(packets), isCopied, rate, isComplete); };
    row("the last frame", "0 59.96 59.96 0.04", true);
    row("frames out of order", "0 59.96 59.88 0.04\n0 59.92 59.96 0.04", true);
    row("half a second is missing", "0 59.42 59.42 0.04", false);
    row("some frames are missing", "0 59.60 59.60 0.04", true);
    row("two slow frames are missing", "0 57.5 57.5 0.5", true, false, 1.0);
    row("nothing", "", false);
    row("sound alone", "1 59.96 59.96 0.04", false);
    row("another stream", "2 0 0 60\n7 0 0 60", false);
    row("coded frames without times of showing", "0 N/A 59.96 0.04", false);
    row("copied frames without times of showing", "0 N/A 59.96 0.04", true, true);
    row("copied frames, too few", "0 N/A 50.00 0.04", false, true);
    row("frames without durations", "0 59.96 59.96 N/A", true);
}

void TestWrittenFile::theEndMustBeThere()
{
    QFETCH(QByteArray, packets);
    QFETCH(bool, isCopied);
    QFETCH(double, rate);
    std::string report;
    const QList<QByteArray> lines = packets.split('\n');
    for (const QByteArray &packet : lines) {
        const QList<QByteArray> words = packet.split(' ');
        if (words.size() == 4) {
            report += ("[PACKET]\nstream_index=" + words.at(0) + "\npts_time=" + words.at(1) +
                       "\ndts_time=" + words.at(2) + "\nduration_time=" + words.at(3) + "\n[/PACKET]\n")
                          .toStdString();
        }
    }
    report += "[STREAM]\nindex=0\ncodec_type=video\nstart_time=0\nduration=60\n[/STREAM]\n"
              "[STREAM]\nindex=1\ncodec_type=audio\nchannels=3\nduration=60\n[/STREAM]\n"
              "[STREAM]\nindex=2\ncodec_type=data\n[/STREAM]\n"
              "[FORMAT]\nstart_time=0\nduration=60\nTAG:comment=x\n[PACKET]\npts_time=60\n[/FORMAT]\n";
    Source source{{picture(60), audio(3, 60)}, 0.0, 60.0, {}};
    source.streams[0].averageRate = FrameRate{static_cast<long>(rate), 1};
    Export job;
    job.pictureStream = 0;
    job.copiesPicture = isCopied;
    job.audio = {{1, 3}};
    const std::string fault = faultIn(parseProbe(report), job, source);
    QTEST(fault.empty(), "isComplete");
    QVERIFY2(fault.empty() || fault.find("picture ends after") != std::string::npos, fault.c_str());
}

void TestWrittenFile::onlyTheEndIsRead_data()
{
    QTest::addColumn<double>("picture"); // [s]; below 0 = none
    QTest::addColumn<double>("sound");   // [s]
    QTest::addColumn<QString>("interval");
    row("picture", 60.0, 120.0, "59.000000%");
    row("sound alone", -1.0, 120.0, "119.000000%");
    row("short", 0.9, 0.9, QString());
    row("not known", 0.0, 0.0, QString());
}

void TestWrittenFile::onlyTheEndIsRead()
{
    QFETCH(double, picture);
    QFETCH(double, sound);
    QFETCH(QString, interval);
    Export job;
    job.path = "out.MOV";
    job.pictureStream = picture < 0 ? -1 : 0;
    job.audio = {{1, 1}};
    const std::vector<std::string> arguments =
        checkArguments(job, {{::picture(std::max(picture, 0.0)), audio(1, sound)}, 0.0, 0.0, {}});
    QVERIFY(std::find(arguments.begin(), arguments.end(), job.path) != arguments.end());
    const auto option = std::find(arguments.begin(), arguments.end(), "-read_intervals");
    QCOMPARE(option == arguments.end() ? QString() : QString::fromStdString(*(option + 1)), interval);
}

QTEST_APPLESS_MAIN(TestWrittenFile)
#include "tst_writtenfile.moc"
