// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/longwait.h"

#include <QString>
#include <QStringList>
#include <QWidget>

class QComboBox;

// What the tests of windows and dialogs share.

/// The widget or action \a name in \a window; fails hard when there is none.
template <typename Child>
Child *childOf(const QWidget &window, const char *name)
{
    auto *child = window.findChild<Child *>(name);
    if (!child)
        qFatal("there is no %s", name);
    return child;
}

/// What \a combo offers, from top to bottom.
QStringList texts(const QComboBox &combo);

/// Shows \a dialog and waits until it is in front; false when it never is.
bool showInFront(QWidget &dialog);

/// Names of the widgets that Tab leads to in \a dialog, in \a steps from the widget \a start on.
QStringList tabWalk(QWidget &dialog, const char *start, qsizetype steps);

/// Names of the widgets in \a dialog that reach out of it or have less room than they need.
QStringList cutOffWidgets(const QWidget &dialog);
