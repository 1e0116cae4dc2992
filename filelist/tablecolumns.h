// SPDX-License-Identifier: MIT
#pragma once

/// The columns of the file table, left to right.
enum TableColumn { NameColumn, DurationColumn, FileTCColumn, AudioTCColumn, ColumnCount };

constexpr int cellType = 1; ///< item type of all cells
