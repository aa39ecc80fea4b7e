"""What python3-icalendar finds in calendar files: `events.py FILE...`, one process for all.

For each file: "FILE name", then either "FAILED reason" or a line an event, fields separated by tabs:
    UID  RECURRENCE-ID  start  SUMMARY
A start is in seconds of UTC ("@1700000000"), where the value itself says which moment that is (UTC, or a zone that
the other reader knows), else as written ("20240219" or "20240219T090000"). Then, where recurring-ical-events follows
the file's series: "COUNT from number", of the occurrences that begin in the 400 days from the first day on that the
file names (as UTC has it); "NOCOUNT reason" else.
"""
import datetime
import re
import sys

import icalendar
import recurring_ical_events

WINDOW = datetime.timedelta(days=400)


def text(value):
    return re.sub(r"[\t\r\n]+", " ", str(value)).strip()


def moment(event, name):
    prop = event.get(name)
    if prop is None:
        return ""
    if isinstance(prop, list):
        prop = prop[0]
    value = prop.dt
    if not isinstance(value, datetime.datetime):
        return value.strftime("%Y%m%d")
    if value.tzinfo is None:
        return value.strftime("%Y%m%dT%H%M%S")
    return f"@{int(value.timestamp())}"


def first(event, name):
    value = event.get(name, "")
    return text(value[0] if isinstance(value, list) else value)


def date_of(value):
    return value.date() if isinstance(value, datetime.datetime) else value


def show(path):
    print("FILE", path)
    with open(path, "rb") as file:
        data = file.read()
    try:
        calendars = icalendar.Calendar.from_ical(data, multiple=True)
        lines = []
        for calendar in calendars:
            for event in calendar.walk("VEVENT"):
                lines.append("\t".join([first(event, "UID"), moment(event, "RECURRENCE-ID"), moment(event, "DTSTART"),
                                        first(event, "SUMMARY")]))
    except Exception as failure:  # whatever it cannot read
        print("FAILED", type(failure).__name__, text(failure)[:100])
        return
    print("\n".join(lines))
    try:
        days = [date_of(event["DTSTART"].dt) for calendar in calendars for event in calendar.walk("VEVENT")]
        if not days:
            return
        begin = datetime.datetime.combine(min(days), datetime.time(), datetime.timezone.utc)
        found = [event for calendar in calendars
                 for event in recurring_ical_events.of(calendar).between(begin, begin + WINDOW)]
        print("COUNT", min(days).isoformat(), sum(date_of(event["DTSTART"].dt) >= min(days) for event in found))
    except Exception as failure:
        print("NOCOUNT", type(failure).__name__, text(failure)[:100])


if __name__ == "__main__":
    for name in sys.argv[1:]:
        show(name)
