"""The table of what was tried and found."""

import textwrap
from dataclasses import dataclass

from cases.finding import Finding

DONE, FOUND = 44, 64  # columns


@dataclass(frozen=True)
class Row:
    case: str
    finding: Finding
    seconds: float


def table(rows):
    width = max(len("case"), *(len(row.case) for row in rows))
    lines = line(width, "case", ["done"], ["found"], "s") + ["-" * (width + DONE + FOUND + 11)]
    for row in rows:
        wrong = row.finding.wrong
        found = [f"WRONG: {text}" for text in wrong] if wrong else ["ok"]
        lines += line(width, row.case, [row.finding.done], found + row.finding.notes, f"{row.seconds:.0f}")
    wrong = sum(1 for row in rows if row.finding.wrong)
    seconds = sum(row.seconds for row in rows)
    lines.append(f"{len(rows)} cases, {wrong} wrong, {seconds:.0f} s")
    return "\n".join(lines)


def line(width, case, done, found, seconds):
    left = [part for text in done for part in textwrap.wrap(text, DONE)]
    right = [part for text in found for part in textwrap.wrap(text, FOUND, subsequent_indent="  ")]
    height = max(len(left), len(right))
    left += [""] * (height - len(left))
    right += [""] * (height - len(right))
    first = [case] + [""] * (height - 1)
    last = [seconds] + [""] * (height - 1)
    return [f"{a:{width}}  {b:{DONE}}  {c:{FOUND}}  {d:>5}".rstrip() for a, b, c, d in zip(first, left, right, last)]
