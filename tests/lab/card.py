"""What is on the cards: what a camera leaves, with the names that people and other systems leave beside it."""

import hashlib
import io
import random
import tarfile

MIB = 1 << 20
NOON = 1_760_000_000  # 2025-10-09, in the past of every machine
LONG = "A very long name, as people give when they sort their footage on the card itself " * 3


def contents(clips, photos):
    """Path: (bytes, modification date). The dates have fractions that no FAT can hold."""
    noise = random.Random(7)
    files = {f"DCIM/100CANON/IMG_{i:04}.CR3": noise.randbytes(3000 + 977 * i) for i in range(photos)}
    files |= {f"PRIVATE/M4ROOT/CLIP/C{i:04}.MP4": noise.randbytes(3 * MIB + 12345 * i) for i in range(clips)}
    files["Überblick – 東京 naïve ☂.TXT"] = "Länge läuft".encode()
    files[f"PRIVATE/{LONG[:230]}.MOV"] = noise.randbytes(70_001)
    files["PRIVATE/" + "Straße " * 20 + "Ende.MOV"] = noise.randbytes(5_000)
    files["PRIVATE/M4ROOT/MEDIAPRO.XML"] = b"<MediaProfile/>\n"
    files["PRIVATE/M4ROOT/CLIP/empty.xml"] = b""
    return {path: (data, NOON + 3601.37 * i) for i, (path, data) in enumerate(sorted(files.items()))}


def sums(files):
    return {path: hashlib.md5(data).hexdigest() for path, (data, _) in files.items()}


def total_bytes(files):
    return sum(len(data) for data, _ in files.values())


def packed(files):
    """As a tar."""
    result = io.BytesIO()
    with tarfile.open(fileobj=result, mode="w", format=tarfile.PAX_FORMAT) as tar:
        for path, (data, modified) in files.items():
            item = tarfile.TarInfo(path)
            item.size = len(data)
            item.mtime = modified
            tar.addfile(item, io.BytesIO(data))
    return result.getvalue()
