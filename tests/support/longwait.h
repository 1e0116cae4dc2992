// SPDX-License-Identifier: MIT
#pragma once

/// [ms] For what must come in a test; a busy machine takes its time.
constexpr int longWait = 60'000;
