// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/recordings/oddpolicy.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace testrecordings
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
    int weight = 1;     ///< how often it is drawn
    std::string policy; ///< what is right, for people
    OddSignal (*make)(LtcSignal signal, Random &random);
    bool (*fits)(LtcRate rate) = nullptr; ///< rates that it can happen at; null = all
    bool timecode = true;                 ///< false: programme sound, which nothing else disturbs
};

/// The first is ordinary timecode, the last programme sound.
const std::vector<Behaviour> &allBehaviours();

/// What noise, programme sound, filters, links and codecs do to it.
struct Disturbance {
    std::string name;
    std::string unit;             ///< of its value; dB is timecode over the rest
    std::array<double, 3> edge{}; ///< value at which half of ordinary recordings of 0.2, 1 and 3 s are read
    double easyBy = 0.0;          ///< added to it in recordings that are easily read
    double beyondBy = 0.0;        ///< added to it in recordings that are out of reach
    double step = 0.0;            ///< each value varies by so much to both sides, twice as much in Kind::Edge
    void (*apply)(Samples &samples, double value, Random &random) = nullptr; ///< at 48 kHz; null = nothing
    int weight = 1;     ///< how often it is drawn in Kind::Odd
    int edgeWeight = 0; ///< and in Kind::Edge
};

/// The first is none.
const std::vector<Disturbance> &allDisturbances();

/// The value at the edge for a recording of \a seconds.
double edgeOf(const Disturbance &disturbance, double seconds);

/// A length that recordings have and how often.
struct Length {
    double seconds = 3.0;
    int weight = 1;     ///< in Kind::Odd and Kind::Programme
    int edgeWeight = 0; ///< in Kind::Edge
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

} // namespace testrecordings
