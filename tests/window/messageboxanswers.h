// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/// Answers the message boxes of the program as a user does: by clicking a button of the box that is in front.
///
/// Answers are given in the order in which they were prepared. A box without a prepared answer stays open.
class MessageBoxAnswers : public QObject
{
    Q_OBJECT

public:
    struct Box {
        QString title;
        QString text;
        QString icon; ///< "question", "information", "warning" or empty
        QMessageBox::StandardButtons buttons;
        QString defaultButton; ///< its text; empty = none
        Qt::TextFormat format = Qt::AutoText;
        Qt::TextInteractionFlags interaction;
    };

    explicit MessageBoxAnswers(QObject *parent = nullptr);

    /// The next box is answered with \a button, after \a before has been run while it stands.
    void answerNext(QMessageBox::StandardButton button, std::function<void()> before = {});

    /// All boxes that were answered, in order of their opening.
    const QVector<Box> &seen() const { return boxes; }
    bool allGiven() const { return answers.isEmpty(); }
    /// Whether all answers were given, to boxes with these \a titles in this order.
    bool answered(const QStringList &titles) const;

private slots:
    void look();

private:
    struct Answer {
        QMessageBox::StandardButton button;
        std::function<void()> before;
    };

    QVector<Answer> answers;
    QVector<Box> boxes;
    QVector<QMessageBox *> current; ///< boxes being answered; a box may open while another stands
};

/// What \a box asks; empty when it is no question that is answered with Yes or No, without a default.
QString questionOf(const MessageBoxAnswers::Box &box);
