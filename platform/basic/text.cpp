#include "platform/basic/text.h"

#include "platform/locale/locale.h"

#include <QCollator>
#include <QLocale>

namespace platform::basic {

namespace {

/// Making one costs far more than a comparison, so the last is kept.
const QCollator& collatorOf(const QString& localeName) {
  static thread_local QString name;
  static thread_local std::unique_ptr<QCollator> collator;
  if (!collator || name != localeName) {
    collator = std::make_unique<QCollator>(QLocale(localeName));
    collator->setCaseSensitivity(Qt::CaseInsensitive);
    name = localeName;
  }
  return *collator;
}

}  // namespace

QStringList Split(const QString& text, const QString& separator) {
  if (text.isEmpty()) return {};
  if (separator.isEmpty()) return {text};
  return text.split(separator);
}

QString Trim(const QString& text) {
  qsizetype from = 0;
  qsizetype to = text.size();
  while (from < to && text[from] == u' ') ++from;
  while (to > from && text[to - 1] == u' ') --to;
  return text.mid(from, to - from);
}

QString foldedKey(const QString& text) {
  return text.toCaseFolded();
}

// Folded first, so that equality is that of the dictionaries under every language: the Turkish collation
// would keep "TITLE" and "title" apart.
int compareText(const QString& a, const QString& b) {
  const QString first = foldedKey(a);
  const QString second = foldedKey(b);
  if (first == second) return 0;
  const int order = collatorOf(locale::current().name()).compare(first, second);
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

}  // namespace platform::basic
