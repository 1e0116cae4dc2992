// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/oddpolicy.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ltcbench
{

/// Timecode with odd labels before anything disturbs it, and what of it is right.
struct OddSignal {
    LtcSignal signal; ///< of its beginning
    Samples samples;
    std::vector<Truth> right; ///< lines of which any is right; none: nothing but refusing is
};

/// What a generator, a machine or an editor does to timecode.
struct Behaviour {
    std::string name;
    int weight = 1; ///< how often it is drawn
    OddSignal (*make)(LtcSignal signal, Random &random);
    bool (*fits)(LtcRate rate) = nullptr; ///< rates that it can happen at; null = all
    bool timecode = true;                 ///< false: programme sound, which nothing else disturbs
};
const std::vector<Behaviour> &allBehaviours();

/// What noise, programme sound, filters and links do to it.
struct Disturbance {
    std::string name;
    std::string unit;
    double easy = 0.0; ///< grades for three seconds; for programme and noise [dB] timecode over the rest
    double edge = 0.0; ///< half of ordinary recordings are read
    double beyond = 0.0;
    double spread = 0.0;    ///< each grade varies by so much to both sides
    double perDecade = 0.0; ///< a recording of a tenth of the length reaches the same with so much more
    void (*apply)(Samples &samples, int sampleRate, double value,
                  Random &random) = nullptr; ///< null = nothing
};
const std::vector<Disturbance> &allDisturbances();

/// A length that recordings have and how often.
struct Length {
    double seconds = 3.0;
    int weight = 1;
};
const std::vector<Length> &allLengths();

/// Which recordings are drawn.
enum class Kind {
    Odd,       ///< any behaviour, any disturbance
    Edge,      ///< ordinary timecode near the edge of what can be read
    Programme, ///< sounds without timecode
};
std::string nameOf(Kind kind);

/// What recording number `index` is made of.
struct Draw {
    Kind kind = Kind::Odd;
    std::uint64_t seed = 1;
    std::uint64_t index = 0;
    const Behaviour *behaviour = nullptr;
    const Disturbance *disturbance = nullptr;
    int grade = 0;      ///< 0 none, 1 easy, 2 at the edge, 3 beyond
    double value = 0.0; ///< of the disturbance, in its unit
    double seconds = 3.0;
    LtcRate rate;
    Random random{0}; ///< for what follows
};

Draw drawOf(Kind kind, std::uint64_t seed, std::uint64_t index);

/// "SEED/INDEX", before it the kind and a slash where it is not Kind::Odd.
std::string nameOf(const Draw &draw);

/// The draw of that name. Throws std::invalid_argument where it is none.
Draw drawNamed(const std::string &name);

/// A recording and what of it is right.
struct OddCase {
    Case recording; ///< its truth is not set
    std::vector<Truth> right;
};

OddCase caseOf(Draw draw);

} // namespace ltcbench
