// SPDX-License-Identifier: MIT
#include "testkit/media/mediamaker.h"
#include "testkit/media/shootday.h"

#include <QSet>
#include <QTimeZone>
#include <QtTest>

#include <vector>

/// The media that demo and tests are run on: they are what they claim to be.
class TestMediaKit : public QObject
{
    Q_OBJECT

private slots:
    void dayHasAllRatesAndContainers();
    void noTwoFilesShareATimecodeExceptThePair();
    void onlyThePairWasRecordedTogether();
    void toneAndTimecodeStandInTheirChannels();
    void lateTimecodeBeginsWithSilence();
    void soundFileHasItsModificationTime();
    void impossibleFolderIsReported();
};

using namespace mediakit;

namespace
{
std::vector<testsignals::LtcSignal> timecodesOf(const QVector<Recording> &recordings)
{
    std::vector<testsignals::LtcSignal> found;
    for (const Recording &recording : recordings)
        if (const auto timecode = timecodeOf(recording))
            found.push_back(*timecode);
    return found;
}
} // namespace

void TestMediaKit::dayHasAllRatesAndContainers()
{
    QSet<QString> suffixes;
    const QVector<Recording> recordings = shootDay();
    for (const Recording &recording : recordings)
        suffixes += recording.path.section('.', -1);
    QCOMPARE(suffixes, (QSet<QString>{"mov", "mp4", "mts", "mxf", "wav"}));

    QSet<QString> rates;
    for (const testsignals::LtcSignal &signal : timecodesOf(recordings))
        rates += QString("%1%2%3").arg(signal.rate.base).arg(signal.rate.ntsc).arg(signal.rate.dropFrame);
    QCOMPARE(rates, (QSet<QString>{"2410", "2400", "2500", "3010", "3011", "3000"}));
}

void TestMediaKit::noTwoFilesShareATimecodeExceptThePair()
{
    QSet<qint64> starts;
    int files = 0;
    for (const testsignals::LtcSignal &signal : timecodesOf(shootDay())) {
        starts += testsignals::samplesSinceMidnight(signal);
        ++files;
    }
    QCOMPARE(starts.size(), files - 1);
}

void TestMediaKit::onlyThePairWasRecordedTogether()
{
    QSet<QDateTime> times;
    int files = 0;
    const QVector<Recording> recordings = shootDay();
    for (const Recording &recording : recordings) {
        times += recording.modified;
        ++files;
    }
    QCOMPARE(times.size(), files - 1);
}

void TestMediaKit::toneAndTimecodeStandInTheirChannels()
{
    Recording recording;
    recording.duration = 1.0;
    const Track track{toneChannel(440), timecodeChannel({1, 0, 0, 0}, {25, false}), toneChannel(0)};
    const std::vector<std::vector<float>> channels = render(track, recording);
    QCOMPARE(channels.size(), std::size_t(3));

    const auto peak = [](const std::vector<float> &samples) {
        return *std::max_element(samples.begin(), samples.end());
    };
    QVERIFY(std::abs(peak(channels[0]) - 0.1F) < 0.01F);
    QVERIFY(std::abs(peak(channels[1]) - 0.25F) < 0.05F); // -12 dBFS
    QCOMPARE(peak(channels[2]), 0.0F);
    for (const std::vector<float> &samples : channels)
        QCOMPARE(samples.size(), std::size_t(48000));
}

void TestMediaKit::lateTimecodeBeginsWithSilence()
{
    Recording recording;
    const Track track{timecodeChannel({1, 0, 0, 0}, {25, false}, -12.0, Damage::StartsLate)};
    const std::vector<float> samples = render(track, recording).front();
    const auto first =
        std::find_if(samples.begin(), samples.end(), [](float sample) { return sample != 0.0F; });
    QCOMPARE(first - samples.begin(), std::ptrdiff_t(72000)); // 1.5 s
}

void TestMediaKit::soundFileHasItsModificationTime()
{
    const QTemporaryDir folder;
    Recording recording;
    recording.path = "SOUND/take.wav";
    recording.duration = 0.5;
    recording.tracks = {{toneChannel(440)}};
    recording.modified = QDateTime(QDate(2024, 5, 3), QTime(9, 0), QTimeZone::utc());
    QCOMPARE(make(recording, folder.path()), QString());

    const QFileInfo written(folder.filePath(recording.path));
    QCOMPARE(written.lastModified().toUTC(), recording.modified);
    QVERIFY(written.size() > qint64{24000} * 3);
}

void TestMediaKit::impossibleFolderIsReported()
{
    Recording recording;
    recording.path = "take.wav";
    recording.tracks = {{toneChannel(440)}};
    QVERIFY(!make(recording, "/proc/no-such-folder").isEmpty());
}

QTEST_APPLESS_MAIN(TestMediaKit)
#include "tst_mediakit.moc"
