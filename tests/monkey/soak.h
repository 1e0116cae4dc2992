// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/fixtures/windowfixture.h"

#include <QString>

class FileList;

/// The real window, used for many rounds of the same work.
class Soak
{
public:
    /// \a files sound files with timecode, whose names begin with \a name, in each round.
    Soak(int files, const QString &name);

    /// Imports all files, reads them again, exports them and deletes the rows. Returns what went wrong,
    /// nothing when all is well.
    QString round();

private:
    QString waitFor(const QString &status);
    QString importAll();
    QString readAll();
    QString exportAll();
    QString deleteAll();

    int count;
    WindowFixture fixture;
    FileList *fileList;
};
