// SPDX-License-Identifier: MIT
#include "testkit/media/verdict.h"

namespace
{

Verdict judgeMissing(const mediakit::Recording &recording)
{
    if (recording.broken)
        return {true, "right: broken, not exported"};
    if (mediakit::isTimecodeAlone(recording))
        return {true, "right: timecode only, left out"};
    return {false, "WRONG: no file was written"};
}

Verdict judgeSound(qint64 expected, const std::optional<qint64> &timeReference)
{
    if (timeReference == expected)
        return {true, "right to the sample"};
    return {false, QString("WRONG: should start at sample %1").arg(expected)};
}

Verdict judgePicture(const QString &expected, const QString &timecode)
{
    if (timecode == expected)
        return {true, "right to the frame"};
    return {false, QString("WRONG: should start at %1").arg(expected)};
}

} // namespace

Verdict judge(const mediakit::Recording &recording, const std::optional<ExportedFile> &exported)
{
    if (!exported)
        return judgeMissing(recording);
    if (recording.broken || mediakit::isTimecodeAlone(recording))
        return {false, "WRONG: should not be there"};
    if (!exported->readable)
        return {false, "WRONG: the file cannot be read"};

    const std::optional<testsignals::LtcSignal> timecode = mediakit::timecodeOf(recording);
    if (!timecode) {
        const bool none = exported->timecode.isEmpty() && !exported->timeReference;
        return {none, none ? "right: no timecode, none written" : "WRONG: a timecode was made up"};
    }
    if (mediakit::isSoundFile(recording))
        return judgeSound(testsignals::samplesSinceMidnight(*timecode), exported->timeReference);
    return judgePicture(QString::fromStdString(testsignals::text(timecode->start, timecode->rate)),
                        exported->timecode);
}
