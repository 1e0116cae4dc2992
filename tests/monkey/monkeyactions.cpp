// SPDX-License-Identifier: MIT
// What a monkey does with the window.
#include "filelist/filelist.h"
#include "testkit/fixtures/ownprocesses.h"
#include "tests/monkey/monkey.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>

#include <csignal>

namespace
{

template <typename Choice>
Choice any(testsignals::Random &random, const QVector<Choice> &choices)
{
    return choices.at(random.integer(0, static_cast<int>(choices.size()) - 1));
}

void chooseAny(testsignals::Random &random, QComboBox *combo)
{
    combo->setCurrentIndex(random.integer(0, combo->count() - 1));
}

} // namespace

void Monkey::act()
{
    struct Action {
        int weight;
        void (Monkey::*perform)();
    };
    const QVector<Action> possible{{5, &Monkey::drop},         {4, &Monkey::select},
                                   {1, &Monkey::clickRow},     {3, &Monkey::pressDelete},
                                   {3, &Monkey::readAgain},    {4, &Monkey::exportFiles},
                                   {2, &Monkey::cancelExport}, {2, &Monkey::disturbTool}};
    constexpr double quitting = 0.02;
    if (random.chance(quitting))
        return quit();
    QVector<void (Monkey::*)()> lots;
    for (const Action &action : possible)
        lots.insert(lots.size(), action.weight, action.perform);
    (this->*any(random, lots))();
    pause(any<int>(random, {0, 0, 1, 5, 20, 60}));
}

void Monkey::drop()
{
    QStringList paths =
        sourceFolders + QStringList{fixture->mediaFolder(), fixture->mediaFolder() + "/nothing"};
    for (auto source = sources.cbegin(); source != sources.cend(); ++source)
        paths += source.key();
    paths.sort();
    QStringList dropped;
    for (int i = random.integer(1, 4); i > 0; --i)
        dropped += paths.at(random.integer(0, static_cast<int>(paths.size()) - 1));
    log += "drop " + dropped.join(' ');
    fixture->drop(dropped);
}

void Monkey::select()
{
    fileList->clearSelection();
    for (int i = random.integer(0, 3); i > 0 && fileList->rowCount() > 0; --i) {
        const int row = random.integer(0, fileList->rowCount() - 1);
        log += QString("select row %1").arg(row);
        fileList->selectionModel()->select(fileList->model()->index(row, 0),
                                           QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
}

void Monkey::clickRow()
{
    if (fileList->rowCount() == 0)
        return;
    const int row = random.integer(0, fileList->rowCount() - 1);
    log += QString("click row %1").arg(row);
    QTest::mouseClick(fileList->viewport(), Qt::LeftButton, Qt::NoModifier,
                      fileList->visualRect(fileList->model()->index(row, 0)).center());
}

void Monkey::pressDelete()
{
    if (random.chance(0.5))
        select();
    log += QString("delete, of %1 rows").arg(fileList->rowCount());
    QTest::keyClick(fixture->window.get(), Qt::Key_Delete);
    log += QString("%1 rows are left").arg(fileList->rowCount());
}

void Monkey::readAgain()
{
    fixture->child<QAction>("readAudioTCAction")->trigger();
    const QWidget *dialog = topLevel("audioTCWindow");
    const auto combos = dialog->findChildren<QComboBox *>();
    for (QComboBox *combo : combos)
        chooseAny(random, combo);
    log += "read " + dialog->findChild<QComboBox *>("filesCombo")->currentText();
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
}

void Monkey::exportFiles()
{
    auto *action = fixture->child<QAction>(random.chance(0.7) ? "exportAllAction" : "exportAction");
    const QWidget *dialog = topLevel("exportWindow");
    if (!action->isEnabled())
        return;
    action->trigger();
    const QString folder =
        any<QString>(random, {exportFolder, exportFolder, exportFolder + "/../target/.",
                              sourceFolders.constFirst(), sourceFolders.constLast() + "/../card2"});
    dialog->findChild<QLineEdit *>("exportDirEdit")->setText(folder);
    chooseAny(random, dialog->findChild<QComboBox *>("videoTypeCombo"));
    chooseAny(random, dialog->findChild<QComboBox *>("audioTypeCombo"));
    dialog->findChild<QCheckBox *>("muteAudioTCCheckBox")->setChecked(random.chance(0.5));
    log += action->objectName() + " to " + folder;
    dialog->findChild<QPushButton *>("exportButton")->click();
}

void Monkey::cancelExport()
{
    if (!fixture->cancelButton->isVisible())
        return;
    log += "cancel";
    fixture->cancelButton->click();
}

void Monkey::disturbTool()
{
    const QVector<qint64> children = ownprocesses::children();
    if (children.isEmpty())
        return;
    const int signal = any<int>(random, {SIGKILL, SIGSTOP, SIGTERM});
    log += QString("signal %1 to a tool").arg(signal);
    ::kill(static_cast<pid_t>(any(random, children)), signal);
}

void Monkey::quit()
{
    log += "quit";
    if (random.chance(0.5))
        fixture->child<QAction>("exitAction")->trigger();
    else
        fixture->window->close();
}

void Monkey::pause(int milliseconds)
{
    if (milliseconds > 0)
        log += QString("%1 ms").arg(milliseconds);
    QTest::qWait(milliseconds);
}
