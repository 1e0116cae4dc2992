// SPDX-License-Identifier: MIT
#include "tests/window/dialogbench.h"

#include <QComboBox>
#include <QTest>

QStringList texts(const QComboBox &combo)
{
    QStringList result;
    for (int i = 0; i < combo.count(); ++i)
        result += combo.itemText(i);
    return result;
}

bool showInFront(QWidget &dialog)
{
    dialog.show();
    dialog.activateWindow();
    return QTest::qWaitForWindowActive(&dialog, longWait);
}

QStringList tabWalk(QWidget &dialog, const char *start, qsizetype steps)
{
    childOf<QWidget>(dialog, start)->setFocus();
    QStringList names;
    for (int step = 0; step < steps; ++step) {
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
        names += dialog.focusWidget()->objectName();
    }
    return names;
}

QStringList cutOffWidgets(const QWidget &dialog)
{
    QStringList names;
    const auto widgets = dialog.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget *widget : widgets) {
        if (!dialog.rect().contains(widget->geometry()) ||
            widget->height() < widget->minimumSizeHint().height())
            names += widget->objectName();
    }
    return names;
}
