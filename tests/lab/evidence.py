"""What a drive holds after a run, and what is wrong with it."""

import hashlib
import io
import re
import tarfile
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass, field

TEMPORARY = re.compile(r"(^|/)\.[^/]*\.zmpart$")
RECORD = re.compile(r"^(ascmhl/|Offload Report)")
ALPHABET = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz"
CHAIN = "ascmhl/ascmhl_chain.xml"
LIST_SPACE, CHAIN_SPACE = "{urn:ASC:MHL:v2.0}", "{urn:ASC:MHL:DIRECTORY:v2.0}"


@dataclass
class Evidence:
    """The files of one offload folder: what `look` found."""

    sums: dict = field(default_factory=dict)  # path: MD5, none for a file that could not be read
    sizes: dict = field(default_factory=dict)
    dates: dict = field(default_factory=dict)
    records: dict = field(default_factory=dict)  # path: bytes

    @classmethod
    def of(cls, tar, folder=""):
        """From a tar of what `look` left in FOLDER of it."""
        found = cls()
        for row in rows(tar, f"./{folder}files"):
            size, date, path = row.split(" ", 2)
            found.sizes[path], found.dates[path] = int(size), float(date)
        for row in rows(tar, f"./{folder}sums"):
            digest, path = row.split("  ", 1)
            found.sums[path] = digest
        records = tar.extractfile(f"./{folder}records").read()
        if records:
            with tarfile.open(fileobj=io.BytesIO(records)) as inner:
                found.records = {item.name: inner.extractfile(item).read() for item in inner if item.isfile()}
        return found

    def finals(self):
        """The paths of copies under their final names."""
        return [path for path in self.sizes if not TEMPORARY.search(path) and not RECORD.search(path)]

    def temporaries(self):
        return [path for path in self.sizes if TEMPORARY.search(path)]

    def missing(self, truth):
        return [path for path in truth if path not in self.sizes]

    def wrong(self, truth):
        """Final names without the bytes of the original, and what they have instead."""
        return [f"{path} of {self.sizes[path]} bytes" for path in self.finals()
                if path in truth and self.sums.get(path) != truth[path]]

    def strays(self, truth):
        """Names that nobody gave: where a name lies in several sectors, a cut between them leaves a short one."""
        return [path for path in self.finals() if path not in truth]

    def broken_records(self):
        """Reports, lists and the chain, as far as they have their names: each must be whole."""
        told = []
        for path in (path for path in self.sizes if RECORD.search(path) and not TEMPORARY.search(path)):
            data = self.records.get(path, b"")
            if not is_whole(path, data):
                told.append(f"{path} is {'not whole' if data else 'empty'}")
        return told + wrong_identifiers(self.records)

    def missing_records(self, copies):
        """What a finished run must have left of its records, with COPIES in its hash list."""
        lists = [path for path in self.records if path.endswith(".mhl")]
        told = [f"no {what}" for what, there in (
            ("report", any(path.startswith("Offload Report") for path in self.sizes)),
            ("hash list", lists), ("chain", CHAIN in self.sizes)) if not there]
        for path in lists:
            told += unlisted(path, self.records[path], copies)
        return told


def rows(tar, name):
    data = tar.extractfile(name).read().decode(errors="surrogateescape")
    return [row for row in data.split("\0") if row]


def is_whole(path, data):
    if path.endswith(".html"):
        return data.rstrip().endswith(b"</html>")
    return parsed(data) is not None


def parsed(data):
    try:
        return ElementTree.fromstring(data)
    except ElementTree.ParseError:
        return None


def unlisted(path, data, copies):
    tree = parsed(data)
    listed = set() if tree is None else {row.text for row in tree.iter(f"{LIST_SPACE}path")}
    count = sum(1 for copy in copies if copy not in listed)
    return [f"{path} lacks {count} of {len(copies)} copies"] if count else []


def wrong_identifiers(records):
    """Lists that the chain names and that are not there, or are others."""
    tree = parsed(records.get(CHAIN, b""))
    if tree is None:
        return []
    told = []
    for row in tree.iter(f"{CHAIN_SPACE}hashlist"):
        name = "ascmhl/" + (row.findtext(f"{CHAIN_SPACE}path") or "")
        if name not in records:
            told.append(f"the chain names {name}, which is not there")
        elif c4(records[name]) != row.findtext(f"{CHAIN_SPACE}c4"):
            told.append(f"the chain has another identifier for {name}")
    return told


def c4(data):
    number = int.from_bytes(hashlib.sha512(data).digest(), "big")
    digits = ""
    for _ in range(88):
        number, digit = divmod(number, 58)
        digits = ALPHABET[digit] + digits
    return "c4" + digits
