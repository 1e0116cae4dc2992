// SPDX-License-Identifier: MIT
#include "app/messages.h"

#include "app/versionnotice.h"
#include "app/windowtexts.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QLabel>
#include <QMessageBox>

namespace messages
{

namespace
{

QString translated(const char *text)
{
    return QCoreApplication::translate("MainWindow", text);
}

void openWebLink(const QString &link)
{
    if (versionnotice::mayOpenLink(QUrl(link)))
        QDesktopServices::openUrl(QUrl(link));
}

} // namespace

bool isConfirmed(QWidget *parent, const QString &title, const QString &question)
{
    const auto answer = QMessageBox::question(parent, title, question, QMessageBox::Yes | QMessageBox::No,
                                              QMessageBox::NoButton);
    return answer == QMessageBox::Yes;
}

void showExportResult(QWidget *parent, const QString &text)
{
    QMessageBox box(QMessageBox::Information, translated("Export Result"), text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText); // file names may look like markup
    box.exec();
}

void showAbout(QWidget *parent)
{
    QMessageBox box(parent);
    box.setWindowTitle(translated("About"));
    box.setTextFormat(Qt::RichText);
    box.setText(windowtexts::about());
    box.exec();
}

void showNewVersion(QWidget *parent, const QUrl &downloadLink, const QString &description)
{
    QMessageBox box(QMessageBox::NoIcon, translated("New Version Available"), {}, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::RichText);
    box.setText(versionnotice::text(downloadLink, description));
    // The text comes from the network: its links must not start what is on this machine.
    if (auto *label = box.findChild<QLabel *>("qt_msgbox_label")) {
        label->setOpenExternalLinks(false);
        QObject::connect(label, &QLabel::linkActivated, &box, openWebLink);
    }
    box.exec();
}

void showMissingTools(QWidget *parent, const QStringList &programs)
{
    auto *box = new QMessageBox(QMessageBox::Warning, parent->windowTitle(),
                                windowtexts::missingTools(programs), QMessageBox::Ok, parent);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->show();
}

} // namespace messages
