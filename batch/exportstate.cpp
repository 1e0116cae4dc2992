// SPDX-License-Identifier: MIT
#include "batch/exportstate.h"

#include "app/records/resultcodes.h"

bool hasFailed(const ExportState &exported)
{
    return exported.kind == ExportState::Kind::Failed || exported.kind == ExportState::Kind::UnderWay ||
           exported.kind == ExportState::Kind::Unverified;
}

QString wordFor(const ExportState &exported)
{
    switch (exported.kind) {
    case ExportState::Kind::NotAsked:
        return {};
    case ExportState::Kind::LeftOut:
        return "left out";
    case ExportState::Kind::UnderWay:
        return "not done";
    case ExportState::Kind::Written:
        return "written";
    case ExportState::Kind::Verified:
        return "verified";
    case ExportState::Kind::Unverified:
        return "unverified";
    case ExportState::Kind::Failed:
        break;
    }
    return "failed";
}

QString reasonFor(const ExportState &exported)
{
    switch (exported.kind) {
    case ExportState::Kind::NotAsked:
    case ExportState::Kind::Written:
    case ExportState::Kind::Verified:
        return {};
    case ExportState::Kind::Unverified:
        return exported.verdict;
    case ExportState::Kind::LeftOut:
        return "the file holds nothing but timecode";
    case ExportState::Kind::UnderWay:
        return "not exported";
    case ExportState::Kind::Failed:
        break;
    }
    if (exported.exitCode == toolNotStarted)
        return "the export tool could not be started";
    return QString("the export tool has failed with code %1").arg(exported.exitCode);
}
