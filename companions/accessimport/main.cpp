// hourbook-accessimport: makes the program's own database from one in Access's format. The original stays as
// it is.
#include "companions/accessimport/conversion.h"
#include "companions/console/consoledialogs.h"
#include "platform/basic/failure.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

int fail(const QString& text) {
  std::fprintf(stderr, "hourbook-accessimport: %s\n", qUtf8Printable(text));
  return 1;
}

int convert(const QString& source, const QString& target) {
  const hourbook::Shared<hourbook::ShellValues>::Scope shell;
  try {
    hourbook::LoadLanguages(hourbook::fncGetlocalLanguage());
    const accessimport::Outcome outcome = accessimport::convert(source, target);
    companions::say(
        u"%1 rows of %2 tables stand in \"%3\"."_s.arg(outcome.rows).arg(outcome.tables).arg(target));
    for (const QString& note : outcome.notes) companions::say(note);
    companions::say(
        u"\"%1\" was only read. To go on with the new database, give its folder as the database folder in "
        u"the "
        u"settings, or put it in the place of the old file."_s.arg(source));
  } catch (const platform::Failure& failure) {
    return fail(failure.description());
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(
      u"Makes Hourbook's own database from one that Microsoft Access made. The original is only read."_s);
  parser.addHelpOption();
  parser.addPositionalArgument(u"original"_s, u"the Access database, Hourbook3.mdb"_s);
  parser.addPositionalArgument(
      u"target"_s, u"the file to be made; without it \"converted/Hourbook3.mdb\" beside the original"_s,
      u"[target]"_s);
  parser.process(application);
  const QStringList given = parser.positionalArguments();
  if (given.isEmpty() || given.size() > 2) parser.showHelp(1);
  const QFileInfo source(given.first());
  const QString target = given.size() == 2 ? QFileInfo(given.last()).absoluteFilePath()
                                           : source.absoluteDir().filePath(u"converted/Hourbook3.mdb"_s);
  return convert(source.absoluteFilePath(), target);
}
