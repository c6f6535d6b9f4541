"""The drive is pulled right after the verdict, as people do who do not know of ejecting."""

import card
import drives
from cases.finding import Finding
from offload import FOLDER, offload, resume_shortcomings


def pulled_after(bench, system):
    files = card.contents(clips=3, photos=40)
    truth = card.sums(files)
    source = bench.card(drives.FILE_SYSTEMS["exfat"], "card", files)
    drive = bench.drive(system)
    place = drive.plug_again()
    finding = Finding(f"{len(truth)} files to {system.name}, pulled at the verdict, plugged in again, run again")
    told = offload(bench.machine, source.place, place)
    bench.ports.pull(drive.name)
    drive.gone()
    finding.wrong += told.shortcomings(truth)

    place = drive.plug_again()
    found = bench.look(f"{place}/{FOLDER}")
    verified = told.verified(truth, 0)
    finding.expect("verified and missing", found.missing(verified))
    finding.expect("wrong content", found.wrong(truth))
    finding.expect("broken records", found.broken_records())
    finding.expect("records", found.missing_records(verified))
    finding.wrong += resume_shortcomings(bench.machine, truth, source.place, place)
    return finding
