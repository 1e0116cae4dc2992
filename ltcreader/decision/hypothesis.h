// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/codeword.h"
#include "ltcreader/frame/numbering.h"
#include "timecode/timecode.h"

#include <functional>
#include <optional>
#include <vector>

namespace ltcreader
{

/// A way in which the labels of all frames of a recording may follow from that of the first one. Digits that
/// move within the recording are assumed; those that stand still are left open, to be found.
struct Hypothesis {
    FrameNumbering numbering;
    int correctionBit = 27;       ///< where the phase correction bit is taken to be
    int second = 0;               ///< of frame 0
    int minute = -1;              ///< of frame 0; -1 = stands still
    int hour = -1;                ///< likewise
    std::optional<Digit> doubted; ///< a digit of the second that is left open all the same
    Allowed allowed = anyTime;    ///< values of the digits left open
    bool realHours = true;        ///< hours stop at 23
    float fit = 0.0F;             ///< to the recording, once it was evaluated
    FrameBits bits = 0;           ///< of frame 0 without its number, once it was evaluated
};

/// What the digits are \a later seconds after frame 0; the drop-frame flag and what stands still is open.
Digits digitsAfter(const Hypothesis &hypothesis, int later);

/// The same with the digits left open as they were found.
Digits digitsFoundAfter(const Hypothesis &hypothesis, int later);

/// Writes the digits that \a hypothesis assumes for frame 0 into its bits.
void putAssumedDigits(Hypothesis &hypothesis);

/// The hours that \a hypothesis may have.
std::vector<HoursAllowed> hoursOf(const Hypothesis &hypothesis);

/// All hypotheses with \a numbering for \a frames frames, not yet evaluated.
std::vector<Hypothesis> hypothesesWith(const FrameNumbering &numbering, int frames);

/// Whether two evaluated hypotheses name frame \a frame alike.
bool sameTimecode(const Hypothesis &a, const Hypothesis &b, int frame);

/// The hypotheses that mean another timecode than \a best: of \a others and, as \a evaluate finds them, those
/// with a digit of best that stands still forced to another value, legal or not, and those with a value that
/// no clock shows in a digit of the second or of the frame number, or count against their drop-frame flag.
/// That flag counts where there are 30 labels in a second. Compared are an early frame (for another base the
/// first one) and the one in the middle of \a frames, since in cut frames at the ends hypotheses may differ
/// by nothing.
std::vector<Hypothesis> rivalsOf(const Hypothesis &best, const std::vector<Hypothesis> &others, int frames,
                                 const std::function<void(Hypothesis &)> &evaluate);

/// The log-likelihood ratio of \a best against all \a rivals together. \a perFit is the log-likelihood that
/// each unit of fit is worth, \a measuredRate [frames/s] as recorded.
double marginOf(const Hypothesis &best, const std::vector<Hypothesis> &rivals, double perFit,
                double measuredRate);

/// Where two ways of counting fit alike the speed decides: the log-likelihood that a recording at \a
/// measuredRate [frames/s] loses when it counts \a base frames in a second. Most machines run true, some a
/// few thousandths off, few are tape.
double speedPenalty(int base, double measuredRate);

/// The best of \a hypotheses, of which there must be one: by fit, of which each is worth \a perFit of
/// log-likelihood, and speed.
const Hypothesis &bestOf(const std::vector<Hypothesis> &hypotheses, double perFit, double measuredRate);

} // namespace ltcreader
