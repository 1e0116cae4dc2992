// SPDX-License-Identifier: MIT
#include "testkit/windowdriver/dropon.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

void dropOn(QAbstractScrollArea &target, const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls += QUrl::fromLocalFile(path);
    QMimeData data;
    data.setUrls(urls);
    const QPoint place = target.viewport()->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDragMoveEvent move(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    for (QEvent *event : std::initializer_list<QEvent *>{&enter, &move, &drop})
        QCoreApplication::sendEvent(target.viewport(), event);
}
