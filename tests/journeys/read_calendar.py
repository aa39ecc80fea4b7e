#!/usr/bin/env python3
"""Prints what another program finds in a calendar: a line an event, fields separated by tabs.

usage: read_calendar.py FOLDER_OR_FILE

UID, RECURRENCE-ID, DTSTART, SUMMARY, CATEGORIES (joined by "|"), X-HOURBOOK-BILLINGINFORMATION, CLASS, minutes,
RRULE ("yes" where there is one), DESCRIPTION, as python3-icalendar reads them.
"""
import pathlib
import sys

import icalendar


def text(value):
    return str(value).replace("\\", "\\\\").replace("\t", " ").replace("\r", "").replace("\n", "\\n")


def moment(event, name):
    prop = event.get(name)
    if prop is None:
        return ""
    value = prop.dt
    return value.strftime("%Y%m%dT%H%M%S") if hasattr(value, "hour") else value.strftime("%Y%m%d")


def minutes(event):
    if "DURATION" in event:
        length = event["DURATION"].dt
    elif "DTEND" in event:
        length = event["DTEND"].dt - event["DTSTART"].dt
    else:
        return ""
    return int(length.total_seconds() // 60)


def categories(event):
    props = event.get("CATEGORIES", [])
    props = props if isinstance(props, list) else [props]
    return "|".join(text(name) for prop in props for name in prop.cats)


def main():
    root = pathlib.Path(sys.argv[1])
    for path in sorted(root.glob("*.ics")) if root.is_dir() else [root]:
        for event in icalendar.Calendar.from_ical(path.read_bytes()).walk("VEVENT"):
            print(
                text(event.get("UID", "")),
                moment(event, "RECURRENCE-ID"),
                moment(event, "DTSTART"),
                text(event.get("SUMMARY", "")),
                categories(event),
                text(event.get("X-HOURBOOK-BILLINGINFORMATION", "")),
                text(event.get("CLASS", "")),
                minutes(event),
                "yes" if "RRULE" in event else "",
                text(event.get("DESCRIPTION", "")),
                sep="\t",
            )


main()
