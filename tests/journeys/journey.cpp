#include "journey.h"

#include "app/components.h"
#include "companions/sampledata/sampleprofile.h"
#include "platform/ado/registration.h"
#include "platform/basic/clock.h"
#include "platform/dao/registration.h"
#include "platform/registry/ini/inifile.h"
#include "platform/sql/sqlite/engine.h"
#include "platform/sql/sqlite/session.h"
#include "shell/modLanguage.h"
#include "shell/start/modMain.h"
#include "shell/start/ProgramValues.h"
#include "tests/support/quickfolder.h"
#include "workspace/frm2003Report.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QFileInfo>
#include <QTest>

namespace tests {

using namespace Qt::StringLiterals;
namespace sqlite = platform::sql::sqlite;

namespace {

void registerDatabases(platform::automation::Components& components, int busyTimeout) {
  const auto driver = std::make_shared<sqlite::SqliteDriver>(busyTimeout);
  const auto drivers = std::make_shared<platform::sql::Drivers>();
  drivers->add(u"Microsoft.Jet.OLEDB.4.0"_s, driver);
  platform::ado::registerComponents(components, drivers);
  platform::dao::registerComponents(components, driver, std::make_shared<sqlite::SqliteEngine>());
}

void makeProfile(const QString& folder, const Place& place) {
  platform::automation::Components components;
  hourbook::registerComponents(components, {});  // without a calendar, which is made here
  const platform::automation::ScopedComponents componentsInForce(components);
  const hourbook::ProgramValues values;
  hourbook::LoadLanguages(hourbook::fncGetlocalLanguage());
  sampledata::Plan plan;
  plan.today = may(15);
  plan.zone = QTimeZone(place.zone);
  plan.listSeparator = platform::locale::current().listSeparator();
  sampledata::makeProfile(folder, plan);
}

QString escaped(QString text) {
  return text.replace(u'\\', u"\\\\"_s)
      .replace(u';', u"\\;"_s)
      .replace(u',', u"\\,"_s)
      .replace(u'\n', u"\\n"_s);
}

}  // namespace

/// What main() holds while the program runs.
struct Journey::Run {
  explicit Run(const hourbook::Configuration& configuration) : registry(configuration.registryFile()) {
    hourbook::registerComponents(components, configuration);
  }
  platform::automation::Components components;
  platform::registry::IniRegistry registry;
  platform::automation::ScopedComponents componentsInForce{components};
  platform::registry::ScopedRegistry registryInForce{registry};
  hourbook::ProgramValues values;
};

Journey::Journey(const Place& place)
    : place_(place), home_(std::make_unique<QTemporaryDir>(quickFolder(u"journey"_s))) {
  EXPECT_TRUE(home_->isValid()) << qPrintable(home_->errorString());
  world.setLocale(place.locale);
  world.setTime(QDateTime(may(15), QTime(10, 0)), place.zone);
  makeProfile(folder(), place);
  sampleReports_ = reportsStored();
}

Journey::~Journey() = default;

void Journey::add(const QString& name, const Added& appointment) {
  const bool utc = appointment.start.endsWith(u'Z');
  QStringList values;
  for (const QString& value : appointment.values) values.append(escaped(value));
  QString text =
      u"BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another maker//Calendar 7//SV\r\nBEGIN:VEVENT\r\n"
      "UID:%1\r\nDTSTAMP:20240401T000000Z\r\nSUMMARY:%2\r\n"_s.arg(name, escaped(appointment.subject));
  text += (utc ? u"DTSTART:"_s : u"DTSTART;TZID=%1:"_s.arg(QString::fromLatin1(place_.zone))) +
          appointment.start + u"\r\nDURATION:PT%1M\r\n"_s.arg(appointment.minutes);
  if (!values.isEmpty()) text += u"CATEGORIES:"_s + values.join(u',') + u"\r\n"_s;
  if (!appointment.body.isEmpty()) text += u"DESCRIPTION:"_s + escaped(appointment.body) + u"\r\n"_s;
  text += u"X-ANOTHER-MAKER;X-PARAM=1:kept as it is\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n"_s;
  outside::write(calendar() + u'/' + name + u".ics"_s, text.toUtf8());
}

void Journey::start() {
  stop();
  run_ = std::make_unique<Run>(hourbook::Configuration::read(configuration()));
  if (busyTimeout > 0) registerDatabases(run_->components, busyTimeout);
  run_->values.reporting->journalFolder = journal();
  hourbook::StartParts parts;
  parts.reportForms.insert(11, [] { return hourbook::frm2003Report(); });
  hourbook::Main(parts);
  const auto& form = run_->values.workspace->gReportForm;
  if (form) form->timFollowCalendar.setTimerEnabled(false);  // `tick` is the only one
  QWidget* const shown = window();
  EXPECT_TRUE(!shown || QTest::qWaitForWindowExposed(shown));
}

void Journey::stop() {
  run_.reset();
}

QWidget* Journey::window() const {
  for (QWidget* top : QApplication::topLevelWidgets())
    if (top->objectName() == u"frm2003Report" && top->isVisible()) return top;
  return nullptr;
}

QWidget* Journey::control(const char* name) const {
  auto* widget = window() ? window()->findChild<QWidget*>(QString::fromLatin1(name)) : nullptr;
  EXPECT_NE(widget, nullptr) << "There is no " << name;
  EXPECT_TRUE(!widget || (widget->isVisible() && widget->isEnabled())) << name << " cannot be used";
  return widget;
}

/// Typed section by section, so that it does not matter how the locale orders them.
void Journey::pick(const char* picker, const QDate& date) {
  auto* edit = qobject_cast<QDateEdit*>(control(picker));
  ASSERT_NE(edit, nullptr) << picker;
  edit->setFocus();
  const auto type = [edit](QDateTimeEdit::Section section, const QString& digits) {
    edit->setSelectedSection(section);
    QTest::keyClicks(edit, digits);
  };
  type(QDateTimeEdit::DaySection, u"01"_s);  // there in every month
  type(QDateTimeEdit::YearSection, date.toString(u"yyyy"_s));
  type(QDateTimeEdit::MonthSection, date.toString(u"MM"_s));
  type(QDateTimeEdit::DaySection, date.toString(u"dd"_s));
  EXPECT_EQ(edit->date(), date) << picker;
}

void Journey::click(const char* button) {
  if (QWidget* widget = control(button)) QTest::mouseClick(widget, Qt::LeftButton);
}

void Journey::fetch(const QDate& from, const QDate& to) {
  pick("dtpStartDate", from);
  pick("dtpEndDate", to);
  click("cmdGetValues");
}

void Journey::chooseFilter(int index) {
  auto* filter = qobject_cast<QComboBox*>(control("cmbFilterCalendar"));
  ASSERT_NE(filter, nullptr);
  filter->setFocus();
  QTest::keyClick(filter, Qt::Key_Home);
  for (int i = 0; i < index; ++i) QTest::keyClick(filter, Qt::Key_Down);
  EXPECT_EQ(filter->currentIndex(), index);
}

void Journey::tick() {
  Q_EMIT hourbook::reportForm().timFollowCalendar.Tick();
}

void Journey::pressOK() {
  world.dialogs.expect(hourbook::phrases().LNGHBREPORTSURE1, platform::dialogs::vbYes);
  click("cmdOK");
}

void Journey::reportAndStay() {
  world.dialogs.expect(hourbook::phrases().LNGHBREPORTSURE1, platform::dialogs::vbYes);
  world.dialogs.expect(hourbook::phrases().LNGANOTHERWEEK, platform::dialogs::vbYes);
  click("cmdOK");
}

QStringList Journey::rows() const {
  const auto* list = qobject_cast<QAbstractItemView*>(control("exsThisWeek"));
  if (!list) return {};
  QStringList found;
  for (int row = 0; row < list->model()->rowCount(); ++row) {
    QStringList cells;
    for (int column = 0; column < 7; ++column)
      cells.append(list->model()->index(row, column).data().toString());
    found.append(cells.join(u'|'));
  }
  return found;
}

QStringList Journey::column(int number) const {
  QStringList cells;
  for (const QString& row : rows()) cells.append(row.section(u'|', number, number));
  return cells;
}

QStringList Journey::subjects() const {
  return column(0);
}

QStringList Journey::statuses() const {
  return column(6);
}

int Journey::reportsStored() const {
  return sql(u"select count(*) from tblReports"_s).value(0).toInt();
}

QStringList Journey::newReports() const {
  return sql(
      u"select strSubject from tblReports order by intReportID limit -1 offset %1"_s.arg(sampleReports_));
}

outside::Event Journey::event(const QString& uid, const QString& recurrenceId) const {
  QList<outside::Event> found;
  for (const outside::Event& event : events())
    if (event.uid == uid && event.recurrenceId == recurrenceId) found.append(event);
  EXPECT_EQ(found.size(), 1) << qPrintable(uid + u' ' + recurrenceId);
  return found.value(0);
}

}  // namespace tests
