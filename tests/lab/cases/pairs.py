"""From a card of each file system to a drive of each."""

import card
from cases.finding import Finding
from offload import FOLDER, offload, resume_shortcomings


def pair(bench, card_system, drive_system):
    files = card.contents(clips=1, photos=5)
    truth = card.sums(files)
    source = bench.card(card_system, "small", files)
    drive = bench.drive(drive_system)
    place = drive.plug_again()
    finding = Finding(f"{len(truth)} files from {card_system.name} to {drive_system.name}, mounted again, run again")
    finding.wrong += offload(bench.machine, source.place, place).shortcomings(truth)
    place = drive.remount()
    found = bench.look(f"{place}/{FOLDER}")
    finding.expect("missing", found.missing(truth))
    finding.expect("wrong content", found.wrong(truth))
    finding.expect("records", found.broken_records() + found.missing_records(truth))
    dates = bench.look(source.place).dates
    finding.expect("dates", wrong_dates(dates, found.dates, truth, drive_system.step))
    finding.expect("dates on the card", wrong_dates({path: date for path, (_, date) in files.items()}, dates, truth,
                                                    card_system.step))
    finding.wrong += resume_shortcomings(bench.machine, truth, source.place, place)
    return finding


def wrong_dates(expected, found, paths, step):
    """Dates that are further off than a file system with this step makes them."""
    return [f"{path}: {found[path] - expected[path]:+} s" for path in paths
            if path in found and abs(found[path] - expected[path]) >= step]
