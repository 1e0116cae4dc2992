// SPDX-License-Identifier: MIT
#include "ltcreader/decoder/decoder.h"
#include "ltcreader/decoder/finding.h"
#include "ltcreader/edge/labeltrack.h"
#include "testkit/signals/biphasemark.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/ltcsignal.h"
#include "testkit/signals/noise.h"

#include <QTest>

#include <cmath>
#include <functional>

using namespace ltcreader;
using testsignals::LtcSignal;

Q_DECLARE_METATYPE(testsignals::LtcSignal)

class TestDecoder : public QObject
{
    Q_OBJECT

private slots:
    void cleanTimecodeIsReadExactly_data();
    void cleanTimecodeIsReadExactly();
    void bothEncodersAreRead();
    void everyAlgorithmReadsACleanSignal_data();
    void everyAlgorithmReadsACleanSignal();
    void theThresholdsAreRealChoices();
    void theSlopeReadsThroughHum();
    void spikesAreRead_data();
    void spikesAreRead();
    void timecodeIsReadOutOfNoise_data();
    void timecodeIsReadOutOfNoise();
    void lateTimecodeOfALongRecordingIsFound();
    void theTimecodeIsFoundOnEveryChannel_data();
    void theTimecodeIsFoundOnEveryChannel();
    void theLouderOfTwoChannelsWins();
    void onlyTheNamedChannelIsRead();
    void onlyTheNamedRateIsAccepted_data();
    void onlyTheNamedRateIsAccepted();
    void theFrameNumberDecidesTheRateNotTheSpeed_data();
    void theFrameNumberDecidesTheRateNotTheSpeed();
    void labelsThatARateDoesNotHaveAreNotItsOwn();
    void timecodeThatStartsLateIsExtrapolatedBack();
    void aJumpBelongsToTheFirstPart();
    void soundWithoutTimecodeIsRefused_data();
    void soundWithoutTimecodeIsRefused();
    void aSampleRateThatHoldsNoTimecodeIsNoFault();
    void findingsOfOtherTimecodesContradict_data();
    void findingsOfOtherTimecodesContradict();
    void readingStopsWhenItIsSure();
    void furtherFactsAreReported();
};

namespace
{

using Channels = std::vector<std::vector<float>>;

MemorySource toSource(const Channels &channels, int sampleRate)
{
    std::vector<float> interleaved;
    for (std::size_t i = 0; i < channels.front().size(); ++i) {
        for (const std::vector<float> &channel : channels) {
            interleaved.push_back(channel[i]);
        }
    }
    return {std::move(interleaved), static_cast<int>(channels.size()), sampleRate};
}

std::optional<Reading> read(const std::vector<float> &samples, int sampleRate, const Settings &settings = {})
{
    MemorySource source(samples, 1, sampleRate);
    return readTimecode(source, settings);
}

QString textOf(const std::optional<Reading> &reading)
{
    return reading ? QString::fromStdString(toText(reading->start, reading->dropFrame)) : QString("nothing");
}

QString startOf(const LtcSignal &signal)
{
    return QString::fromStdString(testsignals::text(testsignals::startTime(signal), signal.rate));
}

std::vector<float> sine(double frequency, double amplitude, std::size_t count, int sampleRate)
{
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double turns = frequency * static_cast<double>(i) / sampleRate;
        samples[i] = static_cast<float>(amplitude * std::sin(2.0 * M_PI * turns));
    }
    return samples;
}

/// What a capacitor makes of \a samples: only the changes are left, which fade with the time constant \a tau
/// [s].
std::vector<float> differentiated(const std::vector<float> &samples, double tau, int sampleRate)
{
    const double keep = std::exp(-1.0 / (tau * sampleRate));
    std::vector<float> spikes(samples.size());
    double charge = 0.0;
    double before = double{samples.front()};
    for (std::size_t i = 0; i < samples.size(); ++i) {
        charge = keep * (charge + double{samples[i]} - before);
        before = double{samples[i]};
        spikes[i] = static_cast<float>(charge);
    }
    return spikes;
}

void add(std::vector<float> &samples, const std::vector<float> &others)
{
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] += others[i];
    }
}

LtcSignal signalAt(testsignals::LtcRate rate)
{
    LtcSignal signal;
    signal.rate = rate;
    signal.start = {10, 20, 30, 12};
    signal.level = -6.0;
    return signal;
}

constexpr testsignals::LtcRate film{24, false, false};
constexpr testsignals::LtcRate filmNtsc{24, true, false};
constexpr testsignals::LtcRate pal{25, false, false};
constexpr testsignals::LtcRate ntsc{30, true, false};
constexpr testsignals::LtcRate drop{30, true, true};
constexpr testsignals::LtcRate whole{30, false, false};

} // namespace

void TestDecoder::cleanTimecodeIsReadExactly_data()
{
    QTest::addColumn<LtcSignal>("signal");
    const std::vector<std::pair<const char *, testsignals::LtcRate>> rates{
        {"23.976", filmNtsc},       {"24", film}, {"25", pal}, {"29.97", ntsc},
        {"29.97 drop-frame", drop}, {"30", whole}};
    for (const auto &[name, rate] : rates) {
        const LtcSignal plain = signalAt(rate);
        const auto row = [name = name](const char *what, const LtcSignal &signal) {
            QTest::addRow("%s, %s", name, what) << signal;
        };
        row("plain", plain);
        for (const int sampleRate : {8000, 11025, 16000, 22050, 32000, 44100, 88200, 96000, 192000}) {
            LtcSignal signal = plain;
            signal.sampleRate = sampleRate;
            row(qPrintable(QString("%1 Hz").arg(sampleRate)), signal);
        }
        for (const double offset : {0.25, 0.48, 0.52, 0.9}) {
            LtcSignal signal = plain;
            signal.offset = offset;
            row(qPrintable(QString("%1 of a frame inside").arg(offset)), signal);
        }
        LtcSignal signal = plain;
        signal.inverted = true;
        row("inverted", signal);
        signal = plain;
        signal.level = -40.0;
        row("-40 dBFS", signal);
        signal = plain;
        signal.level = -60.0;
        row("-60 dBFS", signal);
        signal = plain;
        signal.start = {23, 59, 58, 5};
        row("over midnight", signal);
        signal = plain;
        signal.start = {0, 0, 0, 0};
        row("from midnight", signal);
        signal.offset = -0.4;
        row("just before midnight", signal);
        signal = plain;
        signal.start = {9, 58, 59, 0};
        row("over a minute", signal);
        signal.start = {9, 59, 59, 0};
        row("over a tenth minute", signal);
        signal = plain;
        signal.userBits = 0xbffcbffcU;
        row("user bits like sync words", signal);
        signal = plain;
        signal.duration = 1.0;
        row("1 s", signal);
        signal.duration = 0.3;
        row("0.3 s", signal);
        signal = plain;
        signal.riseTime = 0.0;
        row("steep edges", signal);
    }
}

void TestDecoder::cleanTimecodeIsReadExactly()
{
    QFETCH(LtcSignal, signal);
    const auto reading = read(testsignals::ltcAudio(signal), signal.sampleRate);
    QCOMPARE(textOf(reading), startOf(signal));
    QCOMPARE(reading->baseRate, signal.rate.base);
    QCOMPARE(reading->ntsc, signal.rate.ntsc);
    QCOMPARE(reading->dropFrame, signal.rate.dropFrame);
    const std::int64_t expected = testsignals::samplesSinceMidnight(signal);
    const std::int64_t day = std::llround(static_cast<double>(testsignals::framesPerDay(signal.rate)) *
                                          testsignals::samplesPerFrame(signal.rate, signal.sampleRate));
    const std::int64_t error = std::abs(reading->samplesSinceMidnight - expected);
    QVERIFY2(std::min(error, day - error) <= 2, qPrintable(QString("%1 samples off").arg(error)));
}

void TestDecoder::bothEncodersAreRead()
{
    const LtcSignal signal = signalAt(pal);
    QCOMPARE(textOf(read(testsignals::ltcAudio(signal), 48000)), startOf(signal));
    QCOMPARE(textOf(read(testsignals::biphaseMarkAudio(signal), 48000)), startOf(signal));
}

void TestDecoder::everyAlgorithmReadsACleanSignal_data()
{
    QTest::addColumn<int>("algorithm");
    QTest::newRow("LOW") << static_cast<int>(Algorithm::Low);
    QTest::newRow("MID") << static_cast<int>(Algorithm::Mid);
    QTest::newRow("HIGH") << static_cast<int>(Algorithm::High);
    QTest::newRow("SLOPE") << static_cast<int>(Algorithm::Slope);
}

void TestDecoder::everyAlgorithmReadsACleanSignal()
{
    QFETCH(int, algorithm);
    const LtcSignal signal = signalAt(drop);
    Settings settings;
    settings.algorithm = static_cast<Algorithm>(algorithm);
    const auto reading = read(testsignals::ltcAudio(signal), 48000, settings);
    QCOMPARE(textOf(reading), startOf(signal));
    QVERIFY(reading->algorithm == settings.algorithm);
}

void TestDecoder::theThresholdsAreRealChoices()
{
    // A whistle at a third of the level passes a low threshold, and a high one keeps it out.
    LtcSignal signal = signalAt(pal);
    std::vector<float> samples = testsignals::ltcAudio(signal);
    add(samples, sine(9000.0, 0.2, samples.size(), 48000));
    Settings settings;
    settings.algorithm = Algorithm::High;
    QCOMPARE(textOf(read(samples, 48000, settings)), startOf(signal));
    QCOMPARE(textOf(read(samples, 48000)), startOf(signal));
}

void TestDecoder::theSlopeReadsThroughHum()
{
    LtcSignal signal = signalAt(pal);
    signal.level = -30.0;
    std::vector<float> samples = testsignals::ltcAudio(signal);
    add(samples, sine(50.0, 0.5, samples.size(), 48000));
    Settings settings;
    settings.algorithm = Algorithm::Slope;
    QCOMPARE(textOf(read(samples, 48000, settings)), startOf(signal));
    settings.algorithm = Algorithm::Mid;
    QCOMPARE(textOf(read(samples, 48000, settings)), QString("nothing"));
    QCOMPARE(textOf(read(samples, 48000)), startOf(signal));
}

void TestDecoder::spikesAreRead_data()
{
    QTest::addColumn<double>("tau");   // [s]
    QTest::addColumn<double>("level"); // [dBFS]
    for (const double tau : {20e-6, 50e-6, 100e-6, 200e-6, 500e-6}) {
        for (const double level : {-6.0, -30.0, -50.0}) {
            QTest::addRow("%g microseconds, %g dBFS", tau * 1e6, level) << tau << level;
        }
    }
}

void TestDecoder::spikesAreRead()
{
    QFETCH(double, tau);
    QFETCH(double, level);
    LtcSignal signal = signalAt(pal);
    signal.level = level;
    QCOMPARE(textOf(read(differentiated(testsignals::ltcAudio(signal), tau, 48000), 48000)), startOf(signal));
}

void TestDecoder::timecodeIsReadOutOfNoise_data()
{
    QTest::addColumn<QString>("noise");
    QTest::addColumn<double>("ratio");    // [dB]
    QTest::addColumn<double>("duration"); // [s]
    QTest::newRow("white noise, -18 dB, 3 s") << "white" << -18.0 << 3.0;
    QTest::newRow("white noise, -13 dB, 1 s") << "white" << -13.0 << 1.0;
    QTest::newRow("white noise, -6 dB, 0.2 s") << "white" << -6.0 << 0.2;
    QTest::newRow("pink noise, -12 dB") << "pink" << -12.0 << 3.0;
    QTest::newRow("hum, -30 dB") << "hum" << -30.0 << 3.0;
    QTest::newRow("wind, -50 dB") << "wind" << -50.0 << 3.0;
    QTest::newRow("music, -14 dB") << "music" << -14.0 << 3.0;
    QTest::newRow("speech, -14 dB") << "speech" << -14.0 << 3.0;
}

void TestDecoder::timecodeIsReadOutOfNoise()
{
    QFETCH(QString, noise);
    QFETCH(double, ratio);
    QFETCH(double, duration);
    constexpr int recordings = 3;
    int right = 0;
    for (int recording = 0; recording < recordings; ++recording) {
        testsignals::Random random(100 + static_cast<std::uint64_t>(recording));
        LtcSignal signal = signalAt(recording % 2 == 0 ? pal : drop);
        signal.duration = duration;
        signal.level = -30.0;
        signal.start.minutes += recording;
        signal.offset = 0.13 * recording;
        signal.userBits = 0x0F1E2D3CU * static_cast<unsigned>(recording);
        testsignals::Samples samples = testsignals::ltcAudio(signal);
        const std::size_t count = samples.size();
        const testsignals::Samples disturbance =
            noise == "white"   ? testsignals::whiteNoise(random, count)
            : noise == "pink"  ? testsignals::pinkNoise(random, count, 48000)
            : noise == "hum"   ? testsignals::hum(random, count, 48000)
            : noise == "wind"  ? testsignals::windNoise(random, count, 48000)
            : noise == "music" ? testsignals::musicLike(random, count, 48000)
                               : testsignals::speechLike(random, count, 48000);
        testsignals::addAtRatio(samples, disturbance, ratio);
        const auto reading = read(samples, 48000);
        if (!reading)
            continue;
        QCOMPARE(textOf(reading), startOf(signal));
        QVERIFY(std::abs(reading->samplesSinceMidnight - testsignals::samplesSinceMidnight(signal)) <= 10);
        QVERIFY(reading->confidence >= 0.999);
        ++right;
    }
    QVERIFY2(2 * right >= recordings, qPrintable(QString("%1 of %2 read").arg(right).arg(recordings)));
}

void TestDecoder::lateTimecodeOfALongRecordingIsFound()
{
    LtcSignal signal = signalAt(pal);
    signal.duration = 12.0;
    std::vector<float> samples = testsignals::ltcAudio(signal);
    std::fill_n(samples.begin(), 9 * 48000, 0.0F);
    const auto reading = read(samples, 48000);
    QCOMPARE(textOf(reading), startOf(signal));
    QVERIFY(std::abs(reading->samplesSinceMidnight - testsignals::samplesSinceMidnight(signal)) <= 10);
}

void TestDecoder::theTimecodeIsFoundOnEveryChannel_data()
{
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("channel");
    for (const int channels : {1, 2, 4, 8, 16}) {
        for (int channel = 0; channel < channels; ++channel) {
            QTest::addRow("channel %d of %d", channel + 1, channels) << channels << channel;
        }
    }
}

void TestDecoder::theTimecodeIsFoundOnEveryChannel()
{
    QFETCH(int, channels);
    QFETCH(int, channel);
    const LtcSignal signal = signalAt(pal);
    const std::vector<float> ltc = testsignals::ltcAudio(signal);
    Channels sound(static_cast<std::size_t>(channels), sine(440.0, 0.5, ltc.size(), 48000));
    sound[static_cast<std::size_t>(channel)] = ltc;
    MemorySource source = toSource(sound, 48000);
    const auto reading = readTimecode(source, {});
    QCOMPARE(textOf(reading), startOf(signal));
    QCOMPARE(reading->channel, channel);
}

void TestDecoder::theLouderOfTwoChannelsWins()
{
    LtcSignal signal = signalAt(pal);
    const std::vector<float> real = testsignals::ltcAudio(signal);
    signal.level = -50.0;
    const std::vector<float> crosstalk = testsignals::ltcAudio(signal);
    MemorySource both = toSource({crosstalk, real}, 48000);
    QCOMPARE(readTimecode(both, {})->channel, 1);
    MemorySource alone = toSource({crosstalk, sine(300.0, 0.3, real.size(), 48000)}, 48000);
    const auto reading = readTimecode(alone, {});
    QVERIFY(reading);
    QCOMPARE(reading->channel, 0);
}

void TestDecoder::onlyTheNamedChannelIsRead()
{
    const LtcSignal signal = signalAt(pal);
    const std::vector<float> ltc = testsignals::ltcAudio(signal);
    const Channels sound{ltc, std::vector<float>(ltc.size())};
    Settings settings;
    settings.channel = 1;
    MemorySource silent = toSource(sound, 48000);
    QCOMPARE(textOf(readTimecode(silent, settings)), QString("nothing"));
    settings.channel = 0;
    MemorySource speaking = toSource(sound, 48000);
    QCOMPARE(textOf(readTimecode(speaking, settings)), startOf(signal));
}

void TestDecoder::onlyTheNamedRateIsAccepted_data()
{
    QTest::addColumn<double>("wanted"); // [frames/s]
    QTest::addColumn<int>("base");
    QTest::addColumn<bool>("ntsc");
    QTest::addColumn<bool>("dropFrame");
    QTest::addColumn<bool>("accepted");
    const std::vector<std::pair<double, testsignals::LtcRate>> rates{
        {23.98, filmNtsc}, {24.0, film}, {25.0, pal}, {29.97, ntsc}, {29.97, drop}, {30.0, whole}};
    for (const double wanted : {23.98, 24.0, 25.0, 29.97, 30.0}) {
        for (const auto &[name, rate] : rates) {
            QTest::addRow("%g wanted, %g%s there", wanted, name, rate.dropFrame ? " drop-frame" : "")
                << wanted << rate.base << rate.ntsc << rate.dropFrame << (wanted == name);
        }
    }
}

void TestDecoder::onlyTheNamedRateIsAccepted()
{
    QFETCH(double, wanted);
    QFETCH(int, base);
    QFETCH(bool, ntsc);
    QFETCH(bool, dropFrame);
    QFETCH(bool, accepted);
    const LtcSignal signal = signalAt({base, ntsc, dropFrame});
    Settings settings;
    settings.frameRate = wanted;
    const auto reading = read(testsignals::ltcAudio(signal), 48000, settings);
    QCOMPARE(textOf(reading), accepted ? startOf(signal) : QString("nothing"));
}

void TestDecoder::theFrameNumberDecidesTheRateNotTheSpeed_data()
{
    QTest::addColumn<LtcSignal>("signal");
    QTest::addColumn<double>("deviation");
    QTest::newRow("25 played at 24") << signalAt(pal) << -0.04;
    QTest::newRow("24 played at 25") << signalAt(film) << 0.0417;
    QTest::newRow("25 a tenth fast") << signalAt(pal) << 0.1;
    QTest::newRow("30 a tenth slow") << signalAt(whole) << -0.1;
    QTest::newRow("24 a tenth fast") << signalAt(film) << 0.1;
}

void TestDecoder::theFrameNumberDecidesTheRateNotTheSpeed()
{
    QFETCH(LtcSignal, signal);
    QFETCH(double, deviation);
    testsignals::Transport transport;
    transport.deviation = deviation;
    const auto reading = read(testsignals::biphaseMarkAudio(signal, transport), 48000);
    QCOMPARE(textOf(reading), startOf(signal));
    QCOMPARE(reading->baseRate, signal.rate.base);
}

void TestDecoder::labelsThatARateDoesNotHaveAreNotItsOwn()
{
    constexpr double length = 1920.0; // [samples] 25 frames a second
    std::vector<Frame> frames;
    for (int number = 0; number < 30; ++number) {
        const auto bits = testsignals::frameBits({10, 0, 0, number}, {30, false, false}, 0);
        Frame frame;
        frame.bits = (bits << 16 >> 16).to_ullong(); // without the sync word
        frame.start = number * length;
        frame.end = frame.start + length;
        frames.push_back(frame);
    }
    const auto thirty = findTrack(frames, 48000, std::nullopt);
    QVERIFY(!thirty || thirty->rate.base == 30); // 25 frames a second have no labels 25 to 29
    frames.resize(25);
    const auto twentyFive = findTrack(frames, 48000, std::nullopt);
    QVERIFY(twentyFive && twentyFive->rate.base == 25);
}

void TestDecoder::timecodeThatStartsLateIsExtrapolatedBack()
{
    const LtcSignal signal = signalAt(drop);
    std::vector<float> samples = testsignals::ltcAudio(signal);
    std::fill_n(samples.begin(), 70000, 0.0F);
    const auto reading = read(samples, 48000);
    QCOMPARE(textOf(reading), startOf(signal));
    QVERIFY(std::abs(reading->samplesSinceMidnight - testsignals::samplesSinceMidnight(signal)) <= 3);
}

void TestDecoder::aJumpBelongsToTheFirstPart()
{
    LtcSignal signal = signalAt(pal);
    signal.duration = 0.8;
    std::vector<float> samples = testsignals::ltcAudio(signal);
    LtcSignal later = signalAt(pal);
    later.start = {4, 5, 6, 7};
    later.duration = 2.2;
    const std::vector<float> rest = testsignals::ltcAudio(later);
    samples.insert(samples.end(), rest.begin(), rest.end());
    QCOMPARE(textOf(read(samples, 48000)), startOf(signal));
}

void TestDecoder::soundWithoutTimecodeIsRefused_data()
{
    QTest::addColumn<std::vector<float>>("samples");
    constexpr std::size_t count = 144000;
    QTest::newRow("nothing at all") << std::vector<float>();
    QTest::newRow("one sample") << std::vector<float>(1, 0.5F);
    QTest::newRow("silence") << std::vector<float>(count);
    QTest::newRow("a constant") << std::vector<float>(count, 0.7F);
    QTest::newRow("1 kHz") << sine(1000.0, 0.5, count, 48000);
    QTest::newRow("2 kHz") << sine(2000.0, 0.5, count, 48000);
    std::vector<float> garbage(count);
    for (std::size_t i = 0; i < count; ++i) {
        garbage[i] = i % 3 == 0 ? std::nanf("") : i % 3 == 1 ? INFINITY : -3e38F;
    }
    QTest::newRow("no numbers at all") << garbage;
}

void TestDecoder::soundWithoutTimecodeIsRefused()
{
    QFETCH(std::vector<float>, samples);
    QCOMPARE(textOf(read(samples, 48000)), QString("nothing"));
}

void TestDecoder::aSampleRateThatHoldsNoTimecodeIsNoFault()
{
    const std::vector<float> samples = sine(0.1, 0.5, 2000, 1);
    for (const int rate : {1, 10, 100, 1000, 3000})
        QCOMPARE(textOf(read(samples, rate)), QString("nothing"));
}

void TestDecoder::findingsOfOtherTimecodesContradict_data()
{
    QTest::addColumn<int>("base");
    QTest::addColumn<bool>("dropFrame");
    QTest::addColumn<double>("startCount"); // [frames]
    QTest::addColumn<bool>("contradicts");
    QTest::newRow("the same") << 30 << true << 1000.0 << false;
    QTest::newRow("begun within the frame") << 30 << true << 1000.4 << false;
    QTest::newRow("a frame later") << 30 << true << 1001.0 << true;
    QTest::newRow("a frame earlier") << 30 << true << 999.0 << true;
    QTest::newRow("another base") << 25 << true << 1000.0 << true;
    QTest::newRow("no drop-frame") << 30 << false << 1000.0 << true;
}

void TestDecoder::findingsOfOtherTimecodesContradict()
{
    QFETCH(int, base);
    QFETCH(bool, dropFrame);
    QFETCH(double, startCount);
    Finding found;
    found.rate = {30, true, true};
    found.startCount = 1000.0;
    Finding other = found;
    other.rate = {base, true, dropFrame};
    other.startCount = startCount;
    QTEST(contradict(found, other), "contradicts");
    QTEST(contradict(other, found), "contradicts");
}

void TestDecoder::readingStopsWhenItIsSure()
{
    LtcSignal signal = signalAt(pal);
    signal.duration = 20.0;
    MemorySource source(testsignals::ltcAudio(signal), 1, 48000);
    QCOMPARE(textOf(readTimecode(source, {})), startOf(signal));
    std::vector<float> rest(std::size_t{48000} * 20);
    QVERIFY(source.read(rest.data(), rest.size()) >= std::size_t{48000} * 18);
}

void TestDecoder::furtherFactsAreReported()
{
    LtcSignal signal = signalAt(pal);
    signal.userBits = 0x12345678U;
    signal.offset = 0.25;
    signal.level = -20.0;
    signal.inverted = true;
    const auto reading = read(testsignals::ltcAudio(signal), 48000);
    QCOMPARE(textOf(reading), startOf(signal));
    QCOMPARE(reading->userBits, signal.userBits);
    QVERIFY(std::abs(reading->phase - 0.25) < 0.001);
    QVERIFY(std::abs(reading->level + 20.0) < 0.5);
    QVERIFY(std::abs(reading->measuredRate - 25.0) < 0.001);
    QVERIFY(std::abs(reading->rateError) < 20.0);
    QVERIFY(reading->inverted);
    QVERIFY(reading->framesUsed >= 10);
}

QTEST_APPLESS_MAIN(TestDecoder)
#include "tst_decoder.moc"
