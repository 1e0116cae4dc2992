// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The folder that keeps what one run of the demo makes. What an earlier run left in it is replaced; nothing
/// else is ever removed.
class DemoFolder
{
public:
    explicit DemoFolder(const QString &path);

    /// Makes the folder and its three sub-folders empty. Returns an empty text, or why that is refused.
    QString prepare() const;

    QString media() const { return sub("media"); }             ///< the camera and sound files
    QString exported() const { return sub("exported"); }       ///< what the export wrote
    QString screenshots() const { return sub("screenshots"); } ///< of the window and its dialogs
    QString report() const { return sub("report.txt"); }       ///< the table that was printed

private:
    QString sub(const QString &name) const;

    QString path;
};
