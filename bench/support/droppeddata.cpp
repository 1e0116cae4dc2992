// SPDX-License-Identifier: MIT
#include "bench/support/droppeddata.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace bench
{

void drop(const QStringList &paths, QAbstractScrollArea &table)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls += QUrl::fromLocalFile(path);
    QMimeData data;
    data.setUrls(urls);
    const QPoint place = table.viewport()->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table.viewport(), &enter);
    QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table.viewport(), &event);
}

} // namespace bench
