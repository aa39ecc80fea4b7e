#include "companions/sampledata/samplecalendar.h"

#include "companions/sampledata/icstext.h"
#include "companions/sampledata/samplelists.h"

#include <random>

namespace sampledata {

using namespace Qt::StringLiterals;

namespace {

/// Subjects as colleagues of several countries write them.
const QStringList& subjects() {
  static const QStringList list{u"Sprint planning"_s,
                                u"Design review: order form"_s,
                                u"Fehleranalyse Schnittstelle"_s,
                                u"Kundengespräch, Angebot und nächste Schritte"_s,
                                u"Avstämning med säljteamet"_s,
                                u"Felsökning på plats"_s,
                                u"Réunion de lancement"_s,
                                u"Préparation de la démo"_s,
                                u"Συνάντηση προόδου"_s,
                                u"Toplantı: ışıklandırma ve güç"_s,
                                u"Møte om leveranse"_s,
                                u"Reunión con el cliente"_s,
                                u"Вопросы по отчёту"_s,
                                u"Ügyféltalálkozó"_s,
                                u"Data migration, second try"_s,
                                u"Pair programming"_s,
                                u"Write-up of the workshop"_s,
                                u"Call: rates & terms"_s};
  return list;
}

const QStringList& bodies() {
  static const QStringList list{
      QString(),
      QString(),
      QString(),
      u"Room 4, second floor."_s,
      u"Agenda:\n1. Status\n2. Risks; open points, owners\n3. Next steps"_s,
      u"Bitte Unterlagen mitbringen: Pläne, Maße und Stückliste."_s,
      u"Dial-in as usual.\n\nNotes from last time:\nthe import = 2 hours, the check = 1 hour."_s};
  return list;
}

/// Numbers that come out alike on every machine (the library's distributions differ between makers).
class Dice {
 public:
  explicit Dice(quint32 seed) : engine_(seed) {}
  int below(int n) { return static_cast<int>(engine_() % static_cast<quint32>(n)); }
  bool chance(int percent) { return below(100) < percent; }
  QString one(const QStringList& list) { return list[below(static_cast<int>(list.size()))]; }

 private:
  std::mt19937 engine_;
};

struct Appointment {
  QString subject, body;
  QDateTime start;  // on the wall clock of the plan's zone
  int minutes = 60;
  QStringList values;  // of the lists, in their order; empty where not marked
  QDateTime reported;  // invalid: not yet
  bool floating = false;
  bool isPrivate = false;
};

class Maker {
 public:
  explicit Maker(const Plan& plan) : plan_(plan), dice_(plan.seed) {}

  SampleCalendar make() {
    for (int offset = -45; offset <= 45; ++offset) {
      const QDate day = plan_.today.addDays(offset);
      if (offset == 0)
        busyToday();
      else if (day.dayOfWeek() <= 5)
        workday(day);
    }
    dailySeries();
    markedSeries();
    guestSeries();
    wholeDays();
    return result_;
  }

 private:
  QByteArray zoneId() const { return plan_.zone.id(); }

  QStringList fullMarking() {
    QStringList values;
    for (const MetaList& list : metaLists()) {
      const ListValue& value = list.values[dice_.below(static_cast<int>(list.values.size()))];
      values.append(value.enabled ? value.name : list.values.first().name);
    }
    return values;
  }

  void busyToday() {
    // the first view of a new user is today's marked appointments: whatever the weekday, there are some
    static constexpr int minutes[] = {60, 90, 45, 120, 150, 30};
    static const QTime times[] = {QTime(8, 30), QTime(10, 0),  QTime(11, 30),
                                  QTime(13, 0), QTime(14, 30), QTime(16, 30)};
    for (int i = 0; i < 6; ++i) {
      Appointment a{dice_.one(subjects()), dice_.one(bodies()), plan_.today.startOfDay(Qt::UTC), 0, {}, {}};
      a.start.setTime(times[i]);
      a.minutes = minutes[i];
      if (i < 5) a.values = fullMarking();
      add(a);
    }
  }

  void workday(const QDate& day) {
    int minute = 8 * 60 + 15 * dice_.below(5);
    const int count = 2 + dice_.below(4);
    for (int i = 0; i < count && minute < 17 * 60; ++i) {
      Appointment a;
      a.subject = dice_.one(subjects());
      a.body = dice_.one(bodies());
      a.minutes = 15 * (2 + dice_.below(9));
      a.start = QDateTime(day, QTime(minute / 60, minute % 60), Qt::UTC);
      a.floating = dice_.chance(8);
      a.isPrivate = dice_.chance(5);
      if (dice_.chance(75)) a.values = fullMarking();
      if (!a.values.isEmpty() && dice_.chance(15)) a.values[1 + dice_.below(2)].clear();
      const bool complete = !a.values.isEmpty() && !a.values.contains(QString());
      if (complete && !a.isPrivate && day < plan_.today.addDays(-20) && dice_.chance(85))
        a.reported = QDateTime(day.addDays(8 - day.dayOfWeek()), QTime(17, 5), Qt::UTC);
      add(a);
      minute += a.minutes + (dice_.chance(20) ? -15 : 15 * dice_.below(4));  // a fifth overlaps the next
    }
  }

  QString nextUid() {
    return u"sample-%1-%2@hourbook.invalid"_s.arg(plan_.seed).arg(++number_, 4, 10, QChar(u'0'));
  }

  void identity(IcsText& ics, const QString& uid, const QString& subject) {
    ics.text("UID", uid);
    ics.raw("DTSTAMP", plan_.today.toString(u"yyyyMMdd'T000000Z'"_s).toLatin1());
    ics.text("SUMMARY", subject);
  }

  void marking(IcsText& ics, const QStringList& values) {
    QByteArrayList names;
    QString text;
    for (const QString& value : values)
      if (!value.isEmpty()) {
        names.append(escapedText(value));
        text += plan_.listSeparator + value;
      }
    if (names.isEmpty()) return;
    ics.raw("CATEGORIES", names.join(','));
    ics.text("X-HOURBOOK-CATEGORIES", text);
  }

  void add(const Appointment& a) {
    const QString uid = nextUid();
    const QByteArray zone = a.floating ? QByteArray() : zoneId();
    IcsText ics;
    ics.begin("VEVENT");
    identity(ics, uid, a.subject);
    ics.moment("DTSTART", a.start, zone);
    ics.moment("DTEND", a.start.addSecs(a.minutes * 60), zone);
    if (!a.body.isEmpty()) ics.text("DESCRIPTION", a.body);
    if (a.isPrivate) ics.raw("CLASS", "PRIVATE");
    marking(ics, a.values);
    if (a.reported.isValid())
      ics.text("X-HOURBOOK-BILLINGINFORMATION", a.reported.toString(u"yyyy-MM-dd HH:mm:ss"_s));
    ics.end("VEVENT");
    keep(uid, ics);
    if (a.reported.isValid())
      result_.posted.append({a.subject, a.body, a.start, a.minutes / 60.0, a.values, a.reported});
  }

  void keep(const QString& uid, IcsText& ics) {
    result_.files.append({uid.section(u'@', 0, 0) + u".ics"_s, ics.finish()});
  }

  QDate mondayOf(const QDate& day) const { return day.addDays(1 - day.dayOfWeek()); }

  void dailySeries() {
    const QString uid = nextUid();
    const QDateTime first(mondayOf(plan_.today.addDays(-42)), QTime(9, 0), Qt::UTC);
    const QDateTime moved = first.addDays(7 * 5 + 2);
    IcsText ics;
    ics.begin("VEVENT");
    identity(ics, uid, u"Daily stand-up"_s);
    ics.moment("DTSTART", first, zoneId());
    ics.moment("DTEND", first.addSecs(15 * 60), zoneId());
    ics.raw("RRULE", "FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR;COUNT=65");
    ics.moment("EXDATE", first.addDays(7 * 3 + 1), zoneId());
    ics.end("VEVENT");
    ics.begin("VEVENT");
    identity(ics, uid, u"Daily stand-up (later, with the customer)"_s);
    ics.moment("RECURRENCE-ID", moved, zoneId());
    ics.moment("DTSTART", moved.addSecs(2 * 3600), zoneId());
    ics.moment("DTEND", moved.addSecs(2 * 3600 + 30 * 60), zoneId());
    ics.end("VEVENT");
    keep(uid, ics);
  }

  void markedSeries() {
    const QString uid = nextUid();
    const QDateTime first(mondayOf(plan_.today.addDays(-42)).addDays(2), QTime(15, 0), Qt::UTC);
    const QDateTime cancelled = first.addDays(7 * 4);
    IcsText ics;
    ics.begin("VEVENT");
    identity(ics, uid, u"Projekt-Jour-fixe"_s);
    ics.moment("DTSTART", first, zoneId());
    ics.raw("DURATION", "PT1H30M");
    ics.raw("RRULE",
            "FREQ=WEEKLY;UNTIL=" + plan_.today.addDays(60).toString(u"yyyyMMdd'T235959Z'"_s).toLatin1());
    marking(ics, {u"Müller Maschinenbau"_s, u"ERP roll-out"_s, u"Meeting"_s});
    ics.text("DESCRIPTION", u"Stand, Risiken, nächste Schritte"_s);
    ics.end("VEVENT");
    ics.begin("VEVENT");
    identity(ics, uid, u"Projekt-Jour-fixe"_s);
    ics.moment("RECURRENCE-ID", cancelled, zoneId());
    ics.moment("DTSTART", cancelled, zoneId());
    ics.raw("DURATION", "PT1H30M");
    ics.raw("STATUS", "CANCELLED");
    ics.end("VEVENT");
    keep(uid, ics);
  }

  void guestSeries() {
    // invited by somebody whose program brings its own zone definition under a Windows name
    const QString uid = nextUid();
    const QDateTime first(mondayOf(plan_.today.addDays(-28)).addDays(3), QTime(8, 0), Qt::UTC);
    IcsText ics;
    ics.begin("VTIMEZONE");
    ics.raw("TZID", "Pacific Standard Time");
    ics.begin("STANDARD");
    ics.raw("DTSTART", "16010101T020000");
    ics.raw("TZOFFSETFROM", "-0700");
    ics.raw("TZOFFSETTO", "-0800");
    ics.raw("RRULE", "FREQ=YEARLY;INTERVAL=1;BYDAY=1SU;BYMONTH=11");
    ics.end("STANDARD");
    ics.begin("DAYLIGHT");
    ics.raw("DTSTART", "16010101T020000");
    ics.raw("TZOFFSETFROM", "-0800");
    ics.raw("TZOFFSETTO", "-0700");
    ics.raw("RRULE", "FREQ=YEARLY;INTERVAL=1;BYDAY=2SU;BYMONTH=3");
    ics.end("DAYLIGHT");
    ics.end("VTIMEZONE");
    ics.begin("VEVENT");
    identity(ics, uid, u"Vendor sync"_s);
    ics.moment("DTSTART", first, "Pacific Standard Time");
    ics.moment("DTEND", first.addSecs(45 * 60), "Pacific Standard Time");
    ics.raw("RRULE", "FREQ=WEEKLY;INTERVAL=2;COUNT=8");
    ics.raw("X-MICROSOFT-CDO-BUSYSTATUS", "BUSY");
    ics.raw("X-MICROSOFT-CDO-INSTTYPE", "1");
    ics.end("VEVENT");
    keep(uid, ics);
  }

  void wholeDay(const QString& subject, const QDate& from, int days, const QStringList& values) {
    const QString uid = nextUid();
    IcsText ics;
    ics.begin("VEVENT");
    identity(ics, uid, subject);
    ics.day("DTSTART", from);
    ics.day("DTEND", from.addDays(days));
    ics.raw("TRANSP", "TRANSPARENT");
    marking(ics, values);
    ics.end("VEVENT");
    keep(uid, ics);
  }

  void wholeDays() {
    wholeDay(u"Semester"_s, mondayOf(plan_.today.addDays(-30)), 5, {});
    wholeDay(u"Trade fair"_s, mondayOf(plan_.today.addDays(20)).addDays(1), 3,
             {u"Internal"_s, u"Training"_s, u"Travel"_s});
    wholeDay(u"Γενέθλια Μαρίας"_s, plan_.today.addDays(4), 1, {});
  }

  Plan plan_;
  Dice dice_;
  int number_ = 0;
  SampleCalendar result_;
};

}  // namespace

SampleCalendar makeCalendar(const Plan& plan) {
  return Maker(plan).make();
}

}  // namespace sampledata
