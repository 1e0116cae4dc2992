// SPDX-License-Identifier: MIT
#include "testkit/windowdriver/windowdriver.h"

#include "testkit/windowdriver/dropon.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>

#include <algorithm>

namespace
{

constexpr int waitLimit = 5 * 60 * 1000; // [ms] for a slow machine with sanitizers

template <typename Button>
Button *findButton(const QWidget &parent, const QString &text)
{
    const QList<Button *> buttons = parent.findChildren<Button *>();
    const auto found = std::find_if(buttons.begin(), buttons.end(),
                                    [&text](const Button *button) { return button->text() == text; });
    return found == buttons.end() ? nullptr : *found;
}

bool choose(const QWidget &parent, const QString &text, int position)
{
    const QList<QComboBox *> boxes = parent.findChildren<QComboBox *>();
    if (position >= boxes.size() || boxes.at(position)->findText(text) < 0)
        return false;
    boxes.at(position)->setCurrentText(text);
    return true;
}

QWidget *findWindow(const QString &title)
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets)
        if (widget->isVisible() && widget->windowTitle() == title)
            return widget;
    return nullptr;
}

} // namespace

WindowDriver::WindowDriver(QMainWindow &mainWindow, const QString &folder)
    : window(mainWindow),
      screenshotFolder(folder),
      fileList(window.findChild<QTableWidget *>("fileList")),
      statusLabel(window.findChild<QLabel *>("statusLabel")),
      progressBar(window.findChild<QProgressBar *>("progressBar"))
{
    Q_ASSERT(fileList && statusLabel && progressBar);
    messageBoxes.answerOthers([this](QMessageBox &box) -> QAbstractButton * {
        box.grab().save(QDir(screenshotFolder).filePath("6-export-result.png"));
        return box.defaultButton() ? box.defaultButton() : box.buttons().value(0);
    });
}

void WindowDriver::dropFolder(const QString &folder)
{
    dropOn(*fileList, {folder});
}

bool WindowDriver::waitForStatus(const QString &status, const QString &halfWay)
{
    bool taken = false;
    return waitFor([&] {
        if (!taken && isHalfWay()) {
            taken = true;
            takeScreenshot(halfWay);
        }
        return statusLabel->text() == status;
    });
}

void WindowDriver::clickRow(const QString &fileName)
{
    const int row = rowNumber(fileName);
    if (row < 0)
        return;
    QWidget *target = fileList->viewport();
    const QPointF position = fileList->visualItemRect(fileList->item(row, 0)).center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent click(type, position, target->mapToGlobal(position.toPoint()), Qt::LeftButton, held,
                          Qt::NoModifier);
        QApplication::sendEvent(target, &click);
    }
}

void WindowDriver::lookAtReadingDialog()
{
    QWidget *dialog = openDialog("readAudioTCAction", "Read audio timecode");
    if (dialog == nullptr)
        return;
    dialog->grab().save(QDir(screenshotFolder).filePath("reading-dialog.png"));
    dialog->close();
}

QString WindowDriver::exportAll(const QString &folder, const QString &videoType, const QString &audioType)
{
    QWidget *dialog = openDialog("exportAllAction", "Export all files");
    if (dialog == nullptr)
        return {};

    auto *directory = dialog->findChild<QLineEdit *>();
    auto *mute = findButton<QCheckBox>(*dialog, "Mute audio TC");
    auto *button = findButton<QPushButton>(*dialog, "Export");
    if (directory == nullptr || mute == nullptr || button == nullptr || !choose(*dialog, videoType, 0) ||
        !choose(*dialog, audioType, 1))
        return {};
    directory->setText(folder);
    mute->setChecked(true);
    dialog->grab().save(QDir(screenshotFolder).filePath("4-export-dialog.png"));
    button->click();

    bool taken = false;
    waitFor([&] {
        if (!taken && isHalfWay()) {
            taken = true;
            takeScreenshot("5-exporting");
        }
        return !messageBoxes.seen().isEmpty();
    });
    return messageBoxes.seen().isEmpty() ? QString() : messageBoxes.seen().constLast().text;
}

QStringList WindowDriver::row(const QString &fileName) const
{
    const int row = rowNumber(fileName);
    QStringList texts;
    for (int column = 0; row >= 0 && column < fileList->columnCount(); ++column)
        texts += fileList->item(row, column)->text();
    return texts;
}

void WindowDriver::takeScreenshot(const QString &name)
{
    QApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); // what was hidden just now leaves no gap
    window.grab().save(QDir(screenshotFolder).filePath(name + ".png"));
}

int WindowDriver::rowNumber(const QString &fileName) const
{
    const QList<QTableWidgetItem *> found = fileList->findItems(fileName, Qt::MatchExactly);
    return found.isEmpty() ? -1 : found.first()->row();
}

QWidget *WindowDriver::openDialog(const char *actionName, const QString &title)
{
    auto *action = window.findChild<QAction *>(actionName);
    if (action == nullptr)
        return nullptr;
    action->trigger();
    QWidget *dialog = nullptr;
    waitFor([&] { return (dialog = findWindow(title)) != nullptr; });
    return dialog;
}

// A message box runs an event loop of its own inside this one; the clicker closes it.
bool WindowDriver::waitFor(const std::function<bool()> &condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.hasExpired(waitLimit))
            return false;
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool WindowDriver::isHalfWay() const
{
    return progressBar->maximum() > 1 && progressBar->value() * 2 >= progressBar->maximum();
}
