// SPDX-License-Identifier: MIT
#include "ltcreader/sound/soundfile.h"
#include "testkit/signals/wavfile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <cmath>

using namespace ltcreader;
using testsignals::Container;
using testsignals::SampleFormat;

Q_DECLARE_METATYPE(testsignals::WavFile)

class TestSoundFile : public QObject
{
    Q_OBJECT

private slots:
    void everyFormatIsRead_data();
    void everyFormatIsRead();
    void asManyFramesComeAsAreAskedFor();
    void lengthsInTheHeaderNeedNotBeTrue_data();
    void lengthsInTheHeaderNeedNotBeTrue();
    void chunksBeforeTheSoundAreSkipped();
    void aFileIsReadAgainFromItsBeginning();
    void whatIsNoSoundIsRefused_data();
    void whatIsNoSoundIsRefused();

private:
    QTemporaryDir folder;
    QString pathOf(const char *name) const { return folder.filePath(name); }
};

namespace
{

constexpr std::size_t count = 5000;
constexpr int sizeOffset = 40; // of the length of the sound in a plain WAV header

std::vector<float> ramp()
{
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = static_cast<float>(i) / count - 0.5F;
    }
    return samples;
}

std::vector<float> readAll(SoundFile &file)
{
    std::vector<float> all;
    std::vector<float> block(999 * static_cast<std::size_t>(file.channels()));
    while (const std::size_t given = file.read(block.data(), 999)) {
        all.insert(all.end(), block.begin(),
                   block.begin() + static_cast<std::ptrdiff_t>(given) * file.channels());
    }
    return all;
}

QByteArray plainWav(const QString &path)
{
    testsignals::WavFile wav;
    wav.channels = {ramp()};
    testsignals::writeWav(path.toStdString(), wav);
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

void TestSoundFile::everyFormatIsRead_data()
{
    QTest::addColumn<testsignals::WavFile>("wav");
    QTest::addColumn<double>("step"); // [full scale] coarseness of the format
    const auto row = [](const char *name, SampleFormat format, Container container, int channels,
                        double step) {
        testsignals::WavFile wav;
        wav.format = format;
        wav.container = container;
        wav.channels.assign(static_cast<std::size_t>(channels), ramp());
        QTest::newRow(name) << wav << step;
    };
    row("8 bit", SampleFormat::Pcm8, Container::Wav, 1, 1.0 / 128);
    row("16 bit", SampleFormat::Pcm16, Container::Wav, 2, 1.0 / 32768);
    row("24 bit", SampleFormat::Pcm24, Container::Wav, 1, 1e-6);
    row("32 bit", SampleFormat::Pcm32, Container::Wav, 1, 1e-6);
    row("float", SampleFormat::Float32, Container::Wav, 1, 1e-6);
    row("extensible, 16 channels", SampleFormat::Pcm24, Container::WavExtensible, 16, 1e-6);
    row("RF64", SampleFormat::Pcm16, Container::Rf64, 2, 1.0 / 32768);
    row("W64", SampleFormat::Pcm16, Container::W64, 2, 1.0 / 32768);
}

void TestSoundFile::everyFormatIsRead()
{
    QFETCH(testsignals::WavFile, wav);
    QFETCH(double, step);
    testsignals::writeWav(pathOf("sound.wav").toStdString(), wav);
    SoundFileError error = SoundFileError::CannotOpen;
    const auto file = SoundFile::open(pathOf("sound.wav").toStdString(), error);
    QVERIFY(file && error == SoundFileError::None);
    QCOMPARE(file->channels(), static_cast<int>(wav.channels.size()));
    QCOMPARE(file->sampleRate(), 48000);
    const std::vector<float> samples = readAll(*file);
    QCOMPARE(samples.size(), count * wav.channels.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const float expected = wav.channels.front()[i / wav.channels.size()];
        QVERIFY(std::abs(samples[i] - expected) <= step);
    }
}

void TestSoundFile::asManyFramesComeAsAreAskedFor()
{
    QVERIFY(!plainWav(pathOf("plain.wav")).isEmpty());
    SoundFileError error = SoundFileError::None;
    const auto file = SoundFile::open(pathOf("plain.wav").toStdString(), error);
    QVERIFY(file);
    std::vector<float> block(count);
    QCOMPARE(file->read(block.data(), 1), std::size_t{1});
    QCOMPARE(file->read(block.data(), 999), std::size_t{999});
    QCOMPARE(file->read(block.data(), count), count - 1000); // the rest
    QCOMPARE(file->read(block.data(), count), std::size_t{0});
}

void TestSoundFile::lengthsInTheHeaderNeedNotBeTrue_data()
{
    QTest::addColumn<quint32>("length");
    QTest::addColumn<int>("cut"); // [bytes] missing at the end
    QTest::addColumn<int>("expected");
    QTest::newRow("0, as a pipe leaves it") << 0U << 0 << 5000;
    QTest::newRow("the largest, as a pipe leaves it") << 0xFFFFFFFFU << 0 << 5000;
    QTest::newRow("cut off") << 10000U << 4000 << 3000;
    QTest::newRow("cut off within a sample") << 10000U << 4001 << 2999;
    QTest::newRow("cut off before the sound") << 10000U << 10000 << 0;
}

void TestSoundFile::lengthsInTheHeaderNeedNotBeTrue()
{
    QFETCH(quint32, length);
    QFETCH(int, cut);
    QFETCH(int, expected);
    QByteArray bytes = plainWav(pathOf("plain.wav"));
    QCOMPARE(bytes.mid(sizeOffset - 4, 4), QByteArray("data"));
    const quint32 littleEndian = qToLittleEndian(length);
    bytes.replace(
        sizeOffset, sizeof littleEndian,
        QByteArray::fromRawData(reinterpret_cast<const char *>(&littleEndian), sizeof littleEndian));
    bytes.chop(cut);
    QVERIFY(write(pathOf("wrong.wav"), bytes));
    SoundFileError error = SoundFileError::None;
    const auto file = SoundFile::open(pathOf("wrong.wav").toStdString(), error);
    QVERIFY(file);
    const std::vector<float> samples = readAll(*file);
    QCOMPARE(static_cast<int>(samples.size()), expected);
    const std::vector<float> whole = ramp();
    for (std::size_t i = 0; i < samples.size(); ++i) {
        QVERIFY(std::abs(samples[i] - whole[i]) < 1e-4F);
    }
}

void TestSoundFile::chunksBeforeTheSoundAreSkipped()
{
    QByteArray bytes = plainWav(pathOf("plain.wav"));
    bytes.insert(sizeOffset - 4, QByteArray("LIST\x1a\0\0\0INFOISFT\x0e\0\0\0Lavf59.27.100\0", 34));
    QVERIFY(write(pathOf("list.wav"), bytes));
    SoundFileError error = SoundFileError::None;
    const auto file = SoundFile::open(pathOf("list.wav").toStdString(), error);
    QVERIFY(file);
    QCOMPARE(readAll(*file).size(), count);
}

void TestSoundFile::aFileIsReadAgainFromItsBeginning()
{
    QVERIFY(!plainWav(pathOf("again.wav")).isEmpty());
    SoundFileError error = SoundFileError::None;
    const auto file = SoundFile::open(pathOf("again.wav").toStdString(), error);
    QVERIFY(file);
    const std::vector<float> first = readAll(*file);
    QCOMPARE(first.size(), count);
    QVERIFY(file->rewind());
    QCOMPARE(readAll(*file), first);
}

void TestSoundFile::whatIsNoSoundIsRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("expected");
    QVERIFY(write(pathOf("empty.wav"), {}));
    QVERIFY(write(pathOf("text.wav"), "This is no sound.\n"));
    QVERIFY(write(pathOf("head.wav"), plainWav(pathOf("plain.wav")).left(20)));
    QVERIFY(write(pathOf("zeros.wav"), QByteArray(10000, '\0')));
    QTest::newRow("no such file") << pathOf("none.wav") << static_cast<int>(SoundFileError::CannotOpen);
    QTest::newRow("a folder") << folder.path() << static_cast<int>(SoundFileError::CannotOpen);
    QTest::newRow("an empty file") << pathOf("empty.wav") << static_cast<int>(SoundFileError::NotASound);
    QTest::newRow("text") << pathOf("text.wav") << static_cast<int>(SoundFileError::NotASound);
    QTest::newRow("half a head") << pathOf("head.wav") << static_cast<int>(SoundFileError::NotASound);
    QTest::newRow("zeros") << pathOf("zeros.wav") << static_cast<int>(SoundFileError::NotASound);
}

void TestSoundFile::whatIsNoSoundIsRefused()
{
    QFETCH(QString, path);
    SoundFileError error = SoundFileError::None;
    QVERIFY(!SoundFile::open(path.toStdString(), error));
    QTEST(static_cast<int>(error), "expected");
}

QTEST_APPLESS_MAIN(TestSoundFile)
#include "tst_soundfile.moc"
