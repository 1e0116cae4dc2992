// SPDX-License-Identifier: MIT
#include "tests/window/messageboxanswers.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace
{

QString nameOf(QMessageBox::Icon icon)
{
    switch (icon) {
    case QMessageBox::Question:
        return "question";
    case QMessageBox::Information:
        return "information";
    case QMessageBox::Warning:
        return "warning";
    default:
        return {};
    }
}

MessageBoxAnswers::Box whatItSays(const QMessageBox &box)
{
    const QPushButton *defaultButton = box.defaultButton();
    return {box.windowTitle(),
            box.text(),
            nameOf(box.icon()),
            box.standardButtons(),
            defaultButton ? defaultButton->text() : QString(),
            box.textFormat(),
            box.textInteractionFlags()};
}

} // namespace

MessageBoxAnswers::MessageBoxAnswers(QObject *parent) : QObject(parent)
{
    constexpr int lookEvery = 20; // [ms]
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &MessageBoxAnswers::look);
    timer->start(lookEvery);
}

void MessageBoxAnswers::answerNext(QMessageBox::StandardButton button, std::function<void()> before)
{
    answers.append({button, std::move(before)});
}

bool MessageBoxAnswers::answered(const QStringList &titles) const
{
    QStringList seenTitles;
    for (const Box &box : boxes)
        seenTitles += box.title;
    return allGiven() && seenTitles == titles;
}

void MessageBoxAnswers::look()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box || !box->isVisible() || answers.isEmpty() || current.contains(box))
        return;
    const QAbstractButton *button = box->button(answers.constFirst().button);
    if (button && button->size().isEmpty())
        return; // not laid out yet, so a click would miss it
    const Answer answer = answers.takeFirst();
    boxes.append(whatItSays(*box));
    current.append(box);
    if (answer.before)
        answer.before();
    QTest::mouseClick(box->button(answer.button), Qt::LeftButton);
    current.removeAll(box);
}

QString questionOf(const MessageBoxAnswers::Box &box)
{
    const bool isQuestion = box.icon == "question" && box.buttons == (QMessageBox::Yes | QMessageBox::No) &&
                            box.defaultButton.isEmpty();
    return isQuestion ? box.text : QString();
}
