// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/recordtypes.h"
