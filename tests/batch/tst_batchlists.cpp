// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/faketools/faketools.h"
#include "tests/export-matrix/argumentlists.h"
#include "tests/export-matrix/sourcelist.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <utility>

using namespace exportmatrix;

/// The program passes the export tool the lists that the window passes: for each kind of source that every
/// test run exports, and each choice of types.
class TestBatchLists : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theToolGetsTheWantedList_data();
    void theToolGetsTheWantedList();

private:
    QTemporaryDir media;
    QVector<MadeFile> sources;
};

namespace
{

/// The fake tools find in \a file what its record says.
void setPlanFrom(const FileData &file)
{
    QJsonObject plan{
        {"probe", QJsonObject{{"json", QJsonObject{{"streams", file.streams}, {"format", file.format}}}}},
        {"read", QJsonObject{{"exitCode", 205}}}};
    if (file.hasAudioTC) {
        QJsonObject reading = file.audioTCResult;
        reading["ChannelFound"] = file.audioChannel;
        reading["Timecode"] = file.audioTC;
        plan["read:" + QString::number(file.audioStreamIndex)] = QJsonObject{{"json", reading}};
    }
    faketools::setPlan(file.absoluteFilePath, plan);
}

} // namespace

void TestBatchLists::initTestCase()
{
    registerRecordTypes();
    const QVector<SourceFile> all = allSources();
    for (const SourceFile &source : all) {
        if (!source.isCore || !source.isRead)
            continue;
        sources += makeSource(source, media.path());
        setPlanFrom(sources.last().record);
    }
    QVERIFY(sources.size() > 5);
}

void TestBatchLists::theToolGetsTheWantedList_data()
{
    QTest::addColumn<int>("videoType");
    QTest::addColumn<int>("audioType");
    QTest::addColumn<bool>("mute");
    for (int videoType = 0; videoType <= 8; ++videoType) {
        const bool isMxf = videoType >= 1 && videoType <= 4;
        for (int audioType = isMxf ? 1 : 0; audioType <= 2; ++audioType) {
            for (const bool mute : {true, false})
                QTest::addRow("picture %d, sound %d, %s", videoType, audioType, mute ? "muted" : "audible")
                    << videoType << audioType << mute;
        }
    }
}

void TestBatchLists::theToolGetsTheWantedList()
{
    QFETCH(int, videoType);
    QFETCH(int, audioType);
    QFETCH(bool, mute);
    constexpr int runLimit = 120'000; // [ms] on a busy machine
    const QTemporaryDir out;
    ExportOptions options;
    options.exportDir = out.path();
    options.videoType = videoType;
    options.audioType = audioType;
    options.muteAudioTC = mute;

    const QStringList pictures{"pass",     "mxf-mpeg2",    "mxf-dnxhd-36",  "mxf-dnxhd-115", "mxf-dnxhd-175",
                               "mov-pass", "mov-dnxhd-36", "mov-dnxhd-115", "mov-dnxhd-175"};
    const QStringList sounds{"pass", "pcm16", "pcm24"};
    QStringList arguments{"export",
                          "--to",
                          out.path(),
                          "--video-type",
                          pictures.at(videoType),
                          "--audio-type",
                          sounds.at(audioType),
                          media.path()};
    arguments += "--no-verify"; // the fakes write no media
    if (!mute)
        arguments += "--keep-timecode-channel";
    QProcess batch;
    batch.start(BATCH, arguments);
    QVERIFY(batch.waitForFinished(runLimit));
    QVERIFY2(batch.exitCode() == 0, batch.readAllStandardError());

    int lists = 0;
    for (const MadeFile &source : std::as_const(sources)) {
        const QString path = source.record.absoluteFilePath;
        const auto calls = faketools::calls(path, "export");
        const QString wanted =
            argumentlists::wantedLines(source.source.name).value(argumentlists::choiceOf(options));
        for (const faketools::Call &call : calls) {
            if (!call.arguments.last().startsWith(out.path()))
                continue; // of another run
            QStringList passed = call.arguments;
            // The name is that of another source with another suffix when it is taken.
            passed.last() = "TARGET." + QFileInfo(passed.last()).suffix();
            QCOMPARE(argumentlists::lineOf(passed, source.record, out.path()), wanted);
            ++lists;
        }
    }
    QVERIFY(lists >= sources.size() - 1); // but for one that holds nothing but the timecode
}

QTEST_GUILESS_MAIN(TestBatchLists)
#include "tst_batchlists.moc"
