#include "platform/owc/htmldata.h"

#include "platform/owc/spreadsheet.h"

namespace platform::owc {

namespace {

QString alignmentName(const Spreadsheet& sheet, int row, int column) {
  static const QStringList names{
      {}, QStringLiteral("left"), QStringLiteral("center"), QStringLiteral("right")};
  const int alignment = sheet.format(row, column).horizontalAlignment;
  if (alignment != 0) return names[alignment];
  const basic::Value value = sheet.value(row, column);
  const bool text = basic::IsEmpty(value) || std::holds_alternative<QString>(value);
  return text ? QString() : QStringLiteral("right");
}

QString styleOf(const Spreadsheet& sheet, int row, int column) {
  const CellFormat format = sheet.format(row, column);
  QStringList styles{QStringLiteral("font-family:%1").arg(format.fontName.toHtmlEscaped()),
                     QStringLiteral("font-size:%1pt").arg(format.fontSize)};
  if (format.bold) styles.append(QStringLiteral("font-weight:bold"));
  if (format.color >= 0)
    styles.append(QStringLiteral("background-color:#%1%2%3")
                      .arg(format.color & 0xFF, 2, 16, QLatin1Char('0'))
                      .arg(format.color >> 8 & 0xFF, 2, 16, QLatin1Char('0'))
                      .arg(format.color >> 16 & 0xFF, 2, 16, QLatin1Char('0')));
  const QString alignment = alignmentName(sheet, row, column);
  if (!alignment.isEmpty()) styles.append(QStringLiteral("text-align:%1").arg(alignment));
  return styles.join(u';');
}

QString contentOf(const Spreadsheet& sheet, int row, int column) {
  QString text = sheet.text(row, column).toHtmlEscaped();
  text.replace(QStringLiteral("\r\n"), QStringLiteral("<br>"));
  text.replace(u'\n', QStringLiteral("<br>"));
  return text.isEmpty() ? QStringLiteral("&nbsp;") : text;
}

}  // namespace

QString htmlTable(const Spreadsheet& sheet, const CellRect& rect) {
  QString html = QStringLiteral("<table border='1' cellspacing='0' cellpadding='1'>\r\n");
  for (int row = rect.row; row <= rect.lastRow(); ++row) {
    html += QStringLiteral("<tr>");
    for (int column = rect.column; column <= rect.lastColumn(); ++column)
      if (!sheet.columnHidden(column))
        html += QStringLiteral("<td style='%1'>%2</td>")
                    .arg(styleOf(sheet, row, column), contentOf(sheet, row, column));
    html += QStringLiteral("</tr>\r\n");
  }
  return html + QStringLiteral("</table>");
}

}  // namespace platform::owc
