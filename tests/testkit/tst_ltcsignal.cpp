// SPDX-License-Identifier: MIT
#include "testkit/signals/biphasemark.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/ltcsignal.h"
#include "testkit/signals/noise.h"
#include "testkit/signals/wavfile.h"

#include <QTemporaryDir>
#include <QTest>

#include <ltc.h>
#include <sndfile.h>

#include <cmath>
#include <memory>

using namespace testsignals;

Q_DECLARE_METATYPE(testsignals::LtcSignal)
Q_DECLARE_METATYPE(testsignals::SampleFormat)
Q_DECLARE_METATYPE(testsignals::Container)

namespace
{

constexpr LtcRate film{24, false, false};
constexpr LtcRate filmNtsc{24, true, false};
constexpr LtcRate pal{25, false, false};
constexpr LtcRate ntsc{30, true, false};
constexpr LtcRate ntscDrop{30, true, true};
constexpr LtcRate thirty{30, false, false};

double largestDifference(const std::vector<float> &a, const std::vector<float> &b)
{
    double largest = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, static_cast<double>(std::abs(a[i] - b[i])));
    return largest;
}

/// The labels that libltc's decoder reads from \a samples, in their order.
QStringList labelsReadByLibltc(std::vector<float> samples, const LtcSignal &signal)
{
    const std::unique_ptr<LTCDecoder, int (*)(LTCDecoder *)> decoder(
        ltc_decoder_create(static_cast<int>(samplesPerFrame(signal.rate, signal.sampleRate)), 1000),
        ltc_decoder_free);
    ltc_decoder_write_float(decoder.get(), samples.data(), samples.size(), 0);
    QStringList labels;
    LTCFrameExt frame;
    while (ltc_decoder_read(decoder.get(), &frame) == 1) {
        SMPTETimecode time;
        ltc_frame_to_time(&time, &frame.ltc, 0);
        LtcRate counting = signal.rate;
        counting.dropFrame = frame.ltc.dfbit != 0;
        labels << QString::fromStdString(text({time.hours, time.mins, time.secs, time.frame}, counting));
    }
    return labels;
}

/// One row per kind of signal, at \a sampleRates and across the places where counting is special.
void addSignals(std::initializer_list<int> sampleRates)
{
    QTest::addColumn<LtcSignal>("signal");
    const auto row = [](const QString &name, LtcTime start, LtcRate rate, int sampleRate,
                        std::uint32_t userBits, double offset) {
        LtcSignal signal;
        signal.start = start;
        signal.rate = rate;
        signal.sampleRate = sampleRate;
        signal.userBits = userBits;
        signal.offset = offset;
        signal.level = 0.0;
        QTest::newRow(qPrintable(name)) << signal;
    };
    const std::pair<const char *, LtcRate> rates[] = {
        {"23.976", filmNtsc},     {"24", film},  {"25", pal}, {"29.97", ntsc},
        {"29.97 drop", ntscDrop}, {"30", thirty}};
    for (const auto &[name, rate] : rates) {
        for (const int sampleRate : sampleRates)
            row(QString("%1 at %2 Hz").arg(name).arg(sampleRate), {12, 34, 56, 7}, rate, sampleRate, 0, 0.0);
        row(QString("%1 over midnight").arg(name), {23, 59, 58, 11}, rate, 48000, 0x12345678, 0.3);
        row(QString("%1 over a full minute").arg(name), {0, 0, 58, 20}, rate, 48000, 0xFFFFFFFF, -0.4);
        for (const int frames : {2, 3, 4})
            row(QString("%1 from frame %2 of a full minute").arg(name).arg(frames), {14, 18, 0, frames}, rate,
                48000, 0, -0.4);
        if (!rate.dropFrame) {
            for (const int frames : {0, 1})
                row(QString("%1 from frame %2 of a full minute").arg(name).arg(frames), {14, 18, 0, frames},
                    rate, 48000, 0, 0.3);
        }
        row(QString("%1 over ten minutes").arg(name), {9, 59, 58, 20}, rate, 48000, 0xBFFCBFFC, 0.49);
    }
}

/// \a file on disk, opened again by libsndfile; without a sound when that failed.
struct WrittenFile {
    explicit WrittenFile(const WavFile &file)
    {
        const std::string path = folder.filePath("signal.wav").toStdString();
        writeWav(path, file);
        sound.reset(sf_open(path.c_str(), SFM_READ, &info));
    }

    QTemporaryDir folder;
    SF_INFO info{};
    std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> sound{nullptr, sf_close};
};

} // namespace

class TestLtcSignal : public QObject
{
    Q_OBJECT

private slots:
    void framesAreCountedFromMidnight_data();
    void framesAreCountedFromMidnight();
    void everyFrameOfADayHasItsOwnLabel();
    void firstSampleLiesAtTheStatedTime_data();
    void firstSampleLiesAtTheStatedTime();
    void frameBeginsWithARisingChangeHalfWayUpAtItsPosition();
    void bothEncodersDrawTheSameSignal_data();
    void bothEncodersDrawTheSameSignal();
    void levelChangesStayInPlaceOverMinutes();
    void libltcReadsEveryFrame_data();
    void libltcReadsEveryFrame();
    void fastMachinePlaysMoreFrames();
    void noiseIsAddedAtTheStatedRatio();
    void wavFilesKeepTheirSamples_data();
    void wavFilesKeepTheirSamples();
    void broadcastWavCarriesItsTimeReference();
};

void TestLtcSignal::framesAreCountedFromMidnight_data()
{
    QTest::addColumn<int>("hours");
    QTest::addColumn<int>("minutes");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("base");
    QTest::addColumn<bool>("drop");
    QTest::addColumn<qlonglong>("number");
    QTest::addColumn<QString>("label");
    QTest::newRow("midnight") << 0 << 0 << 0 << 0 << 25 << false << 0LL << "00:00:00:00";
    QTest::newRow("one hour at 25") << 1 << 0 << 0 << 0 << 25 << false << 90000LL << "01:00:00:00";
    QTest::newRow("last frame of a day at 24")
        << 23 << 59 << 59 << 23 << 24 << false << 2073599LL << "23:59:59:23";
    QTest::newRow("last frame before a drop") << 0 << 0 << 59 << 29 << 30 << true << 1799LL << "00:00:59;29";
    QTest::newRow("first frame after a drop") << 0 << 1 << 0 << 2 << 30 << true << 1800LL << "00:01:00;02";
    QTest::newRow("minute ten drops nothing") << 0 << 10 << 0 << 0 << 30 << true << 17982LL << "00:10:00;00";
    QTest::newRow("last frame of a drop day")
        << 23 << 59 << 59 << 29 << 30 << true << 2589407LL << "23:59:59;29";
}

void TestLtcSignal::framesAreCountedFromMidnight()
{
    QFETCH(int, hours);
    QFETCH(int, minutes);
    QFETCH(int, seconds);
    QFETCH(int, frames);
    QFETCH(int, base);
    QFETCH(bool, drop);
    QFETCH(qlonglong, number);
    QFETCH(QString, label);
    const LtcTime time{hours, minutes, seconds, frames};
    const LtcRate rate{base, drop, drop};
    QCOMPARE(static_cast<qlonglong>(frameNumber(time, rate)), number);
    QCOMPARE(QString::fromStdString(text(timeOfFrame(number, rate), rate)), label);
    QCOMPARE(QString::fromStdString(text(timeOfFrame(number - framesPerDay(rate), rate), rate)), label);
}

void TestLtcSignal::everyFrameOfADayHasItsOwnLabel()
{
    for (const LtcRate rate : {film, pal, ntsc, ntscDrop}) {
        for (std::int64_t number = 0; number < framesPerDay(rate); number += 7) {
            if (frameNumber(timeOfFrame(number, rate), rate) != number)
                QFAIL(qPrintable(QString("frame %1 at base %2").arg(number).arg(rate.base)));
        }
    }
}

void TestLtcSignal::firstSampleLiesAtTheStatedTime_data()
{
    QTest::addColumn<LtcSignal>("signal");
    QTest::addColumn<QString>("label");
    QTest::addColumn<qlonglong>("samples");
    const auto row = [](const char *name, LtcTime start, LtcRate rate, double offset, const char *label,
                        qlonglong samples) {
        LtcSignal signal;
        signal.start = start;
        signal.rate = rate;
        signal.offset = offset;
        QTest::newRow(name) << signal << label << samples;
    };
    row("25, one hour", {1, 0, 0, 0}, pal, 0.0, "01:00:00:00", 172800000);
    row("25, a quarter of a frame in", {1, 0, 0, 0}, pal, 0.25, "01:00:00:00", 172800480);
    row("25, three quarters of a frame in", {1, 0, 0, 0}, pal, 0.75, "01:00:00:01", 172801440);
    row("23.976, one hour lasts longer", {1, 0, 0, 0}, filmNtsc, 0.0, "01:00:00:00", 172972800);
    row("29.97 drop-frame, one hour", {1, 0, 0, 0}, ntscDrop, 0.0, "01:00:00;00", 172799827);
    row("29.97 non-drop, near midnight", {23, 59, 59, 29}, ntsc, 0.0, "23:59:59:29", 4151345598);
    row("25, just before midnight", {0, 0, 0, 0}, pal, -0.25, "00:00:00:00", 4147199520);
}

void TestLtcSignal::firstSampleLiesAtTheStatedTime()
{
    QFETCH(LtcSignal, signal);
    QFETCH(QString, label);
    QFETCH(qlonglong, samples);
    QCOMPARE(QString::fromStdString(text(startTime(signal), signal.rate)), label);
    QCOMPARE(static_cast<qlonglong>(samplesSinceMidnight(signal)), samples);
}

void TestLtcSignal::frameBeginsWithARisingChangeHalfWayUpAtItsPosition()
{
    LtcSignal signal;
    signal.offset = -100.0 / samplesPerFrame(signal.rate, signal.sampleRate);
    signal.level = 0.0;
    for (const std::vector<float> &samples : {ltcAudio(signal), biphaseMarkAudio(signal)}) {
        QCOMPARE(samples.size(), std::size_t{144000});
        QVERIFY(std::abs(samples[100]) < 0.04F);
        QVERIFY(samples[95] < -0.95F);
        QVERIFY(samples[105] > 0.95F);
    }
    signal.inverted = true;
    QVERIFY(ltcAudio(signal)[105] < -0.95F);
}

void TestLtcSignal::bothEncodersDrawTheSameSignal_data()
{
    addSignals({8000, 44100, 48000, 192000});
}

void TestLtcSignal::bothEncodersDrawTheSameSignal()
{
    QFETCH(LtcSignal, signal);
    const std::vector<float> ours = biphaseMarkAudio(signal);
    const std::vector<float> theirs = ltcAudio(signal);
    QCOMPARE(ours.size(), theirs.size());
    // libltc's level changes lie on its own samples: that difference, times the slope of a change.
    QVERIFY2(largestDifference(ours, theirs) < 0.12,
             qPrintable(QString::number(largestDifference(ours, theirs))));
}

void TestLtcSignal::levelChangesStayInPlaceOverMinutes()
{
    LtcSignal signal;
    signal.rate = ntsc;
    signal.sampleRate = 44100;
    signal.duration = 120.0;
    signal.level = 0.0;
    QVERIFY(largestDifference(biphaseMarkAudio(signal), ltcAudio(signal)) < 0.12);
}

void TestLtcSignal::libltcReadsEveryFrame_data()
{
    addSignals({44100, 48000, 192000}); // that decoder needs more samples in a bit than 8 kHz give
}

void TestLtcSignal::libltcReadsEveryFrame()
{
    QFETCH(LtcSignal, signal);
    signal.level = -6.0;
    const QStringList labels = labelsReadByLibltc(biphaseMarkAudio(signal), signal);
    const auto expected = static_cast<int>(signal.duration * framesPerSecond(signal.rate));
    QVERIFY2(labels.size() >= expected - 3, qPrintable(QString::number(labels.size())));
    const auto last = static_cast<std::int64_t>(std::ceil(startFrame(signal))) + expected;
    for (const QString &label : labels) {
        bool found = false;
        for (std::int64_t number = last - expected - 2; number <= last && !found; ++number)
            found = label == QString::fromStdString(text(timeOfFrame(number, signal.rate), signal.rate));
        QVERIFY2(found, qPrintable(label));
    }
}

void TestLtcSignal::fastMachinePlaysMoreFrames()
{
    LtcSignal signal;
    Transport transport;
    transport.deviation = 0.1;
    const QStringList labels = labelsReadByLibltc(biphaseMarkAudio(signal, transport), signal);
    QVERIFY(labels.contains("01:00:03:05"));
    QVERIFY(!labels.contains("01:00:03:08"));
}

void TestLtcSignal::noiseIsAddedAtTheStatedRatio()
{
    const Samples clean = ltcAudio({});
    Samples noisy = clean;
    Random random(1);
    addAtRatio(noisy, whiteNoise(random, noisy.size()), -10.0); // [dB]
    Samples noise = noisy;
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] -= clean[i];
    QVERIFY(std::abs(10.0 * std::log10(power(clean) / power(noise)) + 10.0) < 0.01);
}

void TestLtcSignal::wavFilesKeepTheirSamples_data()
{
    QTest::addColumn<SampleFormat>("format");
    QTest::addColumn<Container>("container");
    QTest::addColumn<int>("channels");
    QTest::addColumn<double>("tolerance");
    QTest::newRow("8 bit, mono") << SampleFormat::Pcm8 << Container::Wav << 1 << 1.1 / 128;
    QTest::newRow("16 bit, stereo") << SampleFormat::Pcm16 << Container::Wav << 2 << 1.1 / 32768;
    QTest::newRow("24 bit, 8 channels, extensible")
        << SampleFormat::Pcm24 << Container::WavExtensible << 8 << 1e-6;
    QTest::newRow("32 bit, RF64") << SampleFormat::Pcm32 << Container::Rf64 << 2 << 1e-7;
    QTest::newRow("float, W64, 16 channels") << SampleFormat::Float32 << Container::W64 << 16 << 0.0;
}

void TestLtcSignal::wavFilesKeepTheirSamples()
{
    QFETCH(SampleFormat, format);
    QFETCH(Container, container);
    QFETCH(int, channels);
    QFETCH(double, tolerance);
    WavFile file;
    file.format = format;
    file.container = container;
    LtcSignal signal;
    signal.duration = 0.2;
    for (int channel = 0; channel < channels; ++channel) {
        signal.start.seconds = channel;
        file.channels.push_back(ltcAudio(signal));
    }
    const WrittenFile written(file);
    QVERIFY(written.sound);
    QCOMPARE(written.info.channels, channels);
    QCOMPARE(written.info.samplerate, 48000);
    QCOMPARE(written.info.frames, sf_count_t{9600});
    std::vector<float> samples(9600U * static_cast<std::size_t>(channels));
    QCOMPARE(sf_readf_float(written.sound.get(), samples.data(), 9600), sf_count_t{9600});
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const float expected = file.channels[i % file.channels.size()][i / file.channels.size()];
        QVERIFY(std::abs(samples[i] - expected) <= static_cast<float>(tolerance));
    }
}

void TestLtcSignal::broadcastWavCarriesItsTimeReference()
{
    WavFile file;
    LtcSignal signal;
    signal.start = {23, 0, 0, 0};
    signal.sampleRate = 96000;
    signal.duration = 0.1;
    file.sampleRate = signal.sampleRate;
    file.channels = {ltcAudio(signal)};
    file.timeReference = samplesSinceMidnight(signal);
    QVERIFY(*file.timeReference > 0xFFFFFFFFLL);
    const WrittenFile written(file);
    QVERIFY(written.sound);
    SF_BROADCAST_INFO broadcast{};
    QCOMPARE(sf_command(written.sound.get(), SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast),
             int{SF_TRUE});
    const auto reference =
        static_cast<std::int64_t>(broadcast.time_reference_high) << 32 | broadcast.time_reference_low;
    QCOMPARE(reference, *file.timeReference);
}

QTEST_APPLESS_MAIN(TestLtcSignal)

#include "tst_ltcsignal.moc"
