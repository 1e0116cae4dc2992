// SPDX-License-Identifier: MIT
#include "testkit/recordings/oddcases.h"

#include "testkit/signals/impairments.h"

#include <array>
#include <cmath>
#include <stdexcept>

namespace testrecordings
{

namespace
{

constexpr int grades = 3;

constexpr std::array allKinds{Kind::Odd, Kind::Edge, Kind::Programme};

template <typename Thing>
const Thing &weighted(const std::vector<Thing> &things, int Thing::*weight, Random &random)
{
    int total = 0;
    for (const Thing &thing : things)
        total += thing.*weight;
    int left = random.integer(0, total - 1);
    for (const Thing &thing : things) {
        left -= thing.*weight;
        if (left < 0)
            return thing;
    }
    return things.back();
}

double valueOf(const Draw &draw, Random &random)
{
    const Disturbance &disturbance = *draw.disturbance;
    const double middle = edgeOf(disturbance, draw.seconds);
    const double side = random.uniform(-1.0, 1.0) * disturbance.step;
    if (draw.kind == Kind::Edge)
        return middle + 2 * side;
    const std::array<double, 4> distance{0.0, disturbance.easyBy, 0.0, disturbance.beyondBy};
    return middle + distance[static_cast<std::size_t>(draw.grade)] + side;
}

} // namespace

double edgeOf(const Disturbance &disturbance, double seconds)
{
    constexpr std::array<double, 3> lengths{0.2, 1.0, 3.0};
    const std::size_t first = seconds < lengths[1] ? 0 : 1; // shorter than the first: the line continues
    const double part = std::log(seconds / lengths[first]) / std::log(lengths[first + 1] / lengths[first]);
    return disturbance.edge[first] + part * (disturbance.edge[first + 1] - disturbance.edge[first]);
}

const std::vector<Length> &allLengths()
{
    static const std::vector<Length> lengths{{0.1, 5, 0}, {0.15, 5, 0}, {0.2, 5, 1},
                                             {0.3, 5, 0}, {1.0, 5, 1},  {3.0, 4, 1}};
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
    const bool edge = kind == Kind::Edge;
    if (kind == Kind::Odd)
        draw.behaviour = &weighted(allBehaviours(), &Behaviour::weight, random);
    else
        draw.behaviour = edge ? &allBehaviours().front() : &allBehaviours().back();
    draw.disturbance = &allDisturbances().front();
    if (draw.behaviour->timecode)
        draw.disturbance =
            &weighted(allDisturbances(), edge ? &Disturbance::edgeWeight : &Disturbance::weight, random);
    draw.seconds = weighted(allLengths(), edge ? &Length::edgeWeight : &Length::weight, random).seconds;
    do
        draw.rate = anyRate(random);
    while (draw.behaviour->fits && !draw.behaviour->fits(draw.rate));
    if (draw.disturbance->apply) {
        draw.grade = edge ? 2 : random.integer(1, grades);
        draw.value = valueOf(draw, random);
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
    return drawOf(kind, numberFrom(rest.substr(0, slash)), numberFrom(rest.substr(slash + 1)));
}

OddCase caseOf(Draw draw)
{
    LtcSignal signal = anySignal(draw.random, draw.rate);
    signal.duration = draw.seconds;
    OddSignal odd = draw.behaviour->make(signal, draw.random);
    if (draw.disturbance->apply)
        draw.disturbance->apply(odd.samples, draw.value, draw.random);
    OddCase result{
        monoCase(odd.signal, std::move(odd.samples), draw.random, draw.disturbance->apply ? fineBits : 16),
        std::move(odd.right)};
    result.recording.truth.reset();
    return result;
}

} // namespace testrecordings
