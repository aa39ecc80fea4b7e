#include "settings/modNameCheck.h"

#include "database/modCreateDB.h"
#include "platform/basic/text.h"
#include "shell/ShellValues.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::basic::foldedKey;

static_assert(longestName == textColumnSize);

namespace {

bool holdsUnprinted(const QString& name) {
  for (qsizetype i = 0; i < name.size(); ++i) {
    const QChar sign = name[i];
    if (sign.isHighSurrogate() && i + 1 < name.size() && name[i + 1].isLowSurrogate()) {
      ++i;
      continue;
    }
    if (sign.isSurrogate()) return true;
    if (sign.category() == QChar::Other_Control || sign == QChar::LineSeparator ||
        sign == QChar::ParagraphSeparator)
      return true;
  }
  return false;
}

bool isAmong(const QString& name, const QStringList& others) {
  const QString key = foldedKey(name);
  for (const QString& other : others)
    if (foldedKey(other) == key) return true;
  return false;
}

/// Is the separator known and in the name? Before the start has read it there is none.
bool holdsSeparator(const QString& name) {
  if (!Shared<ShellValues>::exists()) return false;
  const QString& separator = shellValues().gListSeparator;
  return !separator.isEmpty() && name.contains(separator);
}

}  // namespace

NameProblem fncFindNameProblem(const QString& name, const QStringList& others) {
  if (name.trimmed().isEmpty()) return NameProblem::Empty;
  if (holdsUnprinted(name)) return NameProblem::Unprinted;
  if (name.front().isSpace() || name.back().isSpace()) return NameProblem::Blank;
  if (name.contains(u';')) return NameProblem::Semicolon;
  if (holdsSeparator(name)) return NameProblem::Separator;
  if (name.contains(u':')) return NameProblem::Colon;
  if (name.size() > longestName) return NameProblem::TooLong;
  return isAmong(name, others) ? NameProblem::Double : NameProblem::None;
}

QString fncNameProblem(const QString& name, const QStringList& others) {
  return fncNameProblemText(fncFindNameProblem(name, others));
}

QString fncNameProblemText(NameProblem problem) {
  switch (problem) {
    case NameProblem::None:
      return {};
    case NameProblem::Empty:
      return u"A name must not be empty."_s;
    case NameProblem::Unprinted:
      return u"A name must not hold line breaks, tabs or other signs without a picture."_s;
    case NameProblem::Blank:
      return u"A name must not begin or end with a blank."_s;
    case NameProblem::Separator:
      return u"A name must not hold \"%1\", which separates the values of an appointment on this system."_s
          .arg(shellValues().gListSeparator);
    case NameProblem::Semicolon:
      return u"A name must not hold \";\", which separates values where they are stored."_s;
    case NameProblem::Colon:
      return u"A name must not hold \":\", which ends the name of a list where it is stored."_s;
    case NameProblem::TooLong:
      return u"A name must not be longer than %1 characters."_s.arg(longestName);
    case NameProblem::Double:
      return phrases().LNGNODOUBLES;
  }
  return {};
}

}  // namespace hourbook
