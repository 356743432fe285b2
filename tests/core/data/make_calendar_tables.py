#!/usr/bin/python3
"""Writes the calendar reference tables that CalendarTest reads.

Made with Python's datetime, zoneinfo (the system's tz database) and
dateutil.easter, independently of qv's own arithmetic. Run from anywhere with
Debian's interpreter:  /usr/bin/python3 tests/core/data/make_calendar_tables.py

calendar_days.txt, one line per day of the selected years:
  year month day dayOfYear dayOfWeek(0=Sunday) fileTimeTicksAt0000UTC
  then for each zone in ZONES:
    local wall time of 01:30 UTC that day
    UTC of the local wall time 01:30 that day (fold=0: the earlier instant of a
      repeated hour, the offset before the change for a skipped one)
    UTC of the local wall time 02:30 that day (the same)
  Times are YYYYMMDDHHMMSS; '-' where a value lies outside FILETIME's range
  (before 1601-01-01 UTC).
easter.txt: year month day of Easter Sunday (Western) for 1583..2299.
"""
import datetime
import os
from zoneinfo import ZoneInfo

from dateutil.easter import easter

YEARS = (1600, 1900, 2000, 2100)
ZONES = ("Europe/Berlin", "America/New_York")
EASTER_YEARS = range(1583, 2300)

UTC = datetime.timezone.utc
FILETIME_EPOCH = datetime.datetime(1601, 1, 1, tzinfo=UTC)


def stamp(dt):
    if dt.replace(tzinfo=UTC) < FILETIME_EPOCH:
        return "-"
    return dt.strftime("%Y%m%d%H%M%S")


def ticks(dt):
    if dt < FILETIME_EPOCH:
        return "-"
    delta = dt - FILETIME_EPOCH
    return str((delta.days * 86400 + delta.seconds) * 10_000_000 + delta.microseconds * 10)


def wall_to_utc(day, hour, minute, zone):
    try:
        wall = datetime.datetime(day.year, day.month, day.day, hour, minute, tzinfo=zone, fold=0)
        return stamp(wall.astimezone(UTC).replace(tzinfo=None))
    except OverflowError:
        return "-"


def zone_columns(day, zone):
    instant = datetime.datetime(day.year, day.month, day.day, 1, 30, tzinfo=UTC)
    if instant < FILETIME_EPOCH:
        local = "-"
    else:
        local = stamp(instant.astimezone(zone).replace(tzinfo=None))
    return [local, wall_to_utc(day, 1, 30, zone), wall_to_utc(day, 2, 30, zone)]


def day_line(day, zones):
    midnight = datetime.datetime(day.year, day.month, day.day, tzinfo=UTC)
    columns = [str(day.year), str(day.month), str(day.day), str(day.timetuple().tm_yday),
               str((day.weekday() + 1) % 7), ticks(midnight)]
    for zone in zones:
        columns += zone_columns(day, zone)
    return " ".join(columns)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    zones = [ZoneInfo(name) for name in ZONES]
    with open(os.path.join(here, "calendar_days.txt"), "w") as out:
        out.write("# zones: %s\n" % " ".join(ZONES))
        for year in YEARS:
            day = datetime.date(year, 1, 1)
            while day.year == year:
                out.write(day_line(day, zones) + "\n")
                day += datetime.timedelta(days=1)
    with open(os.path.join(here, "easter.txt"), "w") as out:
        for year in EASTER_YEARS:
            sunday = easter(year)
            out.write("%d %d %d\n" % (year, sunday.month, sunday.day))


if __name__ == "__main__":
    main()
