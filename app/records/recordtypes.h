// SPDX-License-Identifier: MIT
#pragma once

/// Registers the record types that queued signals carry. Called once, before the objects that use them are
/// made.
void registerRecordTypes();
