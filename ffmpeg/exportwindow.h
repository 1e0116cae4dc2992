// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// The dialog before an export: destination directory, video and audio type, and what becomes of the timecode
/// channel. Emits exportRequest() once the directory has been found good. Made once and shown on demand.
class ExportWindow : public QDialog
{
    Q_OBJECT

public:
    explicit ExportWindow(QWidget *parent = nullptr);

    /// The next export is one of all files (true) or of the selected ones (false).
    void setExportAll(bool all);

signals:
    void exportRequest(ExportOptions exportOptions);

private slots:
    void onBrowseDirButtonClicked();
    void onVideoExportTypeChanged(int index);
    void onExportButtonClicked();
    void onCancelButtonClicked();

private:
    void layOut();
    void showError(const QString &text);

    QLabel *exportDirLabel;
    QLineEdit *exportDirEdit;
    QPushButton *browseButton;
    QLabel *errorLabel;
    QLabel *videoTypeLabel;
    QComboBox *videoTypeCombo; ///< item positions are the codes of exportTypes
    QLabel *audioTypeLabel;
    QComboBox *audioTypeCombo; ///< item positions are the codes of audioTypes
    QCheckBox *muteAudioTCCheckBox;
    QPushButton *exportButton;
    QPushButton *cancelButton;
    bool exportAll = false; ///< opened for all files
};
