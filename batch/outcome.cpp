// SPDX-License-Identifier: MIT
#include "batch/outcome.h"

#include "app/records/resultcodes.h"
#include "ltc/readererrors.h"

namespace
{

bool isProbed(const RowStatus &status)
{
    return status.fileTC != RowStatus::FileTC::Unprobed;
}

} // namespace

Outcome outcomeOf(const FileData &file, const RowStatus &status)
{
    switch (status.audioTC) {
    case RowStatus::AudioTC::Found:
        return file.hasAudioTC ? Outcome::Found : Outcome::None;
    case RowStatus::AudioTC::Linked:
        return file.hasAudioTC ? Outcome::Linked : Outcome::None;
    case RowStatus::AudioTC::NotFound:
        return Outcome::None;
    case RowStatus::AudioTC::ReadFailed:
        // Nothing can be extracted out of a file without sound.
        if (status.exitCode == extractionFailed && file.audioStreamMap.isEmpty())
            return Outcome::None;
        break;
    case RowStatus::AudioTC::Unread:
    case RowStatus::AudioTC::ProbeFailed:
        break;
    }
    return Outcome::Failed;
}

QString wordFor(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Found:
        return "found";
    case Outcome::Linked:
        return "linked";
    case Outcome::None:
        return "none";
    case Outcome::Failed:
        break;
    }
    return "failed";
}

QString reasonFor(const FileData &file, const RowStatus &status, const LaterFinding &later)
{
    const Outcome outcome = outcomeOf(file, status);
    if (outcome == Outcome::Found || outcome == Outcome::Linked)
        return {};
    if (!later.reason.isEmpty())
        return later.reason;
    if (later.kind == LaterFinding::Kind::NotFound)
        return readerErrorText(205) + ", searched to the end";
    if (outcome == Outcome::None && isProbed(status) && file.audioStreamMap.isEmpty())
        return "the file has no sound";
    if (outcome == Outcome::None)
        return readerErrorText(205);
    if (status.audioTC == RowStatus::AudioTC::Unread)
        return isProbed(status) ? "not read to the end" : "not read";
    const QString text = readerErrorText(status.exitCode);
    return text.isEmpty() ? QString("the reader has failed with code %1").arg(status.exitCode) : text;
}
