// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "tests/export-matrix/filefacts.h"

#include <QString>
#include <QVector>

namespace exportmatrix
{

/// What an export writes, as far as it decides on what can be kept.
enum class Target { CopiedMov, CopiedMxf, Mpeg2Mxf, DnxMxf, DnxMov, Wave, Count };

/// A name of \a target for people.
QString nameOf(Target target);

/// The target of an export to \a path with \a options.
Target targetOf(const QString &path, const ExportOptions &options);

/// What became of one thing.
enum class Verdict {
    Kept,
    Converted, ///< shown as before, but coded in another way
    NotHeld,   ///< this kind of file, or what the tool can write into it, has no place for it
    LeftOut,   ///< the export does not ask for it
    Lost       ///< it could have been kept: a fault
};

/// A name of \a verdict for people.
QString nameOf(Verdict verdict);

/// What became of one thing in one export.
struct Finding {
    QString thing; ///< a row of the table that people read
    Verdict verdict = Verdict::Lost;
    QString detail; ///< what exactly, for a fault
};

/// What became of the facts \a source in a file of the kind \a target that holds the facts \a written.
QVector<Finding> compareFacts(const Facts &source, const Facts &written, Target target);

} // namespace exportmatrix
