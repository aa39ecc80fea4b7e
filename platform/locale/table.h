#pragma once
#include <QString>

#include <array>
#include <optional>

namespace platform::locale {

/// One language of the table: what Windows shows for it, where Qt's own data differs.
struct Row {
  const char* name;  // "de_CH"
  qint32 lcid;
  const char16_t* listSeparator;
  const char16_t* decimalSign;
  const char16_t* groupSign;
  const char16_t* shortDatePattern;
  std::array<const char16_t*, 7> abbreviatedDays;  // Monday first
};

/// nullptr when the table has no such row.
const Row* rowOf(const QString& name);

/// Every row's name, in the table's order.
const std::array<const char*, 29>& rowNames();

/// The number of a language and country without a row ("es_AR" is 11274). A country without a number of its
/// own takes that of its language's first country, a language outside of the table 1033.
qint32 lcidWithoutRow(const QString& name);

}  // namespace platform::locale
