// SPDX-License-Identifier: MIT
#pragma once

/// What the controller was asked for and has not finished yet: imports of drops, and second readings.
class PendingWork
{
public:
    /// Files were dropped; the controller is asked to import them.
    void drop();

    /// The controller has taken a drop. Ends of imports that come later include it.
    void takeDrop();

    /// A second reading is asked for.
    void askReading();

    /// The controller has finished a second reading.
    void endReading();

    /// The controller has finished an import, or a second reading whose last file failed: that ends alike.
    void endImport();

    /// Whether anything is still to come.
    bool isBusy() const { return importUnderWay || isReading(); }

    bool isReading() const { return readings > 0; }

    /// Whether no end of an import has come since the last drop. Rows must not be removed meanwhile.
    bool isImporting() const { return importBusy; }

    /// Whether results with row numbers are to come although isImporting() is false: of a second reading, or
    /// of an import whose drop crossed the end of an earlier one. Rows should not be removed meanwhile.
    bool mustKeepRows() const { return isReading() || (importUnderWay && !importBusy); }

private:
    bool importBusy = false;            ///< from a drop until the next end of an import
    bool importUnderWay = false;        ///< from a drop until the end of the import that it belongs to
    int dropsOnTheWay = 0;              ///< drops that the controller has not taken yet
    int readings = 0;                   ///< second readings asked for and not yet finished
    bool readingWaitsForImport = false; ///< the next end of an import is not that of a second reading
};
