// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/faketools/faketool_job.h"

#include <cstdint>

/// The part that \a job plays in the mood that follows from \a seed and its arguments.
QJsonObject moodyPlan(const FakeJob &job, std::uint64_t seed);
