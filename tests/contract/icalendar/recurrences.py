"""Random series and what they show, worked out with dateutil and zoneinfo: `recurrences.py SEED COUNT`.

A case on the standard output is:
    CASE number viewer's-zone from to    (both in seconds of UTC, both included)
    ... lines of an event and its overrides ...
    EXPECT
    start end O|X                        (seconds of UTC; X: an override), in order
    DONE

What is expected: a series is followed on the wall clock of its start; its start is its first occurrence and counts,
whether it suits the rule or not; a reading that the clocks skip is taken with the offset before, and is left out
when the series shows that moment under its own name too; of a reading that comes twice the first; the length of an
event with DTEND is exact, days of a DURATION are days on the wall clock.

Said to dateutil in other words: a rule that leaves its day to its start. Left out because dateutil says something
else than the format's own text:
- BYSETPOS with a weekly rule whose start is not the first day of its week: dateutil numbers the days of the first
  week from the start on;
- numbered and plain weekdays in one BYDAY ("MO,2TU"): dateutil wants a day to be both at once;
- BYSETPOS with rules by the hour or finer: we refuse them;
- numbers in BYDAY together with BYWEEKNO, BYYEARDAY with months, BYMONTHDAY with weeks: forbidden, we refuse them.
"""
import random
import sys
from datetime import date, datetime, timedelta, timezone
from itertools import takewhile
from zoneinfo import ZoneInfo

from dateutil import rrule

ZONES = ["Europe/Stockholm", "America/New_York", "America/St_Johns", "Australia/Lord_Howe", "Africa/Casablanca",
         "America/Sao_Paulo", "Pacific/Apia", "UTC"]
DAYS = ["MO", "TU", "WE", "TH", "FR", "SA", "SU"]
UTC = timezone.utc
EPOCH = datetime(1970, 1, 1)


def instant(wall, zone):
    """Seconds of UTC of a reading; fold=0 takes a skipped one with the offset before."""
    return int(wall.replace(tzinfo=ZoneInfo(zone), fold=0).timestamp())


def reading(seconds, zone):
    return datetime.fromtimestamp(seconds, ZoneInfo(zone)).replace(tzinfo=None, fold=0)


def switches(zone):
    found, day = [], datetime(2005, 1, 1)
    while day.year < 2031:
        before, after = day, day + timedelta(days=1)
        tz = ZoneInfo(zone)
        if before.replace(tzinfo=UTC).astimezone(tz).utcoffset() != after.replace(tzinfo=UTC).astimezone(tz).utcoffset():
            found.append(day)
        day = after
    return found


SWITCHES = {zone: switches(zone) for zone in ZONES}


def text(wall):
    return wall.strftime("%Y%m%dT%H%M%S")


def some(r, values, most):
    return sorted(r.sample(values, r.randint(1, most)))


def numbers(r, low, high, most):
    values = {r.randint(low, high) for _ in range(r.randint(1, most))}
    return sorted(values)


class Rule:
    """A random rule as the file has it and as dateutil takes it."""

    def __init__(self, r, start, all_day):
        self.parts, self.options = [], {}
        kinds = ["DAILY"] * 3 + ["WEEKLY"] * 5 + ["MONTHLY"] * 4 + ["YEARLY"] * 2
        if not all_day:
            kinds += ["HOURLY", "MINUTELY", "SECONDLY"]
        self.kind = r.choice(kinds)
        self.sub_daily = self.kind in ("HOURLY", "MINUTELY", "SECONDLY")
        self.parts.append("FREQ=" + self.kind)
        interval = r.choice([1, 1, 1, 2, 3, 5])
        if self.kind == "MINUTELY":
            interval = r.choice([20, 30, 45, 60, 90])
        if self.kind == "SECONDLY":
            interval = r.choice([1800, 3000, 5400])
        if interval > 1:
            self.take("INTERVAL", "interval", interval)
        self.wkst = r.choice(DAYS) if r.random() < 0.3 else "MO"
        if self.wkst != "MO":
            self.parts.append("WKST=" + self.wkst)
        self.options["wkst"] = DAYS.index(self.wkst)
        self.by(r, start, all_day)

    def take(self, name, option, value):
        shown = ",".join(map(str, value)) if isinstance(value, list) else str(value)
        self.parts.append(f"{name}={shown}")
        self.options[option] = value

    def weekdays(self, r, numbered):
        shown, values = [], []
        numbered = numbered and r.random() < 0.7
        for day in some(r, DAYS, 3):
            nth = r.choice([1, 2, 3, 4, 5, -1, -2]) if numbered else 0
            shown.append((str(nth) if nth else "") + day)
            weekday = getattr(rrule, day)
            values.append(weekday(nth) if nth else weekday)
        self.parts.append("BYDAY=" + ",".join(shown))
        self.options["byweekday"] = values

    def by(self, r, start, all_day):
        chance = r.random
        # dateutil searches up to the year 9999 for what never comes: of what may be rare enough one part at most
        if self.kind == "WEEKLY":
            if chance() < 0.7:
                self.weekdays(r, False)
            if chance() < 0.1:
                self.take("BYMONTH", "bymonth", numbers(r, 1, 12, 6))
        elif self.kind == "MONTHLY":
            pick = chance()
            if pick < 0.4:
                self.weekdays(r, True)
            elif pick < 0.7:
                self.take("BYMONTHDAY", "bymonthday", [n for n in numbers(r, -31, 31, 4) if n] or [15])
            elif chance() < 0.2 and start.day < 29:
                self.take("BYMONTH", "bymonth", numbers(r, 1, 12, 6))
                self.options["bymonthday"] = start.day
        elif self.kind == "YEARLY":
            pick = chance()
            if pick < 0.2:
                self.take("BYWEEKNO", "byweekno", [n for n in numbers(r, -53, 53, 3) if n] or [1])
                if chance() < 0.6:
                    self.weekdays(r, False)
                else:  # dateutil would take every day of the week, the format the weekday of the start
                    self.options["byweekday"] = start.weekday()
            elif pick < 0.3:
                self.take("BYYEARDAY", "byyearday", [n for n in numbers(r, -366, 366, 4) if n] or [100])
            elif pick < 0.6:
                self.take("BYMONTH", "bymonth", numbers(r, 1, 12, 3))
                if chance() < 0.6:
                    self.weekdays(r, True)
                else:
                    self.take("BYMONTHDAY", "bymonthday", [n for n in numbers(r, -28, 28, 3) if n] or [15])
            elif pick < 0.7:
                self.weekdays(r, True)
        elif self.sub_daily:
            pick = chance()
            if pick < 0.3:
                self.weekdays(r, False)
            elif pick < 0.5:
                self.take("BYMONTHDAY", "bymonthday", numbers(r, 1, 28, 8))
            elif pick < 0.8 and self.options.get("interval", 1) in (1, 5, 20, 30):
                self.take("BYHOUR", "byhour", numbers(r, 0, 23, 3))
            if self.kind == "HOURLY" and chance() < 0.3:
                self.take("BYMINUTE", "byminute", [n * 15 for n in numbers(r, 0, 3, 2)])
            return
        if all_day:
            return
        if chance() < 0.12:
            self.take("BYHOUR", "byhour", numbers(r, 0, 23, 3))
        if chance() < 0.12:
            self.take("BYMINUTE", "byminute", [n * 15 for n in numbers(r, 0, 3, 2)])
        on_beat = self.kind != "WEEKLY" or start.weekday() == DAYS.index(self.wkst)
        if on_beat and chance() < 0.15:
            self.take("BYSETPOS", "bysetpos", sorted({r.choice([1, -1]), r.choice([1, -1, 2, -3])}))

    def starts(self, first, last, count, until):
        """The readings up to `last`; the first one is the start itself."""
        plain = rrule.rrule(getattr(rrule, self.kind), dtstart=first, **self.options)
        end = min(last, until) if until else last
        found = []
        for steps, wall in enumerate(takewhile(lambda w: w <= end, plain)):
            if steps > 20000:
                raise ValueError("too long")
            if count and len(found) >= count:
                break
            if not found and wall != first:
                found.append(first)
                if count == 1:
                    break
            found.append(wall)
        return found or [first]


class Case:
    def __init__(self, r, number):
        self.r, self.number, self.lines = r, number, []
        self.zone = r.choice(ZONES + ["floating"])
        self.viewer = r.choice(ZONES)
        self.all_day = r.random() < 0.2
        self.clock = self.viewer if self.all_day or self.zone == "floating" else self.zone
        self.overrides = []
        self.choose_start()

    def choose_start(self):
        r = self.r
        near = SWITCHES[self.clock]
        focus = r.choice(near) if near and r.random() < 0.7 else datetime(2005, 1, 1) + timedelta(r.randint(0, 9000))
        back = r.choice([0, 1, 2, 7, 30, 200, 400, 1200])
        day = focus - timedelta(days=r.randint(0, back)) + timedelta(days=r.choice([-1, 0, 1]))
        if self.all_day:
            self.start = datetime(day.year, day.month, day.day)
        else:
            hour = r.choice([0, 0, 1, 1, 2, 2, 3, 9, 13, 22, 23])
            self.start = day.replace(hour=hour, minute=r.choice([0, 0, 15, 30, 45]), second=r.choice([0, 0, 0, 7]))
        width = timedelta(days=r.choice([3, 10, 40]))
        self.window = (focus - width, focus + width)

    def stay_near(self):
        """A series by the hour or finer: begun a few days before, looked at for a few days."""
        middle = self.window[0] + (self.window[1] - self.window[0]) / 2
        self.start = self.start.replace(year=middle.year, month=middle.month, day=middle.day)
        self.start -= timedelta(days=self.r.choice([0, 1, 3, 20]))
        self.window = (middle - timedelta(days=2), middle + timedelta(days=2))

    def dated(self, name, wall, more=""):
        if self.all_day:
            return f"{name}{more};VALUE=DATE:{wall:%Y%m%d}"
        if self.zone == "UTC":
            return f"{name}{more}:{text(wall)}Z"
        if self.zone == "floating":
            return f"{name}{more}:{text(wall)}"
        return f"{name}{more};TZID={self.zone}:{text(wall)}"

    def seconds(self, wall):
        return instant(wall, self.clock)

    def choose_length(self):
        r = self.r
        if self.all_day:
            self.days, self.exact = r.choice([1, 1, 2, 5]), 0
            self.lines.append(self.dated("DTEND", self.start + timedelta(days=self.days)))
            return
        self.days, self.exact = 0, 0
        pick = r.random()
        if pick < 0.5:
            end = self.start + timedelta(minutes=r.choice([15, 30, 60, 90, 480, 1440, 1500]), seconds=r.choice([0, 0, 13]))
            self.exact = max(0, self.seconds(end) - self.seconds(self.start))
            self.lines.append(self.dated("DTEND", end))
        elif pick < 0.9:
            self.days, self.exact = r.choice([0, 0, 1, 2]), r.choice([900, 3600, 5400, 86400])
            self.lines.append(f"DURATION:P{f'{self.days}D' if self.days else ''}T{self.exact}S")

    def near(self, walls):
        """Those of the period looked at and a while around it, else all."""
        room = timedelta(days=50)
        close = [w for w in walls if self.window[0] - room <= w <= self.window[1] + room]
        return sorted(close or walls)

    def choose_end_of_rule(self):
        """The end of the rule: COUNT, or UNTIL in each of its forms as a reading on the series' clock."""
        r, self.count, self.until = self.r, None, None
        pick = r.random()
        if pick < 0.25:
            self.count = r.choice([1, 2, 3, 5, 10, 50])
            self.rule.parts.append(f"COUNT={self.count}")
        elif pick < 0.6:
            near = r.choice(self.near(self.plain))
            form = r.random()
            if self.all_day or form < 0.3:
                self.until = datetime(near.year, near.month, near.day) + timedelta(days=1, seconds=-1)
                self.rule.parts.append(f"UNTIL={near:%Y%m%d}")
            elif form < 0.5 and self.zone != "UTC":
                self.until = near
                self.rule.parts.append("UNTIL=" + text(near))
            else:
                seconds = self.seconds(near)
                self.until = reading(seconds, self.clock)
                self.rule.parts.append(f"UNTIL={text(EPOCH + timedelta(seconds=seconds))}Z")
        r.shuffle(self.rule.parts)

    def add_more_starts(self):
        r = self.r
        for _ in range(r.choice([0, 0, 0, 1, 2])):
            wall = r.choice(self.near(self.plain)) + timedelta(days=r.randint(-5, 5), hours=0 if self.all_day else r.randint(0, 5))
            wall = max(wall, self.start)
            self.all.setdefault(wall, None)
            if self.all_day or r.random() < 0.5:
                self.lines.append(self.dated("RDATE", wall))
                continue
            length = r.choice([61, 1801, 7199, 90001])
            utc = wall.replace() if self.zone == "UTC" else None
            if r.random() < 0.5:
                end = wall + timedelta(seconds=length)
                self.all[wall] = max(0, self.seconds(end) - self.seconds(wall))
                value = f"{text(wall)}{'Z' if utc else ''}/{text(end)}{'Z' if utc else ''}"
            else:
                self.all[wall] = length
                value = f"{text(wall)}{'Z' if utc else ''}/PT{length}S"
            head = "RDATE;VALUE=PERIOD" + ("" if self.zone in ("UTC", "floating") else f";TZID={self.zone}")
            self.lines.append(f"{head}:{value}")

    def named(self, name, wall, more=""):
        """A reading of the series in one of the forms in which programs name it."""
        if self.all_day and self.r.random() < 0.4:
            return f"{name}{more};TZID=America/New_York:{text(wall)}"  # Exchange: midnight of that date
        if not self.all_day and self.zone != "floating" and self.r.random() < 0.3:
            # a skipped reading has no name of its own in UTC; see the names of the moment below
            if reading(self.seconds(wall), self.clock) == wall:
                return f"{name}{more}:{text(EPOCH + timedelta(seconds=self.seconds(wall)))}Z"
        return self.dated(name, wall, more)

    def exclude(self):
        r = self.r
        for _ in range(r.choice([0, 0, 1, 1, 2, 4])):
            wall = r.choice(self.near(list(self.all)))
            if not self.all_day and r.random() < 0.15:  # all of a day
                self.lines.append(f"EXDATE;VALUE=DATE:{wall:%Y%m%d}")
                for other in [w for w in self.all if w.date() == wall.date()]:
                    del self.all[other]
            else:
                self.lines.append(self.named("EXDATE", wall))
                moment = self.seconds(wall) if self.lines[-1].endswith("Z") else None  # by whatever name
                for other in [w for w in self.all if w == wall or self.seconds(w) == moment]:
                    del self.all[other]
            if not self.all:
                return

    def override(self):
        r, futures = self.r, []
        walls = self.near(list(self.all))
        for wall in r.sample(walls, min(len(walls), r.choice([0, 0, 1, 2, 3]))):
            if wall not in self.all:
                continue
            follows = r.random() < 0.2 and not self.rule.sub_daily
            moved = wall + timedelta(days=r.choice([0, 0, 1, -1, 12, -12, 45]),
                                     minutes=0 if self.all_day else r.choice([0, 15, -60, 300]))
            minutes = 1440 * r.randint(1, 3) if self.all_day else r.choice([0, 20, 75])
            name = self.named("RECURRENCE-ID", wall, ";RANGE=THISANDFUTURE" if follows else "")
            cancelled = r.random() < 0.15
            lines = ["BEGIN:VEVENT", "UID:series", name, self.dated("DTSTART", moved),
                     f"DURATION:P{minutes // 1440}D" if self.all_day else f"DURATION:PT{minutes}M"]
            if cancelled:
                lines.append("STATUS:CANCELLED")
            self.overrides.append(lines + ["END:VEVENT"])
            if follows:
                futures.append((wall, moved - wall, minutes, cancelled))
            moment = self.seconds(wall) if name.endswith("Z") else None
            for other in [w for w in self.all if w == wall or self.seconds(w) == moment]:
                del self.all[other]
            if not cancelled:
                start = self.seconds(moved)
                end = self.seconds(moved + timedelta(minutes=minutes)) if self.all_day else start + minutes * 60
                self.expected.append((start, end, "X"))
        return sorted(futures)

    def work_out(self):
        r = self.r
        self.rule = Rule(r, self.start, self.all_day)
        if self.rule.sub_daily:
            self.stay_near()
        last = self.window[1] + timedelta(days=2 if self.rule.sub_daily else 60)
        self.plain = self.rule.starts(self.start, last, None, None)
        self.lines = ["BEGIN:VEVENT", "UID:series", self.dated("DTSTART", self.start)]
        self.choose_length()
        self.choose_end_of_rule()
        self.lines.append("RRULE:" + ";".join(self.rule.parts))
        self.plain = self.rule.starts(self.start, last, self.count, self.until)
        self.all = {wall: None for wall in self.plain}
        self.expected = []
        self.add_more_starts()
        self.exclude()
        futures = self.override() if self.all else []
        for wall, own in self.all.items():
            seconds = self.seconds(wall)
            same = reading(seconds, self.clock)
            if same != wall and same in self.all:
                continue
            days, exact, cancelled = self.days, self.exact if own is None else own, False
            if own is not None:
                days = 0
            for at, delta, minutes, gone in futures:
                if at < wall:
                    # counted from where the series has it, not from where an earlier change moved it
                    here, days, exact, cancelled = wall + delta, minutes // 1440 if self.all_day else 0, \
                        0 if self.all_day else minutes * 60, gone
                    seconds = self.seconds(here)
            if cancelled:
                continue
            base = reading_of(wall, futures)
            self.expected.append((seconds, self.seconds(base + timedelta(days=days)) + exact, "O"))
        self.lines.append("END:VEVENT")

    def write(self, out):
        r = self.r
        bounds = [int((w - EPOCH).total_seconds()) for w in self.window]
        shown = sorted(e for e in self.expected if bounds[0] <= e[0] <= bounds[1])
        blocks = self.overrides + [self.lines]
        if r.random() < 0.7:
            blocks.reverse()
        out.write(f"CASE {self.number} {self.viewer} {bounds[0]} {bounds[1]}\n")
        for block in blocks:
            out.write("\n".join(block) + "\n")
        out.write("EXPECT\n" + "".join(f"{s} {e} {k}\n" for s, e, k in shown) + "DONE\n")


def reading_of(wall, futures):
    for at, delta, _, _ in reversed(futures):
        if at < wall:
            return wall + delta
    return wall


def main():
    seed, count = int(sys.argv[1]), int(sys.argv[2])
    for number in range(count):
        attempt = 0
        while True:
            case = Case(random.Random(f"{seed}/{number}/{attempt}"), number)
            try:
                case.work_out()
            except (ValueError, OverflowError):  # a rule that never comes, or takes too long
                attempt += 1
                continue
            case.write(sys.stdout)
            break


if __name__ == "__main__":
    main()
