#!/usr/bin/python3
"""Compares our list field by field with what mutagen and TagLib say of the same MP3 files.

compare.py PROGRAM TAGLIB_FIELDS FOLDER... (`./test --peers` calls it)

A difference is explained when rules of rules.py, applied to the other program's value, lead to
ours; any other one is printed and makes the comparison fail.
"""

import json
import os
import subprocess
import sys
from collections import Counter
from itertools import permutations

from peers import mutagen_fields, taglib_fields
from rules import RULES, Facts


def our_records(program, folder):
    environment = os.environ | {"TAVLO_ANSI_CODE_PAGE": "1252"}
    lines = subprocess.run([program, "/scan", "/s", "/json", folder], env=environment,
                           stdout=subprocess.PIPE, check=False).stdout
    for line in lines.splitlines():
        row = json.loads(line)
        if row["FileType"] == "MP3":
            yield row


def our_fields(row):
    mix = f" ({row['Mix']})" if row["Mix"] else ""
    art = row["AlbumArt"]
    return {
        "artist": row["Artist"], "title": (row["Title"] + mix).strip(), "album": row["Album"],
        "year": row["Year"], "track": str(row["TrackNumber"]) if row["TrackNumber"] else "",
        "genre": row["Genre"], "comment": row["Comment"], "composer": row["Composer"],
        "copyright": row["CopyRight"], "seconds": row["Seconds"], "bitrate": row["Bitrate"],
        "sample rate": row["SampleRate"],
        "channel mode": row["ChannelMode"], "version": row["MpegVersion"], "layer": row["Layer"],
        "vbr": row["VBR"], "v1": row["IsID3v1Present"], "v2": row["IsID3v2Present"],
        "ape": row["IsAPE2Present"], "picture": art["Bytes"] if art else 0,
    }


def explained(field, peer, theirs, ours, facts):
    """The names of the rules that lead from their value to ours; nothing where none do."""
    known = [(name, rule) for name, fields, peers, rule in RULES
             if field in fields and peer in peers]
    for count in range(1, min(3, len(known)) + 1):
        for chain in permutations(known, count):
            value = theirs
            for _, rule in chain:
                value = rule(value, facts, ours)
            if value == ours:
                return [name for name, _ in chain]
    return None


def compare(path, row, peers, tally):
    ours = our_fields(row)
    facts = Facts(path, ours, row)
    failures = 0
    for peer, theirs in peers.items():
        if theirs is None:
            continue
        for field, value in ours.items():
            if theirs.get(field, value) == value:
                tally["the same"] += 1
                continue
            names = explained(field, peer, theirs[field], value, facts)
            if names is None:
                failures += 1
                print(f"{path}: {field}: ours {value!r}, {peer} {theirs[field]!r}")
            for name in names or ():
                tally[name] += 1
    return failures


def main():
    program, taglib, *folders = sys.argv[1:]
    tally, failures, files = Counter(), 0, 0
    for folder in folders:
        rows = list(our_records(program, folder))
        paths = [row["Path"] for row in rows]
        for path, row, theirs in zip(paths, rows, taglib_fields(taglib, paths), strict=True):
            files += 1
            failures += compare(path, row, {"mutagen": mutagen_fields(path), "TagLib": theirs},
                                tally)
    print(f"{files} files, {failures} differences without an explanation")
    for name, count in tally.most_common():
        print(f"{count:6}  {name}")
    return 1 if failures or not files else 0


if __name__ == "__main__":
    sys.exit(main())
