// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>

/// The notice about a newer version.
namespace versionnotice
{

/// Rich text of the notice: \a downloadLink and, unless empty, \a description.
///
/// Both come from the network and are shown as they are. Only where they would make the text load something,
/// be it a picture or a style sheet, they are shown as plain text instead.
QString text(const QUrl &downloadLink, const QString &description);

/// Whether a click on \a link of the notice may open it: web pages only, never a local file or program.
bool mayOpenLink(const QUrl &link);

} // namespace versionnotice
