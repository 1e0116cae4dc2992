// SPDX-License-Identifier: MIT
#pragma once

#include <QThread>

class AudioTCWindow;
class ExportWindow;
class FileList;
class MainControl;
class QAction;
class QHBoxLayout;
class QLabel;
class QListWidget;
class QMainWindow;
class QMenu;
class QProgressBar;
class QPushButton;
class QVBoxLayout;
class QWidget;
class UpdateCheck;

/// What the main window is made of: its widgets and actions, laid out and named, and the objects that it
/// brings together. They know nothing of each other yet.
struct WindowParts {
    /// Builds the parts of \a window, which is to own this object. The controller lives in workerThread,
    /// which does not run yet.
    explicit WindowParts(QMainWindow *window);

    QThread workerThread; ///< the thread in which mainControl lives
    QWidget *centralWidget;
    ExportWindow *exportWindow;
    AudioTCWindow *audioTCWindow;
    UpdateCheck *updateCheck;
    QAction *exportAction;
    QAction *exportAllAction;
    QAction *exitAction;
    QMenu *fileMenu;
    QMenu *editMenu;
    QAction *readAudioTCAction;
    QMenu *aboutMenu;
    QAction *aboutAction;
    MainControl *mainControl; ///< moved into workerThread; ends with the process
    FileList *fileList;
    QListWidget *streamInfoList;
    QLabel *logoLabel;
    QLabel *statusLabel;
    QProgressBar *progressBar;
    QPushButton *cancelButton;
    QHBoxLayout *statusLayout;
    QVBoxLayout *leftLayout;
    QVBoxLayout *rightLayout;
    QHBoxLayout *topLayout;

private:
    void nameWidgets(QMainWindow *window);
    void setUpMenus(QMainWindow *window);
    void setUpWidgets();
    void layOut(QMainWindow *window);
};
