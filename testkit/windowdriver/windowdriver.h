// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/windowdriver/messageboxanswers.h"

#include <QString>
#include <QStringList>

#include <functional>

class QLabel;
class QMainWindow;
class QProgressBar;
class QTableWidget;

/// Uses the main window as a person does: drops a folder, presses buttons, reads cells and the status line.
///
/// Finds the widgets by their object names and texts. Every operation that waits has a limit and reports
/// whether what it waited for came. Screenshots go into the folder that the constructor is given.
class WindowDriver
{
public:
    WindowDriver(QMainWindow &window, const QString &screenshotFolder);

    /// Drops \a folder on the file table as the desktop would.
    void dropFolder(const QString &folder);

    /// Waits until the status line reads \a status; takes the screenshot \a halfWay when the progress bar has
    /// passed the middle.
    bool waitForStatus(const QString &status, const QString &halfWay);

    /// Clicks on the row whose first cell is \a fileName.
    void clickRow(const QString &fileName);

    /// Opens the dialog for reading again, takes a screenshot of it and closes it.
    void lookAtReadingDialog();

    /// Opens the export dialog for all files, fills it in and presses "Export"; then waits for the message
    /// with the result. Returns that message, empty when none came.
    QString exportAll(const QString &folder, const QString &videoType, const QString &audioType);

    /// Texts of the row whose first cell is \a fileName, one per column; empty when there is none.
    QStringList row(const QString &fileName) const;

    void takeScreenshot(const QString &name);

private:
    int rowNumber(const QString &fileName) const;
    QWidget *openDialog(const char *actionName, const QString &title);
    bool waitFor(const std::function<bool()> &condition);
    bool isHalfWay() const;

    QMainWindow &window;
    QString screenshotFolder;
    QTableWidget *fileList;
    QLabel *statusLabel;
    QProgressBar *progressBar;
    MessageBoxAnswers messageBoxes; ///< the default button of each
};
