#pragma once

namespace bench {

/// Opening a calendar and asking for one week, against libical parsing the same files.
void measureOpening();
/// Storing 199 rows, each committed by itself, against SQLite alone doing the same inserts.
void measureReporting();
/// Drawing the chart anew, and a change of the tab above it, against a bare chart of the library.
void measureChart();

/// Scrolling through 199 rows of the list, against a bare table with the same texts.
void measureWindow();
/// Typing hours from the key to the saved file, against a bare table that replaces the same file.
void measureEditing();

}  // namespace bench
