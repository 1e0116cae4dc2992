// SPDX-License-Identifier: MIT
#include "testkit/fixtures/toolrun.h"
#include "testkit/signals/biphasemark.h"
#include "testkit/signals/ltcsignal.h"
#include "testkit/signals/wavfile.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

class TestLtcReaderProgram : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void aFileWithTimecodeIsAnsweredInJson_data();
    void aFileWithTimecodeIsAnsweredInJson();
    void failuresHaveTheirCodeAndOneLine_data();
    void failuresHaveTheirCodeAndOneLine();
    void helpAndVersionAreAnswered();
    void peopleGetText();
    void peopleAreToldWhyNothingWasFound_data();
    void peopleAreToldWhyNothingWasFound();
    void theReasonIsPrintedIfLabelsDoNotCountUp();
    void whatFfmpegWritesToAPipeIsRead();
    void anyBytesAreSurvived();

private:
    static ToolRun run(const QStringList &arguments) { return runTool("LTCReader.exe", arguments); }
    QString pathOf(const char *name) const { return folder.filePath(name); }

    QTemporaryDir folder;
};

void TestLtcReaderProgram::initTestCase()
{
    testsignals::LtcSignal signal;
    signal.start = {10, 0, 0, 0};
    signal.rate = {30, true, true};
    testsignals::WavFile wav;
    const std::vector<float> ltc = testsignals::ltcAudio(signal);
    wav.channels = {std::vector<float>(ltc.size()), ltc};
    testsignals::writeWav(pathOf("ltc.wav").toStdString(), wav);
    wav.channels = {std::vector<float>(144000)};
    testsignals::writeWav(pathOf("silence.wav").toStdString(), wav);
    QFile text(pathOf("text.wav"));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no sound") > 0);
}

void TestLtcReaderProgram::aFileWithTimecodeIsAnsweredInJson_data()
{
    QTest::addColumn<QStringList>("switches");
    QTest::newRow("without switches") << QStringList{};
    QTest::newRow("with all that the application passes") << QStringList{"-c1", "-f29.97", "-aMID"};
    QTest::newRow("as the application reads action cameras") << QStringList{"-aSLOPE"};
    QTest::newRow("with its output form") << QStringList{"-oJSON"};
}

void TestLtcReaderProgram::aFileWithTimecodeIsAnsweredInJson()
{
    QFETCH(QStringList, switches);
    const ToolRun answer = run(QStringList{pathOf("ltc.wav")} + switches);
    QCOMPARE(answer.exitCode, 0);
    QVERIFY(answer.errors.isEmpty());
    const QJsonObject json = QJsonDocument::fromJson(answer.output).object();
    QCOMPARE(json.value("Timecode").toString(), QString("10:00:00;00"));
    QCOMPARE(json.value("DropFrame"), QJsonValue(true));
    QCOMPARE(json.value("NTSC"), QJsonValue(true));
    QCOMPARE(json.value("FrameRateFound").toDouble(), 30.0);
    QCOMPARE(json.value("FrameRateBaseFound").toInt(), 30);
    QCOMPARE(json.value("ChannelFound").toInt(), 1);
    constexpr qint64 tenHours = 1727998272; // [samples] 1,078,920 frames of 1601.6
    QVERIFY(qAbs(json.value("SamplesSinceMidnight").toVariant().toLongLong() - tenHours) <= 1);
}

void TestLtcReaderProgram::failuresHaveTheirCodeAndOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    const QString ltc = pathOf("ltc.wav");
    QTest::newRow("no arguments") << QStringList{} << 100;
    QTest::newRow("unknown output format") << QStringList{ltc, "-oYAML"} << 101;
    QTest::newRow("unknown switch") << QStringList{ltc, "-z"} << 102;
    QTest::newRow("unknown algorithm") << QStringList{ltc, "-aNONE"} << 103;
    QTest::newRow("no such file") << QStringList{pathOf("none.wav")} << 201;
    QTest::newRow("a folder") << QStringList{folder.path()} << 201;
    QTest::newRow("channel that the file does not have") << QStringList{ltc, "-c2"} << 202;
    QTest::newRow("no rate of timecode") << QStringList{ltc, "-f60"} << 203;
    QTest::newRow("no sound") << QStringList{pathOf("text.wav")} << 204;
    QTest::newRow("silence") << QStringList{pathOf("silence.wav")} << 205;
    QTest::newRow("timecode on another channel") << QStringList{ltc, "-c0"} << 205;
    QTest::newRow("timecode at another rate") << QStringList{ltc, "-f25"} << 205;
}

void TestLtcReaderProgram::failuresHaveTheirCodeAndOneLine()
{
    QFETCH(QStringList, arguments);
    const ToolRun answer = run(arguments);
    QTEST(answer.exitCode, "code");
    QVERIFY(answer.output.isEmpty());
    QCOMPARE(answer.errors.count('\n'), 1);
    QVERIFY(answer.errors.startsWith("LTCReader: ") && answer.errors.endsWith('\n'));
}

void TestLtcReaderProgram::helpAndVersionAreAnswered()
{
    const ToolRun help = run({"--help"});
    QCOMPARE(help.exitCode, 0);
    for (const char *word : {"-c", "-f", "-a", "-o", "LOW", "MID", "HIGH", "SLOPE", "JSON", "TEXT"}) {
        QVERIFY2(help.output.contains(word), word);
    }
    const ToolRun version = run({"--version"});
    QCOMPARE(version.exitCode, 0);
    QVERIFY(version.output.startsWith("LTCReader 1."));
}

void TestLtcReaderProgram::peopleGetText()
{
    const ToolRun answer = run({pathOf("ltc.wav"), "-oTEXT"});
    QCOMPARE(answer.exitCode, 0);
    QVERIFY(answer.output.startsWith("Timecode:"));
    QVERIFY(answer.output.contains("10:00:00;00"));
    QVERIFY(answer.output.contains("Waveform"));
    QVERIFY(answer.output.contains("Time between edges"));
}

void TestLtcReaderProgram::peopleAreToldWhyNothingWasFound_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("reason");
    const auto write = [this](const char *name, const std::vector<float> &samples) {
        testsignals::WavFile wav;
        wav.channels = {samples};
        testsignals::writeWav(pathOf(name).toStdString(), wav);
    };
    std::vector<float> random(144000);
    std::vector<float> tone(144000);
    std::vector<float> zeros(144000);
    QRandomGenerator generator(5);
    for (std::size_t i = 0; i < random.size(); ++i) {
        random[i] = static_cast<float>(generator.generateDouble() - 0.5);
        tone[i] = 0.4F * std::sin(0.06F * static_cast<float>(i));
        zeros[i] = i / 24 % 2 == 0 ? 0.4F : -0.4F;
    }
    write("noise.wav", random);
    write("tone.wav", tone);
    write("zeros.wav", zeros);
    QTest::newRow("silence") << "silence.wav"
                             << "silence";
    QTest::newRow("noise") << "noise.wav"
                           << "noise";
    QTest::newRow("programme") << "tone.wav"
                               << "programme sound only";
    QTest::newRow("biphase code without sync words") << "zeros.wav"
                                                     << "without sync words";
}

void TestLtcReaderProgram::theReasonIsPrintedIfLabelsDoNotCountUp()
{
    const testsignals::LtcSignal signal;
    testsignals::WavFile wav;
    wav.channels = {testsignals::biphaseMarkAudio(signal, {}, [&signal](std::int64_t) {
        return testsignals::frameBits(signal.start, signal.rate, 0);
    })};
    const QString path = pathOf("frozen.wav");
    testsignals::writeWav(path.toStdString(), wav);
    const ToolRun answer = run({path});
    QCOMPARE(answer.exitCode, 205);
    QVERIFY(answer.output.isEmpty());
    QCOMPARE(QString::fromUtf8(answer.errors),
             "LTCReader: no timecode found in " + path + ": frozen: all frames carry the same label\n");
}

void TestLtcReaderProgram::peopleAreToldWhyNothingWasFound()
{
    QFETCH(QString, file);
    QFETCH(QString, reason);
    const ToolRun answer = run({folder.filePath(file), "-oTEXT"});
    QCOMPARE(answer.exitCode, 205);
    QCOMPARE(answer.errors.count('\n'), 1);
    QVERIFY2(answer.output.contains("No timecode: ") && answer.output.contains(reason.toUtf8()),
             answer.output.constData());
}

void TestLtcReaderProgram::whatFfmpegWritesToAPipeIsRead()
{
    QProcess ffmpeg;
    ffmpeg.setStandardOutputFile(pathOf("piped.wav"));
    ffmpeg.start("ffmpeg", {"-v", "error", "-i", pathOf("ltc.wav"), "-f", "wav", "-"});
    QVERIFY(ffmpeg.waitForFinished(30000));
    QCOMPARE(ffmpeg.exitCode(), 0);
    const ToolRun answer = run({pathOf("piped.wav")});
    QCOMPARE(answer.exitCode, 0);
    QVERIFY(answer.output.contains("\"Timecode\": \"10:00:00;00\""));
}

void TestLtcReaderProgram::anyBytesAreSurvived()
{
    QFile good(pathOf("ltc.wav"));
    QVERIFY(good.open(QIODevice::ReadOnly));
    const QByteArray bytes = good.readAll();
    constexpr int trials = 150;
    constexpr int headSize = 64; // what is damaged there decides how the rest is read
    QRandomGenerator random(7);
    for (int trial = 0; trial < trials; ++trial) {
        QByteArray damaged = trial % 3 == 0 ? bytes.left(random.bounded(bytes.size())) : bytes;
        for (int change = 0; change < 1 + trial % 8 && !damaged.isEmpty(); ++change) {
            damaged[random.bounded(qMin(headSize, damaged.size()))] = static_cast<char>(random.bounded(256));
        }
        QFile file(pathOf("damaged.wav"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(damaged) == damaged.size());
        file.close();
        const ToolRun answer = run({pathOf("damaged.wav")});
        QVERIFY2(answer.exitCode == 0 || answer.exitCode == 204 || answer.exitCode == 205,
                 qPrintable(
                     QString("trial %1: %2 %3").arg(trial).arg(answer.exitCode).arg(QString(answer.errors))));
        QCOMPARE(answer.output.isEmpty(), answer.exitCode != 0);
        if (answer.exitCode == 0)
            QVERIFY(QJsonDocument::fromJson(answer.output).isObject());
    }
}

QTEST_GUILESS_MAIN(TestLtcReaderProgram)
#include "tst_ltcreaderprogram.moc"
