// SPDX-License-Identifier: MIT
#include "update/versiondescriptor.h"

#include "app/records/applicationinfo.h"

#include <QXmlStreamReader>

namespace
{

constexpr int neededHits = 3; // both numbers and the link; the description is no part of them

} // namespace

std::optional<VersionDescriptor> readVersionDescriptor(const QByteArray &xml)
{
    VersionDescriptor descriptor;
    int hits = 0;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.name() == QLatin1String("MAJORVERSION")) {
            descriptor.majorVersion = reader.readElementText().toUInt();
            ++hits;
        } else if (reader.name() == QLatin1String("MINORVERSION")) {
            descriptor.minorVersion = reader.readElementText().toUInt();
            ++hits;
        } else if (reader.name() == QLatin1String("OSTRELAPP")) {
            const QXmlStreamAttributes attributes = reader.attributes();
            for (const QXmlStreamAttribute &attribute : attributes) {
                if (attribute.name() == QLatin1String("url")) {
                    descriptor.downloadLink = QUrl(attribute.value().toString());
                    ++hits;
                }
            }
        } else if (reader.name() == QLatin1String("DESCRIPTION")) {
            descriptor.description = reader.readElementText();
        }
    }
    if (hits < neededHits)
        return std::nullopt;
    return descriptor;
}

bool isNewerVersion(uint majorVersion, uint minorVersion)
{
    if (majorVersion != applicationMajorVersion)
        return majorVersion > applicationMajorVersion;
    return minorVersion > applicationMinorVersion;
}
