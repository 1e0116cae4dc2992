// SPDX-License-Identifier: MIT
#pragma once

class QTableWidget;

/// Gives \a table the columns, the colours and the manners of the file table.
void setTableLook(QTableWidget *table);
