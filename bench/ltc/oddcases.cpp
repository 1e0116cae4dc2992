// SPDX-License-Identifier: MIT
#include "bench/ltc/oddcases.h"

#include "bench/ltc/figures.h"
#include "tests/support/impairments.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace ltcbench
{

namespace
{

constexpr int grades = 3;
constexpr double longest = 3.0; // [s] the grades are for recordings of this length

constexpr std::array allKinds{Kind::Odd, Kind::Edge, Kind::Programme};

template <typename Thing>
const Thing &weighted(const std::vector<Thing> &things, Random &random)
{
    int total = 0;
    for (const Thing &thing : things)
        total += thing.weight;
    int left = random.integer(0, total - 1);
    for (const Thing &thing : things) {
        left -= thing.weight;
        if (left < 0)
            return thing;
    }
    return things.back();
}

const Disturbance &anyDisturbance(Random &random)
{
    const auto &all = allDisturbances();
    constexpr double undisturbed = 0.1;
    if (random.chance(undisturbed))
        return all.front();
    return all[static_cast<std::size_t>(random.integer(1, static_cast<int>(all.size()) - 1))];
}

double valueOf(const Disturbance &disturbance, int grade, double seconds, Random &random)
{
    const double middle = grade == 1 ? disturbance.easy : grade == 2 ? disturbance.edge : disturbance.beyond;
    return middle + disturbance.perDecade * std::log10(longest / seconds) +
           disturbance.spread * random.uniform(-1.0, 1.0);
}

const Behaviour &programmeSound()
{
    return *std::find_if(allBehaviours().begin(), allBehaviours().end(),
                         [](const Behaviour &behaviour) { return !behaviour.timecode; });
}

} // namespace

const std::vector<Length> &allLengths()
{
    static const std::vector<Length> lengths{{0.1, 5}, {0.15, 5}, {0.2, 5}, {0.3, 5}, {1.0, 5}, {3.0, 4}};
    return lengths;
}

std::string nameOf(Kind kind)
{
    return kind == Kind::Odd ? "odd" : kind == Kind::Edge ? "edge" : "programme";
}

Draw drawOf(Kind kind, std::uint64_t seed, std::uint64_t index)
{
    Draw draw;
    draw.kind = kind;
    draw.seed = seed;
    draw.index = index;
    Random random = Random::forCase(seed, nameOf(kind), index);
    draw.behaviour = kind == Kind::Programme ? &programmeSound() : &weighted(allBehaviours(), random);
    draw.disturbance = draw.behaviour->timecode ? &anyDisturbance(random) : &allDisturbances().front();
    draw.seconds = weighted(allLengths(), random).seconds;
    do
        draw.rate = anyRate(random);
    while (draw.behaviour->fits && !draw.behaviour->fits(draw.rate));
    if (draw.disturbance->apply) {
        draw.grade = random.integer(1, grades);
        draw.value = valueOf(*draw.disturbance, draw.grade, draw.seconds, random);
    }
    draw.random = random;
    return draw;
}

std::string nameOf(const Draw &draw)
{
    return (draw.kind == Kind::Odd ? "" : nameOf(draw.kind) + "/") + std::to_string(draw.seed) + "/" +
           std::to_string(draw.index);
}

Draw drawNamed(const std::string &name)
{
    Kind kind = Kind::Odd;
    std::string rest = name;
    for (const Kind other : allKinds) {
        const std::string prefix = nameOf(other) + "/";
        if (name.starts_with(prefix)) {
            kind = other;
            rest = name.substr(prefix.size());
        }
    }
    const std::size_t slash = rest.find('/');
    if (slash == std::string::npos)
        throw std::invalid_argument("\"" + name + "\" is no name of a recording");
    return drawOf(kind, numberFrom<std::uint64_t>(rest.substr(0, slash)),
                  numberFrom<std::uint64_t>(rest.substr(slash + 1)));
}

OddCase caseOf(Draw draw)
{
    LtcSignal signal = anySignal(draw.random, draw.rate);
    signal.duration = draw.seconds;
    OddSignal odd = draw.behaviour->make(signal, draw.random);
    if (draw.disturbance->apply)
        draw.disturbance->apply(odd.samples, odd.signal.sampleRate, draw.value, draw.random);
    OddCase result{
        monoCase(odd.signal, std::move(odd.samples), draw.random, draw.disturbance->apply ? fineBits : 16),
        std::move(odd.right)};
    result.recording.truth.reset();
    return result;
}

} // namespace ltcbench
