#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

// The layers are link targets, but a header alone can cross a line without linking anything. So the include
// lines are read as text. The lists below are the picture of docs/architecture.md; an exception has no place
// here.

using namespace Qt::StringLiterals;

namespace {

struct Include {
  QString file;    // relative to the source tree
  QString target;  // as written
  bool system = false;
};

QString sourceTree() {
  return QStringLiteral(HOURBOOK_SOURCE_DIR);
}

const QStringList& codeFolders() {
  static const QStringList folders{u"app"_s,      u"shell"_s,     u"outlook"_s,   u"database"_s,
                                   u"settings"_s, u"reporting"_s, u"workspace"_s, u"billing"_s,
                                   u"platform"_s, u"companions"_s};
  return folders;
}

QList<Include> readIncludes() {
  static const QRegularExpression line(uR"(^\s*#\s*include\s*([<"])([^>"]+)[>"])"_s);
  QList<Include> found;
  for (const QString& folder : codeFolders()) {
    QDirIterator files(sourceTree() + u'/' + folder, {u"*.h"_s, u"*.cpp"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
      QFile file(files.next());
      if (!file.open(QIODevice::ReadOnly)) continue;
      const QString name = QDir(sourceTree()).relativeFilePath(file.fileName());
      for (const QByteArray& text : file.readAll().split('\n')) {
        const QRegularExpressionMatch match = line.match(QString::fromUtf8(text));
        if (match.hasMatch()) found.append({name, match.captured(2), match.capturedView(1) == u"<"});
      }
    }
  }
  return found;
}

const QList<Include>& includes() {
  static const QList<Include> all = readIncludes();
  return all;
}

/// The layer that a path belongs to; "shell/start" is one of its own.
QString layerOf(const QString& path) {
  if (path.startsWith(u"shell/start/"_s)) return u"start"_s;
  return path.section(u'/', 0, 0);
}

QString joined(const QStringList& offenders) {
  return offenders.join(u'\n');
}

}  // namespace

TEST(Architecture, TheTreeIsReallyRead) {
  EXPECT_GT(includes().size(), 300);
}

TEST(Architecture, EveryFolderIncludesOnlyFoldersBelowIt) {
  const QStringList upwards{u"platform"_s, u"shell"_s,     u"outlook"_s, u"database"_s,
                            u"settings"_s, u"reporting"_s, u"billing"_s, u"workspace"_s};
  QMap<QString, QSet<QString>> allowed;
  QSet<QString> below;
  for (const QString& layer : upwards) {
    below.insert(layer);
    allowed[layer] = below;
  }
  allowed[u"workspace"_s].remove(u"billing"_s);  // side by side
  below.insert(u"start"_s);
  allowed[u"start"_s] = below;
  below.insert(u"app"_s);
  allowed[u"app"_s] = below;
  below.insert(u"companions"_s);
  allowed[u"companions"_s] = below;

  QStringList offenders;
  for (const Include& include : includes()) {
    if (include.system || !include.target.contains(u'/')) continue;
    const QString to = layerOf(include.target);
    if (!allowed.contains(to)) continue;  // not a folder of ours
    if (!allowed[layerOf(include.file)].contains(to))
      offenders.append(include.file + u" includes "_s + include.target);
  }
  EXPECT_TRUE(offenders.isEmpty()) << qPrintable(joined(offenders));
}

TEST(Architecture, OurOwnHeadersAreNamedByTheirWholePath) {
  QStringList offenders;
  for (const Include& include : includes())
    if (!include.system && !include.target.contains(u'/') && !include.target.endsWith(u".moc"_s) &&
        !include.target.startsWith(u"moc_"_s) && !include.target.startsWith(u"ui_"_s) &&
        !include.target.endsWith(u".inc"_s))
      offenders.append(include.file + u" includes "_s + include.target);
  EXPECT_TRUE(offenders.isEmpty()) << qPrintable(joined(offenders));
}

TEST(Architecture, TheApplicationReachesOtherMakersComponentsOnlyThroughThePlatform) {
  static const QRegularExpression foreign(
      u"^(ical|libical|QSql|QtSql|QNetwork|QtNetwork|QtCharts|QChart|QBar|QPie|sql\\.h|sqlext|sqlite3|ixion|"
      u"gif_lib|"
      u"QSettings|QProcess|QPrinter)"_s);
  QStringList offenders;
  for (const Include& include : includes()) {
    const QString layer = layerOf(include.file);
    if (layer == u"platform"_s || layer == u"app"_s || layer == u"companions"_s) continue;
    if (include.system && foreign.match(include.target).hasMatch())
      offenders.append(include.file + u" includes "_s + include.target);
  }
  EXPECT_TRUE(offenders.isEmpty()) << qPrintable(joined(offenders));
}

TEST(Architecture, OnlyFormsAndViewsKnowWidgets) {
  static const QRegularExpression widgets(
      u"^(QtWidgets|QWidget|QMainWindow|QDialog|QApplication|QLabel|QPushButton|QComboBox|QTableView|"
      u"QMessageBox|"
      u"QLineEdit|QCheckBox|QHBoxLayout|QVBoxLayout|QGridLayout|QTabBar|QDateEdit|QPainter|QPixmap|QIcon|QFont)"_s);
  static const QRegularExpression home(
      u"^(workspace/(frm|ReportWindow|[A-Z][a-z]+Part\\.|RowDropDown|FlowLayout)|billing/frm|database/forms/"
      u"|settings/"
      u"frm|app/"
      u"|companions/|platform/forms/widgets/|"
      u"platform/owc/view/|platform/owc/chartview/|platform/dialogs/qt/)"_s);
  QStringList offenders;
  for (const Include& include : includes())
    if (include.system && widgets.match(include.target).hasMatch() && !home.match(include.file).hasMatch())
      offenders.append(include.file + u" includes "_s + include.target);
  EXPECT_TRUE(offenders.isEmpty()) << qPrintable(joined(offenders));
}

TEST(Architecture, NoTwoPlatformComponentsNeedEachOther) {
  QMap<QString, QSet<QString>> graph;
  for (const Include& include : includes()) {
    if (include.system || !include.file.startsWith(u"platform/"_s)) continue;
    if (!include.target.startsWith(u"platform/"_s)) continue;
    const QString from = include.file.section(u'/', 1, 1), to = include.target.section(u'/', 1, 1);
    if (from != to) graph[from].insert(to);
  }
  // leaves fall away until only circles are left
  bool changed = true;
  while (changed) {
    changed = false;
    for (const QString& node : graph.keys()) {
      QSet<QString> open;
      for (const QString& to : graph[node])
        if (graph.contains(to)) open.insert(to);
      if (open.isEmpty()) {
        graph.remove(node);
        changed = true;
      }
    }
  }
  EXPECT_TRUE(graph.isEmpty()) << "in a circle: " << qPrintable(QStringList(graph.keys()).join(u", "_s));
}
