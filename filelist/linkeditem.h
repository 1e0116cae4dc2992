// SPDX-License-Identifier: MIT
#pragma once

#include "filelist/siblinglinks.h"

#include <QTableWidgetItem>

#include <memory>

/// The Audio TC cell of a row that follows a link: shows whatever timecode was passed on last.
class LinkedItem : public QTableWidgetItem
{
public:
    explicit LinkedItem(std::shared_ptr<const SharedLink> link);

    QTableWidgetItem *clone() const override;
    QVariant data(int role) const override;

private:
    std::shared_ptr<const SharedLink> link;
};
