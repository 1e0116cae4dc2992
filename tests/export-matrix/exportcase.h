// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "tests/export-matrix/keeping.h"
#include "tests/export-matrix/sourcefile.h"

#include <QProcessEnvironment>
#include <QString>
#include <QVector>

namespace exportmatrix
{

/// How one export came out.
struct Outcome {
    enum class Kind { Right, Refused, Wrong };
    Kind kind = Kind::Wrong;
    QString text; ///< what is wrong, or the line that the refusal gave
    Target target = Target::CopiedMov;
    QVector<Finding> findings; ///< what became of each thing that the source holds
};

/// The export options to try on \a source: all, or for a core run a choice.
QVector<ExportOptions> optionsFor(const SourceFile &source, bool coreOnly);

/// A name of \a options for people.
QString nameOf(const ExportOptions &options);

/// Exports \a source into a folder of its own, with the tool that this process finds as "ffmpeg.exe" and that
/// runs in \a environment, and judges what was written.
Outcome runExport(const MadeFile &source, const ExportOptions &options,
                  const QProcessEnvironment &environment);

} // namespace exportmatrix
