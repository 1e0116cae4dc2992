// SPDX-License-Identifier: MIT
#include "testkit/windowdriver/messageboxclicker.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace
{
constexpr int lookEvery = 200; // [ms] long enough for a box to be drawn whole
}

MessageBoxClicker::MessageBoxClicker(QObject *parent) : QObject(parent)
{
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &MessageBoxClicker::look);
    timer->start(lookEvery);
}

void MessageBoxClicker::look()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (box == nullptr)
        return;
    text = box->text();
    picture = box->grab();
    const QList<QAbstractButton *> buttons = box->buttons();
    if (box->defaultButton() != nullptr)
        box->defaultButton()->click();
    else if (!buttons.isEmpty())
        buttons.first()->click();
}
