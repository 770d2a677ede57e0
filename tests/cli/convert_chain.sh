#!/bin/bash
# Every conversion that the encoders and decoders of this system allow: what comes out plays as long
# as the source for another decoder, and another program finds the tags.
set -euo pipefail
[ "$TAVLO_SYSTEM" = native ] || exit 77
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
export XDG_CONFIG_HOME=$place/settings TMPDIR=$place/temporary TAVLO_ANSI_CODE_PAGE=1252
mkdir -p "$place/settings/tavlo" "$TMPDIR"
cd "$place"

fail() {
    echo "$1"
    cat log
    exit 1
}

# settings LINE...: such as '"EnableMPCSV8"=-1'
settings() {
    printf '%s\n' '[HKEY_CURRENT_USER\Software\Tavlo\Audio Desk\4.0\Settings]' "$@" \
        > settings/tavlo/settings.txt
}

# converts SUMMARY WORDS...: the job succeeds and its last line says so
converts() {
    local summary=$1
    shift
    "$TAVLO" "$@" > out 2> log || fail "failed: $*"
    [ "$(cat out)" = "$summary" ] || fail "$*: $(cat out), not $summary"
    [ -z "$(find . -name 'tavlo[0-9]*')" ] || fail "left: $(find . -name 'tavlo[0-9]*')"
}

# plays FILE: 12 seconds, says another decoder
plays() {
    local bytes
    bytes=$(ffmpeg -v error -i "$1" -f s16le -ac 1 -ar 8000 - | wc -c)
    [ $((bytes / 16000)) -eq 12 ] || fail "$1 has $((bytes / 16000)) s"
}

# says FILE TEXT...: other programs find each text in its tags
says() {
    local text
    ffprobe -v error -show_format "$1" > tags
    for text in "${@:2}"; do
        grep -qF "$text" tags || fail "$1 does not say $text: $(cat tags)"
    done
}

name='100% of $a `b` "c" \ Ü'
ffmpeg -v error -f lavfi -i "sine=frequency=440:duration=12.5,volume=0.5" -ac 2 -ar 44100 wave.wav
mkdir waves
mv wave.wav "waves/$name.wav"
settings '"EnableMPCSV8"=-1' '"DeleteToRecycleBin"=0'

# WAV to each, with a name that no shell would leave alone.
for encoder in mp3 ogg flac wv "mpc radio" "mp4 alac"; do
    # shellcheck disable=SC2086
    converts "Converted: 1" /encode $encoder waves /to all
done
for extension in mp3 ogg flac wv mpc m4a; do plays "all/$name.$extension"; done
says "all/$name.flac" "$name" "Tavlo Audio Desk"
[ "$(find waves -type f | wc -l)" -eq 1 ] || fail "left beside the WAV: $(ls waves)"

# Each to MP3 and back to WAV; ALAC has no decoder here.
for extension in ogg flac wv mpc; do
    converts "Converted: 1" /encode "all/$name.$extension" /to "from-$extension"
    plays "from-$extension/$name.mp3"
    says "from-$extension/$name.mp3" "ENCODER_INFO=lame.exe --preset standard (v"
    converts "Converted: 1" /decode "all/$name.$extension" /to "from-$extension"
    plays "from-$extension/$name.wav"
done
if "$TAVLO" /encode "all/$name.m4a" /to from-m4a > out 2> log; then fail "no decoder needed"; fi
grep -qF 'File "alacdec.exe" not found.' log || fail "not told"

# MP3 down is converted, with its tags; up it is copied, or left alone where it lies.
cp "all/$name.mp3" loud.mp3
lame --quiet -b 320 --tt Title --ta Artist --tl Album --ty 2001 --tn 3/9 --tg Rock "waves/$name.wav" \
    loud.mp3
"$TAVLO" /change loud.mp3 /m Live > out 2> log
converts "Converted: 1" /encode mp3 vbr1 loud.mp3 /to down
plays down/loud.mp3
says down/loud.mp3 "title=Title (Live)" artist=Artist album=Album date=2001 track=3/9 genre=Rock \
    "(ReEncoded from MP3 320kbps )"
converts "Converted: 0  Copied: 1" /encode mp3 vbr3 down/loud.mp3 /to up
cmp down/loud.mp3 up/loud.mp3
converts "Converted: 0  Skipped: 1" /encode mp3 vbr3 down/loud.mp3
converts "Converted: 1" /encode wv loud.mp3 /to lossless
says lossless/loud.wv "Title=Title" Artist=Artist Album=Album
converts "Converted: 0  There already: 1" /encode wv loud.mp3 /to lossless

# In its own place a file ends whole, smaller, and with everything that its tags held.
/usr/bin/python3 -c '
import mutagen.id3, sys
tags = mutagen.id3.ID3(sys.argv[1])
tags.add(mutagen.id3.APIC(mime="image/png", data=b"picture" * 1000))
tags.add(mutagen.id3.POPM(email="me", rating=200))
tags.save()' loud.mp3
converts "Converted: 1" /encode mp3 vbr1 loud.mp3
plays loud.mp3
/usr/bin/python3 -c '
import mutagen.id3, sys
tags = mutagen.id3.ID3(sys.argv[1])
assert tags.getall("APIC")[0].data == b"picture" * 1000 and tags.getall("POPM")[0].rating == 200
assert str(tags["TIT2"]) == "Title (Live)", tags["TIT2"]
assert str(tags["TXXX:ENCODER_INFO"]).endswith("(ReEncoded from MP3 320kbps )")' loud.mp3 ||
    fail "tags were lost"

# Sources go only when they were asked to, and only when nothing of them would be lost.
settings '"DeleteAfterCompress"=-1' '"DeleteAfterReCompress"=-1' '"DeleteToRecycleBin"=0'
cp "waves/$name.wav" gone.wav
converts "Converted: 1" /encode flac gone.wav
[ ! -e gone.wav ] || fail "the source is still there"
plays gone.flac
converts "Converted: 1" /encode ogg loud.mp3 /jobs 2
[ -e loud.mp3 ] || fail "the source went with its tags"
