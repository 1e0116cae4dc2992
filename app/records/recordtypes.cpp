// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"

#include "app/records/audiotcoptions.h"
#include "app/records/exportoptions.h"
#include "app/records/filedata.h"

#include <QFileInfo>
#include <QList>
#include <QMetaType>
#include <QUrl>
#include <QVector>

void registerRecordTypes()
{
    qRegisterMetaType<QVector<FD::FileData>>("QVector<FileData>");
    qRegisterMetaType<FD::FileData>("FileData");
    qRegisterMetaType<QList<QUrl>>("QList<QUrl>");
    qRegisterMetaType<QFileInfo>("QFileInfo");
    qRegisterMetaType<ExportOptions>("ExportOptions");
    qRegisterMetaType<AudioTCOptions>("AudioTCOptions");
}
