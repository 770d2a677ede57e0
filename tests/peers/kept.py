#!/usr/bin/python3
"""Proves that a change keeps what was not edited: frame by frame, item by item, byte by byte.

kept.py --program PATH [--count N] [--first N] [--kind NAME]... [--sample] [--show N]
kept.py --program PATH --one KIND:NUMBER [--keep FOLDER]

Files with tags of every kind, right, odd and broken, and COUNT mutations of each kind, have one
field changed by `tavlo /change` under several settings. What mutagen saw before it has to see after,
in the same order; where the tag's version stays each frame keeps its bytes. The sound and every tag
that the change is none of are the same bytes, a refused file is the same file, and a second run finds
nothing to do. A number names one file for ever: --one makes it again, shows it and checks it.
"""

import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
from multiprocessing import Pool
from pathlib import Path

import outside_view as outside
from changed_files import KINDS, SETTINGS, Made, plain_numbers
from kept_checks import Verdicts, check_file, check_plan, clipped, results

MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None

def settings_text(settings):
    return ("[HKEY_CURRENT_USER\\Software\\Tavlo\\Audio Desk\\4.0\\Settings]\n"
            + "".join(f'"{name}"={value}\n' for name, value in settings.items()))


class Program:
    def __init__(self, path, place):
        self.path, self.place = path, Path(place)

    def config(self, settings):
        folder = self.place / f"config{settings}"
        file = folder / "tavlo/settings.txt"
        if not file.exists():
            file.parent.mkdir(parents=True)
            file.write_text(settings_text(SETTINGS[settings]))
        return folder

    def change(self, folder, settings, *words, timeout=60):
        """The rows of each path; None where the program crashed or hung."""
        environment = os.environ | {"TAVLO_ANSI_CODE_PAGE": "1252",
                                    "XDG_CONFIG_HOME": str(self.config(settings))}
        try:
            done = subprocess.run([self.path, "/change", "/s", "/json", "/force", str(folder), *words],
                                  env=environment, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, timeout=timeout, check=False)
        except subprocess.TimeoutExpired:
            return None
        if done.returncode not in (0, 1):
            return None
        rows = {}
        for line in done.stdout.splitlines():
            row = json.loads(line)
            rows.setdefault(Path(row["Path"]).name, []).append(row)
        return rows


def check_batch(program, files, place, verdicts):
    """Files that have settings, option and value in common."""
    place.mkdir(parents=True)
    for file in files:
        (place / file.name).write_bytes(file.data)
    first = files[0]
    words = (first.option, first.value)
    planned = program.change(place, first.settings, *words, "/dryrun")
    untouched = {file.name: (place / file.name).read_bytes() for file in files}
    rows = program.change(place, first.settings, *words)
    if planned is None or rows is None:
        if len(files) > 1:
            for number, file in enumerate(files):
                check_batch(program, [file], place.parent / f"{place.name}-{number}", verdicts)
        else:
            verdicts.fail(first, "crash or hang")
        return
    after = {file.name: (place / file.name).read_bytes() for file in files}
    for file in files:
        check_plan(file, planned.get(file.name), rows.get(file.name), untouched[file.name], verdicts)
        check_file(file, rows.get(file.name), after[file.name], verdicts)
    again = program.change(place, first.settings, *words)
    for file in files:
        same = (place / file.name).read_bytes() == after[file.name]
        said = results(again.get(file.name)) if again else {"crash or hang"}
        if not same or said & {"changed", "crash or hang"}:
            verdicts.fail(file, "second run changes it", said, same)


def check_files(named, asked):
    """Files by kind and number, those with the same settings and words in one run."""
    verdicts, batches = Verdicts(asked.show), {}
    for kind, number in named:
        file = Made(kind, number)
        batches.setdefault((file.settings, file.option, file.value), []).append(file)
    with tempfile.TemporaryDirectory(dir=MEMORY) as place:
        program = Program(os.path.abspath(asked.program), place)
        for step, files in enumerate(batches.values()):
            folder = Path(place) / f"batch{step}"
            check_batch(program, files, folder, verdicts)
            shutil.rmtree(folder)
    return verdicts


def parts(asked):
    """The files, in pieces of a size that keeps every processor busy."""
    count, piece = asked.count // 100 if asked.sample else asked.count, 2000
    named = [(kind, number) for kind in asked.kind or KINDS
             for number in (*plain_numbers(kind, asked.sample),
                            *range(asked.first, asked.first + count))]
    for begin in range(0, len(named), piece):
        yield named[begin:begin + piece], asked


def show_one(program, name, place, keep, verdicts):
    kind, _, number = name.partition(":")
    file = Made(kind, int(number))
    check_batch(program, [file], place / "one", verdicts)
    after = next((place / "one").iterdir()).read_bytes()
    for title, data in (("before", file.data), ("after", after)):
        tag, items = outside.id3v2(data), outside.apev2_items(data)
        print(f"--- {title}, {len(data)} bytes", data[:10].hex(" "))
        for frame in tag.frames if tag else []:
            print("   ", frame.name, hex(frame.flags), clipped(frame.raw))
        print("    rest", clipped(tag and tag.rest))
        for entry in items.items if items else []:
            print("    item", clipped(entry))
        print("    ID3v1", outside.id3v1(data))
        if keep:
            Path(keep).mkdir(parents=True, exist_ok=True)
            (Path(keep) / f"{kind}{number}-{title}.{file.ending}").write_bytes(data)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--count", type=int, default=5000)
    parser.add_argument("--first", type=int, default=0)
    parser.add_argument("--kind", action="append", choices=list(KINDS))
    parser.add_argument("--sample", action="store_true")
    parser.add_argument("--show", type=int, default=2)
    parser.add_argument("--one")
    parser.add_argument("--keep")
    asked = parser.parse_args()
    verdicts = Verdicts(asked.show)
    if asked.one:
        with tempfile.TemporaryDirectory(dir=MEMORY) as place:
            program = Program(os.path.abspath(asked.program), place)
            show_one(program, asked.one, Path(place), asked.keep, verdicts)
    else:
        with Pool() as pool:
            for found in pool.starmap(check_files, parts(asked), chunksize=1):
                verdicts.add(found)
    return 0 if verdicts.tell() else 1


if __name__ == "__main__":
    sys.exit(main())
