// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/exportplan.h"

namespace tooladapter
{

/// Whether the picture of \a plan is taken over as it is.
bool isCopied(const ExportPlan &plan);

/// The value of the option \a name among \a options; empty where there is none.
std::string valueOf(const Options &options, const std::string &name);

/// Gives \a picture the codec of the family \a type where the list names none: DNxHD where it exists at the
/// picture's rate, otherwise DNxHR at the picture's own size and rate.
void choosePictureCodec(ExportPlan &plan, const Stream &picture, PictureType type);

/// Whether the codec that \a options name can hold the two fields of an interlaced picture.
bool holdsFields(const Options &options);

} // namespace tooladapter
