// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

/// What the update host reports about the newest published version.
struct VersionDescriptor {
    uint majorVersion = 0; ///< 0 when the descriptor's number is none
    uint minorVersion = 0; ///< 0 when the descriptor's number is none
    QString description;   ///< what the version brings; may be empty
    QUrl downloadLink;
};

/// Reads the descriptor out of the XML document \a xml. Its elements count wherever they stand; at least
/// three of the two numbers and the link must have been met, otherwise there is no result. An XML error ends
/// the reading, not what was met before it.
std::optional<VersionDescriptor> readVersionDescriptor(const QByteArray &xml);

/// Whether the version \a majorVersion.\a minorVersion is newer than this program.
bool isNewerVersion(uint majorVersion, uint minorVersion);
