#!/usr/bin/env python3
"""Makes a tree of small MP3 files for the window's measurements: make_tree.py FOLDER [COUNT]"""
import os
import struct
import sys

FRAME = bytes([0xFF, 0xFB, 0x90, 0x00]) + bytes(413)  # MPEG-1 layer III, 128 kbit/s, 44.1 kHz
WORDS = ("copper harbour silent paper orbit velvet northern glass тихий янтарный ранний снег "
         "umbrella engine lantern choir marble tide meadow signal").split()
FILES_A_FOLDER = 100


def phrase(seed, length):
    return " ".join(WORDS[(seed * (i + 3) + i * 7) % len(WORDS)] for i in range(length)).title()


def frame(name, text):
    body = b"\x01" + text.encode("utf-16")
    return name + struct.pack(">IH", len(body), 0) + body


def tag(number):
    album = number // 12
    frames = (frame(b"TPE1", phrase(album // 5, 2)) + frame(b"TIT2", phrase(number, 3)) +
              frame(b"TALB", phrase(album, 3)) + frame(b"TRCK", f"{number % 12 + 1}/12") +
              frame(b"TYER", str(1960 + album % 60)) + frame(b"TCON", "Rock"))
    size = len(frames)
    return b"ID3\x03\x00\x00" + bytes(size >> shift & 0x7F for shift in (21, 14, 7, 0)) + frames


def main():
    folder, count = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 100_000
    for number in range(count):
        place = f"{folder}/{number // 10_000:02}/{number // FILES_A_FOLDER:04}"
        if number % FILES_A_FOLDER == 0:
            os.makedirs(place, exist_ok=True)
        with open(f"{place}/{number % 12 + 1:02} {phrase(number, 3)} {number}.mp3", "wb") as file:
            file.write(tag(number) + FRAME * 3)


main()
