// SPDX-License-Identifier: MIT
#include "app/recordtypes.h"

#include "app/audiotcoptions.h"
#include "app/exportoptions.h"
#include "app/filedata.h"

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
