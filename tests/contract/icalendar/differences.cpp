#include "tests/contract/icalendar/differences.h"

#include <QHash>

namespace {

const QHash<QString, QString>& eventReasons() {
  static const QHash<QString, QString> reasons{
      {u"ics-corpus/apple/ical4j__13-MoonPhase.ics"_qs,
       u"Its lines end with CR alone; the other reader finds no event."_qs},
      {u"ics-corpus/apple/ical4j__OZMovies.ics"_qs,
       u"A quotation mark behind a backslash: the other reader keeps the backslash."_qs},
      {u"ics-corpus/broken/icalendar__big_bad_calendar.ics"_qs,
       u"Events without any property; the other reader lists none."_qs},
      {u"ics-corpus/broken/icalendar__broken_ical.ics"_qs,
       u"The start has an empty parameter; the other reader drops it."_qs},
      {u"ics-corpus/broken/icalendar__issue_100_transformed_doctests_into_unittests.ics"_qs,
       u"An event without any property; the other reader lists none."_qs},
      {u"ics-corpus/exchange/ical__office_365_invalid_timezone.ics"_qs,
       u"Its zone is defined nowhere: ours is the viewer's, theirs the machine's."_qs},
      {u"ics-corpus/other/ical4j__1106817412.ics"_qs,
       u"Broken UTF-8: ours is Windows-1252, theirs signs of replacement."_qs},
      {u"ics-corpus/thunderbird/Radicale__event1_y2040.ics"_qs,
       u"The other reader's zones end in 2037; summer time does not."_qs},
      {u"ics-corpus/thunderbird/thunderbird__importLatin1.ics"_qs,
       u"Written in ISO-8859-1: the other reader shows signs of replacement."_qs}};
  return reasons;
}

const QHash<QString, QString>& countReasons() {
  static const QHash<QString, QString> reasons{
      {u"icalendar/Office-2012-owa.ics"_qs,
       u"Zones by the names that Windows shows: the other reader knows none of them."_qs},
      {u"icalendar/exchange_whole_day_moved_recurrence.ics"_qs,
       u"UNTIL in UTC of an all-day series names the last day where the calendar was kept."_qs},
      {u"ics-corpus/apple/node-ical__mixed-timezone-handling.ics"_qs,
       u"A day without a zone: which of the days are within the period depends on the viewer."_qs},
      {u"ics-corpus/apple/node-ical__tentative-apple-calendar.ics"_qs, u"We hide what is cancelled."_qs},
      {u"ics-corpus/exchange/icalendar__issue_165_missing_event.ics"_qs,
       u"BYDAY with blanks behind its commas: the other reader takes the first day alone."_qs},
      {u"ics-corpus/exchange/recurring-ical-events__issue_28_rrule_with_UTC_endinginZ.ics"_qs,
       u"UNTIL in UTC of an all-day series names the last day where the calendar was kept."_qs},
      {u"ics-corpus/kde/kcalendarcore__KAlarm_TestCase04.ics"_qs,
       u"A rule by the minute: the other reader gives one occurrence a day."_qs},
      {u"ics-corpus/kde/kcalendarcore__KOrganizer_3.2.ics"_qs,
       u"A start that does not suit its rule counts in COUNT."_qs},
      {u"ics-corpus/other/kcalendarcore__KOrganizer_3.1.ics"_qs,
       u"A start that does not suit its rule counts in COUNT."_qs},
      {u"ics-corpus/other/ical.js__rdate_exdate.ics"_qs,
       u"An EXDATE that is a date takes all occurrences of that day."_qs},
      {u"ics-corpus/other/node-ical__duplicate-rrule-sequence.ics"_qs,
       u"Two versions of one series: we show both, the other reader the newer one."_qs}};
  return reasons;
}

}  // namespace

QString whyEventsDiffer(const QString& file) {
  return eventReasons().value(file);
}

QString whyCountsDiffer(const QString& file) {
  return countReasons().value(file);
}
