// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTableWidgetItem>

class ImportedFiles;

/// A cell of the file table. What it shows is made from the row's record whenever it is painted.
class FileCell : public QTableWidgetItem
{
public:
    /// The cell shows \a initText until there is something else to show.
    FileCell(const ImportedFiles &files, int row, int column, QString initText);

    QVariant data(int role) const override;

private:
    QString shownText() const;
    QString shownToolTip() const;
    bool isCentred() const;

    const ImportedFiles &files;
    int row;
    int column;
    QString initText;
};
