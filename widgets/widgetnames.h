// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemView>
#include <QComboBox>
#include <QString>
#include <QWidget>

/// Gives \a widget the name by which tests and style sheets find it, and the one that screen readers say.
template <typename Widget>
Widget *named(Widget *widget, const char *objectName, const QString &accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
    return widget;
}

/// The same for a choice box and the list that it opens.
inline QComboBox *named(QComboBox *combo, const char *objectName, const QString &accessibleName)
{
    combo->view()->setAccessibleName(accessibleName);
    return named<QComboBox>(combo, objectName, accessibleName);
}
