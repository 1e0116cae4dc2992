// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPixmap>
#include <QString>

/// Presses the default button of every message box that opens, as a user would, and keeps what it said.
class MessageBoxClicker : public QObject
{
    Q_OBJECT

public:
    explicit MessageBoxClicker(QObject *parent = nullptr);

    QString lastText() const { return text; }       ///< of the last message box; empty = none came
    QPixmap lastPicture() const { return picture; } ///< of the last message box as it stood there

private slots:
    void look();

private:
    QString text;
    QPixmap picture;
};
