"""Whether every text that people see can be translated, and is: texts.py SOURCES"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

root = pathlib.Path(sys.argv[1])
faults = []

# Literals with words in them, in the folders whose texts people see, that no call translates.
TRANSLATING = re.compile(r"(?:translate|translatable|tr|qsTr)\s*\(\s*(?:\"[A-Za-z]+\",\s*)?$")
# "%1 files" and "%1 file": both forms of a text with a number.
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
PLURAL = re.compile(r'translate\s*\(\s*"[A-Za-z]+",\s*' + LITERAL.pattern + r",\s*$")
WORDS = re.compile(r"[A-Za-z'%1]{2,} [a-z]{2,}")
SHOWN = ["CommandLine", "Updates", "ZephrimarkUI", "ZephrimarkOffload/Model",
         "ZephrimarkOffload/Desktop", "ZephrimarkOffload/Screens", "ZephrimarkOffload/main.cpp"]
# English on purpose: read by machines only.
ENGLISH = {
    "The settings could not be saved in",
    "made by the application",
}


def untranslated(path):
    source = path.read_text()
    source = re.sub(r"(?m)^\s*(?://|///|#).*$|\s//[^\"\n]*$", "", source)
    # Parts of one text: C++ joins them by itself, QML with a plus.
    source = re.sub(r'"\s*\n\s*(?:\+ )?"', "", source)
    for match in LITERAL.finditer(source):
        before = source[:match.start()]
        text = match[1]
        if WORDS.search(text) and text not in ENGLISH:
            if not TRANSLATING.search(before) and not PLURAL.search(before[-600:]):
                yield text


for folder in SHOWN:
    paths = [root / folder] if folder.endswith(".cpp") else sorted((root / folder).iterdir())
    for path in paths:
        if path.suffix in {".cpp", ".h", ".qml"}:
            faults += [f"{path.name}: \"{text}\" cannot be translated" for text in untranslated(path)]


def places(text):
    return sorted(re.findall(r"%[1-9]", text))


def judge(language, message):
    source = message.findtext("source")
    translation = message.find("translation")
    if translation.get("type"):
        return [f"\"{source}\" is {translation.get('type')}"]
    forms = [form.text or "" for form in translation.iter("numerusform")] or [translation.text or ""]
    wrong = [f"\"{form}\" is empty or lost a place" for form in forms
             if not form.strip() or (set(places(form)) - set(places(source)))]
    # One form may do without the number: "on the drive". The last has everything.
    if places(forms[-1]) != places(source):
        wrong.append(f"\"{forms[-1]}\" has other places than \"{source}\"")
    if len(source) > 1 and source[-1:] in ".…:?" and forms[-1][-1:] != source[-1:]:
        wrong.append(f"\"{forms[-1]}\" does not end as \"{source}\"")
    if language == "de" and re.search(r"[\"'`]|\.\.\.(?!\])|\w…| - ", " ".join(forms)):
        wrong.append(f"\"{forms[-1]}\" needs „…“, ’, – or a space before …")
    return wrong


if not pathlib.Path("/usr/lib/qt6/bin/lupdate").exists():
    print("lupdate is missing (package qt6-l10n-tools).")
    sys.exit(77)
with tempfile.TemporaryDirectory() as folder:
    for kept in sorted((root / "Translations").glob("zephrimark_*.ts")):
        language = kept.stem.split("_", 1)[1]
        copy = pathlib.Path(shutil.copy(kept, folder))
        subprocess.run([root / "scripts" / "update-translations.sh", copy], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        now = xml.etree.ElementTree.parse(copy)
        kept_texts = [m.findtext("source") for m in xml.etree.ElementTree.parse(kept).iter("message")]
        for text in sorted(set(kept_texts) - {m.findtext("source") for m in now.iter("message")}):
            faults.append(f"{language}: \"{text}\" is in no source any more")
        for message in now.iter("message"):
            faults += [f"{language}: {fault}" for fault in judge(language, message)]

print("\n".join(faults))
sys.exit(1 if faults else 0)
