#!/usr/bin/env python3
"""Makes the sample files again: samples/make.py (needs lame and python3-mutagen).

Every byte is decided here or by LAME, so that the same versions make the same files.
"""

import math
import struct
import subprocess
import sys
import tempfile
import wave
import zlib
from pathlib import Path

from mutagen import apev2, id3

HERE = Path(__file__).resolve().parent
LATIN1, UTF16, UTF8 = id3.Encoding.LATIN1, id3.Encoding.UTF16, id3.Encoding.UTF8


def write_tone(path, rate, channels, seconds, pitch):
    """A chord that swells and fades; the right channel sounds a fifth higher."""
    frames = bytearray()
    for i in range(int(rate * seconds)):
        t = i / rate
        swell = math.sin(math.pi * t / seconds)
        for channel in range(channels):
            note = pitch * (1.5 if channel else 1)
            value = math.sin(2 * math.pi * note * t) + 0.5 * math.sin(4 * math.pi * note * t)
            frames += struct.pack("<h", int(9000 * swell * value))
    with wave.open(str(path), "wb") as out:
        out.setnchannels(channels)
        out.setsampwidth(2)
        out.setframerate(rate)
        out.writeframes(bytes(frames))


def encode(name, options, rate=44100, channels=2, seconds=2, pitch=220):
    target = HERE / name
    target.parent.mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory() as folder:
        tone = Path(folder) / "tone.wav"
        write_tone(tone, rate, channels, seconds, pitch)
        same_rate = ["--resample", str(rate / 1000)]
        subprocess.run(["lame", "--quiet", *same_rate, *options, tone, target], check=True)
    return target


def append(path, data):
    with open(path, "ab") as out:
        out.write(data)


def prepend(path, data):
    path.write_bytes(data + path.read_bytes())


def id3v1(title, artist, album, year, comment, track, genre, encoding="latin-1"):
    def field(text, size):
        return text.encode(encoding)[:size].ljust(size, b"\0")

    return (b"TAG" + field(title, 30) + field(artist, 30) + field(album, 30) + field(year, 4)
            + field(comment, 28) + bytes([0, track, genre]))


def id3v22(frames):
    """An ID3v2.2 tag of text frames, each given as identifier, encoding byte and bytes."""
    body = b"".join(name + (len(data) + 1).to_bytes(3, "big") + bytes([encoding]) + data
                    for name, encoding, data in frames) + bytes(64)
    size = bytes((len(body) >> shift) & 0x7F for shift in (21, 14, 7, 0))
    return b"ID3\2\0\0" + size + body


def lyrics3v2(fields):
    """A Lyrics3v2 block; it stands directly before the ID3v1 tag."""
    body = b"LYRICSBEGIN" + b"".join(
        name + b"%05d" % len(data) + data for name, data in fields)
    return body + b"%06d" % len(body) + b"LYRICS200"


def png(size, red, green, blue):
    """A square PNG picture, a gradient from black to the colour given."""
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data)))

    rows = b"".join(
        b"\0" + b"".join(bytes(c * (x + y) // (2 * size) for c in (red, green, blue))
                         for x in range(size)) for y in range(size))
    header = struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def save_id3(path, version, encoding, texts, *others):
    """Writes ID3v2.<version>; `texts` maps frame identifiers to their text."""
    tag = id3.ID3()
    for name, text in texts.items():
        tag.add(getattr(id3, name)(encoding=encoding, text=[text]))
    for frame in others:
        tag.add(frame)
    tag.save(path, v1=0, v2_version=version, padding=lambda info: 128)


def save_ape(path, items):
    tag = apev2.APEv2()
    for key, value in items.items():
        tag[key] = value
    tag.save(path)


def comment(encoding, text):
    return id3.COMM(encoding=encoding, lang="eng", desc="", text=[text])


def cover(encoding, red, green, blue):
    return id3.APIC(encoding=encoding, mime="image/png", type=id3.PictureType.COVER_FRONT,
                    desc="", data=png(96, red, green, blue))


def plain_files():
    encode("01 no tag at all.mp3", ["-b", "64", "-m", "j"], pitch=196)

    path = encode("02 Copper Lantern - Harbour Lights.mp3", ["-b", "64", "-t"])
    append(path, id3v1("Harbour Lights", "Copper Lantern", "Night Ferries", "1998",
                       "ID3v1.1 alone", 4, 12))

    path = encode("03 Северный трамвай - Ранний снег.mp3", ["-b", "56", "-m", "m"], channels=1)
    append(path, id3v1("Ранний снег", "Северный трамвай", "Дворы и крыши", "2001",
                       "Только ID3v1", 7, 17, "cp1251"))


def id3v2_files():
    path = encode("04 Paper Comets - Orbit (Club Mix).mp3", ["-V", "5"], seconds=3, pitch=247)
    prepend(path, id3v22([
        (b"TT2", 0, b"Orbit (Club Mix)"), (b"TP1", 0, b"Paper Comets"),
        (b"TAL", 1, "Kleine Umläufe".encode("utf-16")), (b"TYE", 0, b"2003"),
        (b"TRK", 0, b"3/12"), (b"TCO", 0, b"(18)"), (b"TEN", 0, b"LAME")]))

    path = encode("05 Ana Solé - Café [Live].mp3", ["--abr", "72"], seconds=3, pitch=262)
    save_id3(path, 3, LATIN1, {
        "TIT2": "Café [Live]", "TPE1": "Ana Solé", "TALB": "Una Tarde", "TYER": "2007",
        "TRCK": "3/12", "TPOS": "1/2", "TCON": "(17)", "TCOM": "Ana Solé", "TBPM": "96",
        "TCOP": "2007 Una Tarde"}, comment(LATIN1, "latin-1 text"))

    path = encode("06 Янтарный компас - Причал.mp3", ["-b", "64"], seconds=2, pitch=294)
    save_id3(path, 3, UTF16, {
        "TIT2": "Причал (Вечерний микс)", "TPE1": "Янтарный компас", "TALB": "Берега",
        "TYER": "2010", "TRCK": "5", "TCON": "Дворовый романс", "TOPE": "Янтарный компас"},
        comment(UTF16, "UTF-16 с обложкой"), cover(UTF16, 255, 160, 32))

    path = encode("07 Лунный велосипед - Кругами.mp3", ["-b", "64", "-m", "m"],
                  rate=24000, channels=1, pitch=330)
    save_id3(path, 4, UTF8, {
        "TIT2": "Кругами", "TPE1": "Лунный велосипед", "TALB": "Колёса и звёзды",
        "TDRC": "2015-04-12", "TRCK": "2/9", "TPOS": "1/1", "TCON": "Electronic",
        "TENC": "Лунный велосипед"},
        comment(UTF8, "ID3v2.4, MPEG-2"),
        id3.WOAR(url="http://example.org/moon-bicycle"))

    path = encode("08 Various - Tin Parade.mp3", ["-b", "64", "-m", "s"], pitch=349)
    save_id3(path, 3, LATIN1, {
        "TIT2": "Tin Parade", "TPE1": "The Brass Umbrellas", "TPE2": "Various",
        "TALB": "Market Square Sampler", "TYER": "2012", "TRCK": "11/14", "TCON": "World Music",
        "TCMP": "1"})
    append(path, id3v1("Tin Parade", "The Brass Umbrellas", "Market Square Sampler", "2012",
                       "also in ID3v1", 11, 255))


def ape_and_lyrics_files():
    ape = {"Title": "Слово и дело [Remix]", "Artist": "Glass Metro", "Album": "Перегон",
           "Year": "2018", "Track": "6/10", "Genre": "Trip-Hop", "Comment": "APEv2 alone"}
    path = encode("09 Glass Metro - Слово и дело.mp3", ["-V", "7"], seconds=3, pitch=392)
    save_ape(path, ape)

    path = encode("10 Quiet Engines - Low Tide.mp3", ["-b", "24", "-m", "m"],
                  rate=11025, channels=1, seconds=3, pitch=165)
    save_ape(path, {"Title": "Low Tide", "Artist": "Quiet Engines", "Album": "Slack Water",
                    "Year": "1999", "Track": "1", "Genre": "Ambient"})
    append(path, id3v1("Low Tide", "Quiet Engines", "Slack Water", "1999", "MPEG-2.5", 1, 26))

    path = encode("11 Marble Choir - Seven Bells.mp3", ["-b", "80", "-m", "j"], pitch=440)
    save_id3(path, 3, LATIN1, {
        "TIT2": "Seven Bells (Radio Edit)", "TPE1": "Marble Choir", "TALB": "Tower Hours",
        "TYER": "2005", "TRCK": "7", "TCON": "(20)Alternative"})
    append(path, lyrics3v2([
        (b"IND", b"110"), (b"LYR", b"[00:00]Seven bells\r\n[00:01]over the harbour\r\n"),
        (b"EAL", b"Tower Hours"), (b"EAR", b"Marble Choir"),
        (b"ETT", b"Seven Bells (Radio Edit)")]))
    append(path, id3v1("Seven Bells (Radio Edit)", "Marble Choir", "Tower Hours", "2005",
                       "with Lyrics3v2", 7, 20))

    path = encode("Подвал/12 Деревянный робот - Шестерёнки.mp3", ["-b", "32", "-m", "m", "-t"],
                  rate=22050, channels=1, pitch=523)
    save_id3(path, 3, UTF16, {
        "TIT2": "Шестерёнки [Концерт]", "TPE1": "Деревянный робот", "TALB": "Подвал",
        "TYER": "2020", "TRCK": "12/12", "TCON": "(52)"}, cover(UTF16, 64, 96, 255))


def main():
    for old in HERE.rglob("*.mp3"):
        old.unlink()
    plain_files()
    id3v2_files()
    ape_and_lyrics_files()
    return 0


if __name__ == "__main__":
    sys.exit(main())
