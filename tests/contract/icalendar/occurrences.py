"""What recurring-ical-events shows of a calendar folder: `occurrences.py FOLDER FROM TO`, days as 2024-02-05.

A line an occurrence that begins between the two days: "start end SUMMARY" on Stockholm's clock, the last day of a whole
day as its end.
"""
import datetime
import pathlib
import sys
import zoneinfo

import icalendar
import recurring_ical_events

HOME = zoneinfo.ZoneInfo("Europe/Stockholm")


def at_home(value):
    return value.replace(tzinfo=HOME) if value.tzinfo is None else value.astimezone(HOME)


def line(event):
    start = event["DTSTART"].dt
    end = event["DTEND"].dt if "DTEND" in event else start + event["DURATION"].dt
    if isinstance(start, datetime.datetime):
        times = (f"{at_home(start):%Y-%m-%d %H:%M}", f"{at_home(end):%Y-%m-%d %H:%M}")
    else:
        times = (f"{start:%Y-%m-%d}", f"{end - datetime.timedelta(days=1):%Y-%m-%d}")
    return f"{times[0]} {times[1]} {event.get('SUMMARY', '')}"


def main():
    folder, begin, end = pathlib.Path(sys.argv[1]), *map(datetime.date.fromisoformat, sys.argv[2:])
    for path in sorted(folder.glob("*.ics")):
        calendar = icalendar.Calendar.from_ical(path.read_bytes())
        for event in recurring_ical_events.of(calendar).between(begin, end):
            print(line(event))


main()
