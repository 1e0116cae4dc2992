// SPDX-License-Identifier: MIT
#include "control/maincontrol.h"

MainControl::MainControl(QObject *parent) : QObject(parent)
{
}

MainControl::~MainControl() = default;

void MainControl::onFFProbeReady(FFMpegHandler *, QJsonObject, uint, int)
{
}
void MainControl::onAudioExtractReady(FFMpegHandler *, FileData, int)
{
}
void MainControl::onLTCReaderReady(LTCHandler *, QJsonObject, QString, int)
{
}
void MainControl::onExportProgress(uint)
{
}
void MainControl::onExportReady(FFMpegHandler *, int)
{
}
void MainControl::onFFProbeFile(FileData, int)
{
}
void MainControl::onIterateThroughDir(QList<QUrl>)
{
}
void MainControl::onInitAudioTCInfo(FileData, int)
{
}
void MainControl::onUpdateAudioTCInfo(QVector<FileData>, AudioTCOptions)
{
}
void MainControl::onExportReq(QVector<FileData>, ExportOptions)
{
}
void MainControl::onExportCancel()
{
}
void MainControl::shutDown()
{
}
