"""What a case found."""

from dataclasses import dataclass, field


@dataclass
class Finding:
    done: str
    wrong: list = field(default_factory=list)  # sentences; none where all is well
    notes: list = field(default_factory=list)  # what is told and fails nothing

    def expect(self, what, wrong):
        """Anything in WRONG is wrong; the first few are told."""
        if wrong:
            more = f" and {len(wrong) - 3} more" if len(wrong) > 3 else ""
            self.wrong.append(f"{what}: {len(wrong)} ({'; '.join(map(shortened, wrong[:3]))}{more})")


def shortened(text):
    return text if len(text) <= 90 else text[:50] + "…" + text[-39:]
