#pragma once
#include <QList>
#include <QStringList>

namespace platform::owc {

/// Cells as spreadsheets exchange them as text: rows by line breaks, cells by tabs; a cell that would break
/// the table stands in quotes, its own quotes doubled.
QString textOfTable(const QList<QStringList>& rows);
/// The other way. A line break at the very end opens no row; an empty text is one empty cell.
QList<QStringList> tableOfText(const QString& text);

}  // namespace platform::owc
