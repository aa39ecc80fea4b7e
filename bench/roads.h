#pragma once
#include <QStringList>

namespace bench {

/// Opening a calendar and asking for one week, against libical parsing the same files.
void measureOpening();
/// The same for large calendars with an index, and keeping it in step.
void measureIndex();
/// Saving one item, durable, against the system calls alone that a durable save is made of.
void measureSaving();
/// Storing 199 rows, each committed by itself, against SQLite alone doing the same inserts.
void measureReporting();
/// Reading and writing 10,000 rows through the database drivers, against the engines' own interfaces.
void measureDrivers();
/// Drawing the chart anew, and a change of the tab above it, against a bare chart of the library.
void measureChart();

/// Scrolling through 199 rows of the list, against a bare table with the same texts.
void measureWindow();
/// From the start of the process to the first rows on the screen, against a window of the same parts.
void measureStart();
/// True when the program was started to be measured from its start, and has been.
bool startedAs(const QStringList& arguments);
bool openedAs(const QStringList& arguments);
/// Typing hours from the key to the saved file, against a bare table that replaces the same file.
void measureEditing();

}  // namespace bench
