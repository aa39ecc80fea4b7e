#pragma once
#include "shell/ShellValues.h"

namespace hourbook {

/// The column of the phrase table for the system's language, 1 to 15; 4 (English) for a language without one.
qint16 fncGetlocalLanguage();
/// Fills `gPhrases` from the phrase table. `blnANSI`: the table's bytes are in the system's code page.
void subReadPhrases(qint16 column, bool blnANSI = false);
/// The text without apostrophes.
QString fncCleanPhrase(const QString& text);
/// Reads the table and fills the phrase variables. A key that the table lacks ends the program.
void LoadLanguages(qint16 column);

}  // namespace hourbook
