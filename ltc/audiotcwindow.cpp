// SPDX-License-Identifier: MIT
#include "ltc/audiotcwindow.h"

#include "app/records/optiontables.h"
#include "widgets/widgetnames.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>

namespace
{

constexpr int allFilesIndex = 1;

/// Screen readers announce the title of a dialog, but not that of a plain widget.
QAccessibleInterface *dialogInterface(const QString &className, QObject *object)
{
    if (className == QLatin1String(AudioTCWindow::staticMetaObject.className()))
        return new QAccessibleWidget(qobject_cast<QWidget *>(object), QAccessible::Dialog);
    return nullptr;
}

} // namespace

AudioTCWindow::AudioTCWindow(QWidget *parent)
    : QWidget(parent, Qt::WindowStaysOnTopHint),
      readAudioTCButton(
          named(new QPushButton(tr("Read audio TC")), "readAudioTCButton", tr("Read audio TC"))),
      filesLabel(named(new QLabel(tr("Read files:")), "filesLabel", {})),
      filesCombo(named(new QComboBox, "filesCombo", tr("Read files"))),
      algorithmLabel(named(new QLabel(tr("Select reading algorithm:")), "algorithmLabel", {})),
      algorithmCombo(named(new QComboBox, "algorithmCombo", tr("Reading algorithm"))),
      frameRateLabel(named(new QLabel(tr("Select frame rate:")), "frameRateLabel", {})),
      frameRateCombo(named(new QComboBox, "frameRateCombo", tr("Frame rate"))),
      channelLabel(named(new QLabel(tr("Select timecode channel:")), "channelLabel", {})),
      channelCombo(named(new QComboBox, "channelCombo", tr("Timecode channel")))
{
    QAccessible::installFactory(dialogInterface);
    named(this, "audioTCWindow", {});
    setWindowTitle(tr("Read audio timecode"));
    filesCombo->addItems({tr("selected files"), tr("all files")});
    algorithmCombo->addItems({tr("auto"), tr("LOW"), tr("MID"), tr("HIGH"), tr("SLOPE")});
    channelCombo->addItems(audioChannels.keys());
    // The table sorts "auto" behind the numbers; it heads both lists.
    QStringList rates = frameRates.keys();
    rates.prepend(rates.takeLast());
    frameRateCombo->addItems(rates);
    layOut();

    connect(readAudioTCButton, &QPushButton::clicked, this, &AudioTCWindow::onReadAudioTCButtonClicked);
    const auto *escape = new QShortcut(Qt::Key_Escape, this);
    connect(escape, &QShortcut::activated, this, &AudioTCWindow::close);
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        const auto *enter = new QShortcut(key, this);
        connect(enter, &QShortcut::activated, readAudioTCButton, &QPushButton::click);
    }
}

void AudioTCWindow::layOut()
{
    constexpr int dialogWidth = 350;  // [pixels]
    constexpr int dialogHeight = 180; // [pixels]
    constexpr int margin = 3;         // [pixels]
    constexpr int lastMargin = 6;     // [pixels] sets the button off from the choices

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(lastMargin, lastMargin, lastMargin, lastMargin);
    column->setSpacing(0); // the rows bring their own margins; more would not fit into the fixed height
    const auto addRow = [column](QLabel *label, QComboBox *combo, int bottomMargin) {
        auto *row = new QHBoxLayout;
        row->setContentsMargins(margin, margin, margin, bottomMargin);
        row->addWidget(label);
        row->addWidget(combo);
        label->setBuddy(combo);
        column->addLayout(row);
    };
    addRow(filesLabel, filesCombo, margin);
    addRow(algorithmLabel, algorithmCombo, margin);
    addRow(channelLabel, channelCombo, margin);
    addRow(frameRateLabel, frameRateCombo, lastMargin);
    column->addWidget(readAudioTCButton);
    setFixedSize(dialogWidth, dialogHeight);

    QWidget::setTabOrder(filesCombo, algorithmCombo);
    QWidget::setTabOrder(algorithmCombo, channelCombo);
    QWidget::setTabOrder(channelCombo, frameRateCombo);
    QWidget::setTabOrder(frameRateCombo, readAudioTCButton);
}

void AudioTCWindow::onReadAudioTCButtonClicked()
{
    AudioTCOptions options;
    options.channel = audioChannels.value(channelCombo->currentText());
    options.frameRate = frameRates.value(frameRateCombo->currentText());
    options.algorithm = algorithmCombo->currentIndex();
    options.allFiles = filesCombo->currentIndex() == allFilesIndex;
    emit readAudioTCReq(options);
    close();
}
