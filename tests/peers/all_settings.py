#!/usr/bin/python3
"""Changes copies of real files under every choice of the settings for tags.

all_settings.py --program PATH [--sample] FOLDER...

What lies between the tags is there byte for byte; where mutagen does not see where that is, ffmpeg
decodes it to the same sound. What was not edited stays as kept.py says. `--sample` takes one choice.
"""

import argparse
import hashlib
import itertools
import os
import shutil
import subprocess
import sys
import tempfile
from functools import cache
from pathlib import Path

import outside_view as outside
from changed_files import EDITS, SETTINGS
from kept import MEMORY, Program, check_batch
from kept_checks import Verdicts

SWITCHES = {"EnableID3v1Tags": 0, "EnableID3v2Tags": 0, "EnableID3v2.4": -1,
            "EnableID3v2Unicode": -1, "EnableAPE2Tags": -1}
ENDINGS = {".mp3": "found", ".mpc": "found, other types", ".wv": "found, other types",
           ".ape": "found, other types"}
BY_CONTENT = {}


@cache
def decoded(key):
    """What ffmpeg makes of bytes; None where it complains."""
    data, ending = BY_CONTENT[key]
    with tempfile.NamedTemporaryFile(suffix=ending, dir=MEMORY) as file:
        file.write(data)
        file.flush()
        done = subprocess.run(
            ["ffmpeg", "-nostdin", "-v", "error", "-i", file.name, "-map", "0:a", "-f", "md5", "-"],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    # Errors are those of the file, and are the same when the sound is.
    return done.stdout or None


def sound(data, ending):
    key = hashlib.sha256(data).digest(), ending
    BY_CONTENT[key] = data, ending
    return decoded(key)


class Found:
    """A file of the folder, with what is done to it."""

    is_plain = False
    head = tail = b"unknown"

    def __init__(self, path, number, settings):
        self.data, self.what, self.number = path.read_bytes(), path.name, number
        self.kind, self.ending = ENDINGS[path.suffix], path.suffix[1:]
        self.name, self.settings = f"{number}{path.suffix}", settings
        self.field = list(EDITS)[settings % len(EDITS)]
        self.option, values = EDITS[self.field]
        self.value = values[settings // 2 % 2]
        self.tail = self.data[-20000:]

    def has_sound(self, data):
        between = self.between()
        if between and between in data:
            return True
        before = sound(self.data, "." + self.ending)
        return sound(data, "." + self.ending) == before if before else not between

    def between(self):
        """What lies between the tags, as far as mutagen knows them."""
        items, end = outside.apev2_items(self.data), len(self.data)
        if outside.id3v1(self.data):
            end -= 128
        if items and items.begin:
            end = min(end, items.begin)
        return self.data[self.tag_end():end]

    def tag_end(self):
        tag = outside.id3v2(self.data)
        if tag or self.data[:3] != b"ID3":
            return tag.size if tag else 0
        return 10 + sum((byte & 127) << shift
                        for byte, shift in zip(self.data[6:10], (21, 14, 7, 0)))


def choices():
    for picked in itertools.product((False, True), repeat=len(SWITCHES)):
        yield {name: value for (name, value), wanted in zip(SWITCHES.items(), picked) if wanted}


def files_of(folders):
    for folder in folders:
        for path in sorted(Path(folder).rglob("*")):
            if path.suffix in ENDINGS and path.is_file():
                yield path


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--sample", action="store_true")
    parser.add_argument("--show", type=int, default=2)
    parser.add_argument("folders", nargs="+")
    asked = parser.parse_args()
    SETTINGS[:] = list(choices())[20:21] if asked.sample else choices()
    verdicts = Verdicts(asked.show)
    paths = list(files_of(asked.folders))
    with tempfile.TemporaryDirectory(dir=MEMORY) as place:
        program = Program(os.path.abspath(asked.program), place)
        for settings in range(len(SETTINGS)):
            folder = Path(place) / f"files{settings}"
            files = [Found(path, number, settings) for number, path in enumerate(paths)]
            check_batch(program, files, folder, verdicts)
            shutil.rmtree(folder)
    return 0 if verdicts.tell() and paths else 1


if __name__ == "__main__":
    sys.exit(main())
