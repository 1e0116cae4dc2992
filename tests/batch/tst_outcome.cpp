// SPDX-License-Identifier: MIT
#include "batch/outcome.h"

#include <QTest>

class TestOutcome : public QObject
{
    Q_OBJECT

private slots:
    void eachEndHasItsWordAndReason_data();
    void eachEndHasItsWordAndReason();
};

void TestOutcome::eachEndHasItsWordAndReason_data()
{
    using AudioTC = RowStatus::AudioTC;
    QTest::addColumn<bool>("isProbed");
    QTest::addColumn<int>("audioTC");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<bool>("hasTimecode");
    QTest::addColumn<int>("streams");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("reason");
    const auto add = [](const char *name, bool isProbed, AudioTC audioTC, int exitCode, bool hasTimecode,
                        int streams, const char *word, const char *reason) {
        QTest::newRow(name) << isProbed << static_cast<int>(audioTC) << exitCode << hasTimecode << streams
                            << word << reason;
    };
    add("a timecode of its own", true, AudioTC::Found, 0, true, 1, "found", "");
    add("a timecode taken over", true, AudioTC::Linked, 0, true, 1, "linked", "");
    add("an empty timecode is none", true, AudioTC::Found, 0, false, 1, "none", "audio TC not found");
    add("an empty timecode taken over is none", true, AudioTC::Linked, 0, false, 1, "none",
        "audio TC not found");
    add("no timecode", true, AudioTC::NotFound, 0, false, 2, "none", "audio TC not found");
    add("no sound", true, AudioTC::ReadFailed, 2001, false, 0, "none", "the file has no sound");
    add("sound that does not come out", true, AudioTC::ReadFailed, 2001, false, 1, "failed",
        "couldn't get audio track from file");
    add("a reader that is not there", true, AudioTC::ReadFailed, 204, false, 1, "failed",
        "could not initialize sample reader");
    add("a reader that crashed", true, AudioTC::ReadFailed, 11, false, 1, "failed",
        "the reader has failed with code 11");
    add("a file that cannot be probed", false, AudioTC::ProbeFailed, 1000, false, 0, "failed",
        "error while reading file data");
    add("stopped before the probe", false, AudioTC::Unread, 0, false, 0, "failed", "not read");
    add("stopped before the reading", true, AudioTC::Unread, 0, false, 1, "failed", "not read to the end");
}

void TestOutcome::eachEndHasItsWordAndReason()
{
    QFETCH(bool, isProbed);
    QFETCH(int, audioTC);
    QFETCH(int, exitCode);
    QFETCH(bool, hasTimecode);
    QFETCH(int, streams);
    FileData file;
    file.hasAudioTC = hasTimecode;
    file.audioStreamMap = QByteArray(streams, '\1');
    RowStatus status;
    status.fileTC = isProbed ? RowStatus::FileTC::NotFound : RowStatus::FileTC::Unprobed;
    status.audioTC = static_cast<RowStatus::AudioTC>(audioTC);
    status.exitCode = exitCode;
    QTEST(wordFor(outcomeOf(file, status)), "word");
    QTEST(reasonFor(file, status), "reason");
}

QTEST_APPLESS_MAIN(TestOutcome)
#include "tst_outcome.moc"
