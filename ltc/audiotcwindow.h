// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

/// The dialog before a second reading: which files, and with which algorithm, channel and frame rate. Every
/// choice comes from a fixed list and is kept between openings. Made once and shown on demand.
class AudioTCWindow : public QWidget
{
    Q_OBJECT

public:
    explicit AudioTCWindow(QWidget *parent = nullptr);

signals:
    void readAudioTCReq(AudioTCOptions audioTCOptions);

private slots:
    void onReadAudioTCButtonClicked();

private:
    void layOut();

    QPushButton *readAudioTCButton;
    QLabel *filesLabel;
    QComboBox *filesCombo;
    QLabel *algorithmLabel;
    QComboBox *algorithmCombo; ///< item positions are the codes of AudioTCOptions
    QLabel *frameRateLabel;
    QComboBox *frameRateCombo; ///< texts of frameRates
    QLabel *channelLabel;
    QComboBox *channelCombo; ///< texts of audioChannels
};
