"""Catalogues of texts as gettext keeps them (PO files), for the scripts beside this file.

Only what the files in po/ use is read: no contexts. Fit for the Python of any system, since a Mac has
no gettext.
"""
from __future__ import annotations  # the oldest Mac's Python is 3.9

import dataclasses
import gettext
import re

_LINE = re.compile(r'(?:(msgid|msgid_plural|msgstr)(?:\[(\d+)\])?\s+)?"(.*)"\s*$')
_ESCAPES = {"n": "\n", "t": "\t", '"': '"', "\\": "\\"}


class Fault(Exception):
    """A catalogue that cannot be used; the text says where and why."""


@dataclasses.dataclass
class Entry:
    """One text: in English, and in the catalogue's language."""

    text: str = ""
    plural: str | None = None  # for other numbers than one
    forms: list[str] = dataclasses.field(default_factory=list)  # by plural form; one without plural
    is_fuzzy: bool = False
    line: int = 0


@dataclasses.dataclass
class Catalogue:
    path: str
    header: str
    entries: list[Entry]

    def form_count(self):
        return int(self._plural_rule().group(1))

    def forms_by_number(self):
        """Which form is for how many things, of as many numbers as any language tells apart."""
        rule = gettext.c2py(self._plural_rule().group(2))
        return [rule(number) for number in range(201)]

    def _plural_rule(self):
        rule = re.search(r"^Plural-Forms: nplurals=(\d+); plural=([^;]+);", self.header, re.MULTILINE)
        if not rule:
            raise Fault(f"{self.path}: no Plural-Forms")
        return rule


def _unescape(text):
    return re.sub(r"\\(.)", lambda match: _ESCAPES[match.group(1)], text)


def read(path):
    with open(path, encoding="utf-8") as file:
        return parse(file.read(), str(path))


def parse(content, path):
    entries, entry, field = [], Entry(), None
    for number, line in enumerate(content.split("\n") + [""], start=1):
        if not line.strip():
            if entry.forms:
                entries.append(entry)
            entry, field = Entry(), None
        elif line.startswith("#,"):
            entry.is_fuzzy = "fuzzy" in line
        elif not line.startswith("#"):
            field = _add_line(entry, field, line, f"{path}:{number}")
            entry.line = entry.line or number
    header = entries.pop(0) if entries and entries[0].text == "" else None
    if header is None:
        raise Fault(f"{path}: no header")
    return Catalogue(path, header.forms[0], entries)


def _add_line(entry, field, line, place):
    """Adds to the field that the line names, else to the last one; answers which that was."""
    match = _LINE.match(line)
    if not match or not (match.group(1) or field):
        raise Fault(f"{place}: not understood: {line}")
    name, text = match.group(1) or field, _unescape(match.group(3))
    if match.group(1) == "msgstr":
        entry.forms.append("")
    if name == "msgid":
        entry.text += text
    elif name == "msgid_plural":
        entry.plural = (entry.plural or "") + text
    else:
        entry.forms[-1] += text
    return name


def _quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def write(catalogue, file):
    file.write(f'msgid ""\nmsgstr {_quoted(catalogue.header)}\n')
    for entry in catalogue.entries:
        file.write(f"\nmsgid {_quoted(entry.text)}\n")
        if entry.plural is None:
            file.write(f"msgstr {_quoted(entry.forms[0])}\n")
            continue
        file.write(f"msgid_plural {_quoted(entry.plural)}\n")
        for number, form in enumerate(entry.forms):
            file.write(f"msgstr[{number}] {_quoted(form)}\n")
