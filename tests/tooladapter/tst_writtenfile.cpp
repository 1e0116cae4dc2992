// SPDX-License-Identifier: MIT
#include "tooladapter/writtenfile.h"

#include <QTest>

using namespace tooladapter;

namespace
{

Stream picture(double duration, const char *timecode = "", double start = 0.0)
{
    Stream stream;
    stream.kind = Stream::Kind::Picture;
    stream.averageRate = FrameRate{25, 1};
    stream.duration = duration;
    stream.timecode = timecode;
    stream.start = start;
    return stream;
}

Stream audio(int channels, double duration)
{
    Stream stream;
    stream.kind = Stream::Kind::Audio;
    stream.channels = channels;
    stream.duration = duration;
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
};

void TestWrittenFile::onlyACompleteFileIsASuccess_data()
{
    QTest::addColumn<Source>("written");
    QTest::addColumn<QString>("fault"); // empty: complete
    const char *timecode = "10:11:12:13";
    const auto file = [](std::vector<Stream> streams) { return Source{std::move(streams), 0.0, 0.0, {}}; };
    QTest::newRow("complete") << file({picture(60, timecode), audio(3, 60)}) << QString();
    QTest::newRow("timecode of the file as a whole")
        << Source{{picture(60), audio(3, 60)}, 0.0, 0.0, timecode} << QString();
    QTest::newRow("lengths only of the file as a whole")
        << Source{{picture(0, timecode), audio(3, 0)}, 0.0, 60.0, {}} << QString();
    QTest::newRow("a frame shorter") << file({picture(59.96, timecode), audio(3, 59.95)}) << QString();
    QTest::newRow("longer") << file({picture(60.04, timecode), audio(3, 60.02)}) << QString();
    QTest::newRow("no whole frame in the first half second")
        << file({picture(59.5, timecode, 0.5), audio(3, 60)}) << QString();
    QTest::newRow("picture breaks off")
        << file({picture(59.8, timecode), audio(3, 60)}) << "picture ends after 59.80 s";
    QTest::newRow("sound breaks off")
        << file({picture(60, timecode), audio(3, 31)}) << "sound ends after 31.00 s";
    QTest::newRow("no picture") << file({audio(3, 60)}) << "no picture";
    QTest::newRow("no sound") << file({picture(60, timecode)}) << "0 audio streams instead of 1";
    QTest::newRow("a channel too many")
        << file({picture(60, timecode), audio(4, 60)}) << "4 channels instead of 3";
    QTest::newRow("nothing that can be read") << Source{} << "no picture";
    QTest::newRow("no timecode") << file({picture(60), audio(3, 60)})
                                 << "starts at \"\" instead of 10:11:12:13";
    QTest::newRow("another timecode") << file({picture(60, "10:11:13:04"), audio(3, 60)}) << "10:11:13:04";
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
    const QString told = QString::fromStdString(faultIn(written, job, source));
    QCOMPARE(told.isEmpty(), fault.isEmpty());
    QVERIFY2(told.contains(fault), qPrintable(told));
}

QTEST_APPLESS_MAIN(TestWrittenFile)
#include "tst_writtenfile.moc"
