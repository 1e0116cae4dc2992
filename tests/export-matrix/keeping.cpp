// SPDX-License-Identifier: MIT
#include "tests/export-matrix/keeping.h"

#include <array>

namespace exportmatrix
{
namespace
{

/// Whether a kind of file, as the media tool writes it, has a place for a group of facts.
enum class Holds { Yes, No, LeftOut };

struct Holding {
    FactGroup group;
    Holds copiedMov;
    Holds codedMov;
    Holds mxf;
    Holds wave;
};

constexpr Holds yes = Holds::Yes;
constexpr Holds no = Holds::No;
constexpr Holds leftOut = Holds::LeftOut;

// MXF files hold notes as comments of the package. They could name tracks and their languages too, but the
// tool does not write that, nor chapters. The luminance of HDR10 travels within the picture when that is
// copied.
constexpr std::array holdings{
    Holding{FactGroup::CreationTime, yes, yes, yes, yes},
    Holding{FactGroup::Notes, yes, yes, yes, yes},
    Holding{FactGroup::Camera, yes, yes, yes, no},
    Holding{FactGroup::Place, yes, yes, yes, no},
    Holding{FactGroup::QuickTimeKeys, yes, yes, yes, no},
    Holding{FactGroup::Reel, yes, yes, yes, no},
    Holding{FactGroup::StreamNames, yes, yes, no, no},
    Holding{FactGroup::StreamNotes, no, no, no, no},
    Holding{FactGroup::Languages, yes, yes, no, no},
    Holding{FactGroup::Chapters, yes, yes, no, no},
    Holding{FactGroup::DataTracks, leftOut, leftOut, leftOut, leftOut},
    Holding{FactGroup::ColourTags, yes, yes, yes, no},
    Holding{FactGroup::HdrLuminance, yes, no, no, no},
    Holding{FactGroup::BextText, no, no, no, yes},
    Holding{FactGroup::BextHistory, no, no, no, yes},
    Holding{FactGroup::BextLoudness, no, no, no, yes},
    Holding{FactGroup::IxmlScene, no, no, no, yes},
    Holding{FactGroup::IxmlTracks, no, no, no, yes},
    Holding{FactGroup::IxmlSpeed, no, no, no, yes},
    Holding{FactGroup::Cues, no, no, no, yes},
    Holding{FactGroup::OtherChunks, no, no, no, yes},
    Holding{FactGroup::InfoText, no, no, no, yes},
};
static_assert(holdings.size() == static_cast<std::size_t>(FactGroup::Count));

Holds holdsOf(FactGroup group, Target target)
{
    for (const Holding &holding : holdings) {
        if (holding.group != group)
            continue;
        switch (target) {
        case Target::CopiedMov:
            return holding.copiedMov;
        case Target::DnxMov:
            return holding.codedMov;
        case Target::Wave:
            return holding.wave;
        default:
            return holding.mxf;
        }
    }
    return Holds::No;
}

/// The same fact in \a facts, in any group of notes: a QuickTime key may have become a plain note.
const Fact *findAnywhere(const Facts &facts, const Fact &fact)
{
    if (const Fact *const same = find(facts, fact.group, fact.name))
        return same;
    for (const FactGroup group :
         {FactGroup::QuickTimeKeys, FactGroup::Notes, FactGroup::Camera, FactGroup::Place}) {
        const Fact *const other = find(facts, group, fact.name);
        if (other && other->value == fact.value)
            return other;
    }
    return nullptr;
}

} // namespace

QString nameOf(Target target)
{
    constexpr std::array names{"MOV, picture copied", "MXF, picture copied", "MXF MPEG-2",
                               "MXF DNxHD",           "MOV DNxHD",           "WAV"};
    return names.at(static_cast<std::size_t>(target));
}

Target targetOf(const QString &path, const ExportOptions &options)
{
    if (path.endsWith(".wav", Qt::CaseInsensitive))
        return Target::Wave;
    const bool isMxf = path.endsWith(".mxf", Qt::CaseInsensitive);
    if (options.videoType == 0 || options.videoType == 5)
        return isMxf ? Target::CopiedMxf : Target::CopiedMov;
    if (options.videoType == 1)
        return Target::Mpeg2Mxf;
    return isMxf ? Target::DnxMxf : Target::DnxMov;
}

QString nameOf(Verdict verdict)
{
    constexpr std::array names{"kept", "converted", "not held", "left out", "LOST"};
    return names.at(static_cast<std::size_t>(verdict));
}

QVector<Finding> compareFacts(const Facts &source, const Facts &written, Target target)
{
    QVector<Finding> findings;
    for (const Fact &fact : source) {
        const Fact *const found = findAnywhere(written, fact);
        const Holds holds = holdsOf(fact.group, target);
        Verdict verdict = Verdict::Lost;
        if (found && found->value == fact.value)
            verdict = Verdict::Kept;
        else if (holds == Holds::No)
            verdict = Verdict::NotHeld;
        else if (holds == Holds::LeftOut)
            verdict = Verdict::LeftOut;
        findings += Finding{
            nameOf(fact.group), verdict,
            QString("%1 is \"%2\", not \"%3\"").arg(fact.name, found ? found->value : QString(), fact.value)};
    }
    return findings;
}

} // namespace exportmatrix
