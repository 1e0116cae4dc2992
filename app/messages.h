// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

class QWidget;

/// The message boxes of the main window, \a parent. They run modally, unless another is said.
namespace messages
{

/// Whether the user answers \a question with Yes.
bool isConfirmed(QWidget *parent, const QString &title, const QString &question);

/// Shows how an export has ended.
void showExportResult(QWidget *parent, const QString &text);

void showAbout(QWidget *parent);

/// Shows that there is a newer version, with what the update host says about it.
void showNewVersion(QWidget *parent, const QUrl &downloadLink, const QString &description);

/// Shows, without waiting, which \a programs are missing on this machine.
void showMissingTools(QWidget *parent, const QStringList &programs);

} // namespace messages
