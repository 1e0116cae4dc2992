// SPDX-License-Identifier: MIT
#include "ffmpeg/exportwindow.h"

#include "app/records/optiontables.h"
#include "widgets/widgetnames.h"

#include <QAccessible>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardPaths>

namespace
{

constexpr int firstMxfType = 1;
constexpr int lastMxfType = 4;
constexpr int audioPassThrough = 0;
constexpr int audioPcm16 = 1;
constexpr int itemFlagsRole = Qt::UserRole - 1; // where the standard item model keeps the flags of an item

QString moviesFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
}

/// Inserts every text of \a types at the position of its code.
void fillByCode(QComboBox *combo, const QMap<QString, int> &types)
{
    for (int code = 0; code < types.size(); ++code)
        combo->addItem(types.key(code));
}

} // namespace

ExportWindow::ExportWindow(QWidget *parent)
    : QDialog(parent),
      exportDirLabel(named(new QLabel(tr("Select export directory: ")), "exportDirLabel", {})),
      exportDirEdit(named(new QLineEdit(moviesFolder()), "exportDirEdit", tr("Export directory"))),
      browseButton(named(new QPushButton(tr("Browse")), "browseButton", tr("Browse for export directory"))),
      errorLabel(named(new QLabel, "errorLabel", {})),
      videoTypeLabel(named(new QLabel(tr("Video export type: ")), "videoTypeLabel", {})),
      videoTypeCombo(named(new QComboBox, "videoTypeCombo", tr("Video export type"))),
      audioTypeLabel(named(new QLabel(tr("Audio export type: ")), "audioTypeLabel", {})),
      audioTypeCombo(named(new QComboBox, "audioTypeCombo", tr("Audio export type"))),
      muteAudioTCCheckBox(
          named(new QCheckBox(tr("Mute audio TC")), "muteAudioTCCheckBox", tr("Mute audio TC"))),
      exportButton(named(new QPushButton(tr("Export")), "exportButton", tr("Export"))),
      cancelButton(named(new QPushButton(tr("Cancel")), "cancelButton", tr("Cancel")))
{
    named(this, "exportWindow", {});
    fillByCode(videoTypeCombo, exportTypes);
    fillByCode(audioTypeCombo, audioTypes);
    muteAudioTCCheckBox->setChecked(true);
    exportDirLabel->setBuddy(exportDirEdit);
    videoTypeLabel->setBuddy(videoTypeCombo);
    audioTypeLabel->setBuddy(audioTypeCombo);
    errorLabel->setTextFormat(Qt::PlainText);
    exportButton->setDefault(true);
    browseButton->setAutoDefault(false);
    cancelButton->setAutoDefault(false);
    layOut();
    setExportAll(false);

    connect(browseButton, &QPushButton::clicked, this, &ExportWindow::onBrowseDirButtonClicked);
    connect(videoTypeCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &ExportWindow::onVideoExportTypeChanged);
    connect(exportButton, &QPushButton::clicked, this, &ExportWindow::onExportButtonClicked);
    connect(cancelButton, &QPushButton::clicked, this, &ExportWindow::onCancelButtonClicked);
}

void ExportWindow::layOut()
{
    constexpr int minimumDialogWidth = 400; // [pixels]
    constexpr int dialogHeight = 180;       // [pixels]
    constexpr int margin = 6;               // [pixels] small, so that six rows find room in the fixed height
    constexpr int spacing = 3;              // [pixels]

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(spacing);
    const auto addRow = [column](std::initializer_list<QWidget *> widgets) {
        auto *row = new QHBoxLayout;
        for (QWidget *widget : widgets)
            row->addWidget(widget);
        column->addLayout(row);
        return row;
    };
    addRow({exportDirLabel, exportDirEdit, browseButton});
    addRow({errorLabel});
    addRow({videoTypeLabel, videoTypeCombo})->setStretch(1, 1);
    addRow({audioTypeLabel, audioTypeCombo})->setStretch(1, 1);
    for (QLabel *label : {videoTypeLabel, audioTypeLabel})
        label->setMinimumWidth(qMax(videoTypeLabel->sizeHint().width(), audioTypeLabel->sizeHint().width()));
    addRow({muteAudioTCCheckBox});
    addRow({exportButton, cancelButton});
    setMinimumWidth(minimumDialogWidth);
    setFixedHeight(dialogHeight);
}

void ExportWindow::setExportAll(bool all)
{
    exportAll = all;
    setWindowTitle(all ? tr("Export all files") : tr("Export selected files"));
}

void ExportWindow::onBrowseDirButtonClicked()
{
    const QString directory =
        QFileDialog::getExistingDirectory(this, tr("Select export destination"), moviesFolder(),
                                          QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
    if (!directory.isEmpty())
        exportDirEdit->setText(directory);
}

void ExportWindow::onVideoExportTypeChanged(int index)
{
    const bool mxf = index >= firstMxfType && index <= lastMxfType;
    const Qt::ItemFlags flags = mxf ? Qt::NoItemFlags : Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    audioTypeCombo->setItemData(audioPassThrough, static_cast<int>(flags), itemFlagsRole);
    if (mxf && audioTypeCombo->currentIndex() == audioPassThrough)
        audioTypeCombo->setCurrentIndex(audioPcm16);
}

void ExportWindow::onExportButtonClicked()
{
    const QString directory = exportDirEdit->text();
    // An empty text would name the working directory.
    if (directory.isEmpty() || !QFileInfo(directory).isDir()) {
        showError(tr("Selected directory doesn't exists"));
        return;
    }
    if (!QFileInfo(directory).isWritable()) {
        showError(tr("Cannot write to selected directory"));
        return;
    }
    errorLabel->clear();
    ExportOptions options;
    options.exportDir = directory;
    options.videoType = exportTypes.value(videoTypeCombo->currentText());
    options.audioType = audioTypes.value(audioTypeCombo->currentText());
    options.muteAudioTC = muteAudioTCCheckBox->isChecked();
    options.exportAll = exportAll;
    emit exportRequest(options);
    close();
}

void ExportWindow::onCancelButtonClicked()
{
    close();
}

void ExportWindow::showError(const QString &text)
{
    errorLabel->setStyleSheet("color:red");
    errorLabel->setText(text);
    QAccessibleEvent announcement(errorLabel, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}
