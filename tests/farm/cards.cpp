// SPDX-License-Identifier: MIT
#include "testkit/media/mediamaker.h"
#include "testkit/signals/ltcsignal.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

// Writes six cards of a shooting day, each into a folder of its own, and next to them "expected.json": where
// the export of each file has to start. The cards use the same file names, as real ones do. Usage:
// ostrel_cards FOLDER

namespace
{

constexpr int cards = 6;
constexpr int longCard = 3;       // its picture takes a while to export
constexpr double longTake = 8.0;  // [s]
constexpr double shortTake = 3.2; // [s] the reader listens to three
constexpr testsignals::LtcRate rate{25, false, false};

mediakit::Track withTone(testsignals::LtcTime start)
{
    return {mediakit::toneChannel(440), mediakit::timecodeChannel(start, rate)};
}

QVector<mediakit::Recording> recordingsOf(int card)
{
    const QString folder = QString("CARD%1/").arg(card);
    mediakit::Recording camera =
        mediakit::movie(folder + "A001.mov", "25", "pcm_s24le", {withTone({9 + card, 1, 2, card})});
    camera.duration = card == longCard ? longTake : shortTake;
    const mediakit::Recording sound =
        mediakit::soundFile(folder + "T001_timecode.wav", withTone({9 + card, 30, 0, card}), shortTake);
    mediakit::Recording boom =
        mediakit::soundFile(folder + "T001_boom.wav", {mediakit::toneChannel(660)}, shortTake);
    boom.siblingTimecode = mediakit::timecodeOf(sound);
    QVector<mediakit::Recording> recordings{camera, sound, boom};
    const QDateTime morning(QDate(2024, 5, 3), QTime(9, 0), Qt::UTC);
    const QDateTime begin = morning.addSecs(qint64{600} * card);
    recordings[0].modified = begin;
    for (int i = 1; i < recordings.size(); ++i) // one take
        recordings[i].modified = begin.addSecs(60);
    return recordings;
}

QString startOf(const mediakit::Recording &recording)
{
    const auto signal = mediakit::timecodeOf(recording);
    if (mediakit::isSoundFile(recording))
        return QString::number(static_cast<qint64>(testsignals::samplesSinceMidnight(*signal)));
    return QString::fromStdString(testsignals::text(signal->start, signal->rate));
}

QString makeCards(const QString &folder)
{
    QJsonArray expected;
    for (int card = 1; card <= cards; ++card) {
        const QVector<mediakit::Recording> recordings = recordingsOf(card);
        QString problem = mediakit::makeAll(recordings, folder);
        if (!problem.isEmpty())
            return problem;
        for (const mediakit::Recording &recording : recordings)
            expected += QJsonObject{{"path", recording.path}, {"start", startOf(recording)}};
    }
    QFile file(QDir(folder).filePath("expected.json"));
    const QByteArray content = QJsonDocument(expected).toJson();
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        return file.errorString();
    return {};
}

} // namespace

int main(int argc, char *argv[])
{
    const QString problem = argc == 2 ? makeCards(QString::fromLocal8Bit(argv[1])) : "give one folder";
    if (problem.isEmpty())
        return 0;
    QTextStream(stderr) << "ostrel_cards: " << problem << '\n';
    return 1;
}
