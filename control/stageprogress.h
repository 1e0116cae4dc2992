// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Counts the progress units of an import or of a re-read.
///
/// An imported file is worth three units: its probe, its extraction and its first reader. A file of a re-read
/// is not probed and is worth two. Each further reader of a file adds one unit to the total.
class StageProgress
{
public:
    enum class Mode { Import, ReRead };

    void addFile() { ++files; }
    void setFiles(uint count) { files = count; }
    void addExtraReads(uint count) { extraReads += count; }
    void addUnits(uint count) { done += count; }

    bool hasFiles() const { return files > 0; }
    uint unitsDone() const { return done; }

    /// All units of an import's probing, before any reader is known.
    uint probingTotal() const { return files * 3; }

    /// All units as far as they are known now.
    uint total(Mode mode) const;

    bool isComplete(Mode mode) const { return done == total(mode); }

    /// Whether the fraction done is above the one for which this last was true; takes it over if so. Keeps
    /// the progress bar from falling back when further readers raise the total.
    bool advance(Mode mode);

    /// Sets the three counters to 0; the fraction last reported stays.
    void resetCounters();

    void resetFraction() { lastFraction = 0.0; }

private:
    uint files = 0;      ///< found by drops since the last end of a stage, or handed to a re-read
    uint extraReads = 0; ///< readers beyond the first one of each file
    uint done = 0;       ///< units done

    double lastFraction = 0.0; ///< reported last, 0 ... 1
};
