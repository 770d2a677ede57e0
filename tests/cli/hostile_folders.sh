#!/bin/bash
# What somebody else put into a folder: no job hangs on it, writes through it, leaves the folder or
# upsets the terminal; what was left out is told.
set -euo pipefail
[ "$TAVLO_SYSTEM" = native ] || exit 77 # links and pipes are made by this system only
samples=$PWD/samples
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
export XDG_CONFIG_HOME=$place/settings TAVLO_ANSI_CODE_PAGE=1252
chmod 755 "$place"
cd "$place"
song=$(find "$samples" -name '02 *.mp3' | head -1)

fail() {
    echo "$1"
    exit 1
}

# fails JOB...: the job ends in time, tells something and says so in its exit code
fails() {
    local code=0
    timeout 60 "$TAVLO" "$@" > printed 2> told || code=$?
    [ "$code" != 124 ] || fail "hangs: $*"
    [ "$code" != 0 ] || fail "says that all is well: $*"
    [ -s told ] || fail "tells nothing: $*"
}

# Things that are no files that can be read. Who may read everything gives that right up.
mkdir odd odd/folder.mp3
cp "$song" odd/good.mp3
mkfifo odd/pipe.mp3
ln -s nowhere odd/dangling.mp3
ln -s loop.mp3 odd/loop.mp3
python3 -c 'import socket; socket.socket(socket.AF_UNIX).bind("odd/socket.mp3")'
odd='pipe dangling loop socket'
if [ "$(id -u)" != 0 ]; then
    cp "$song" odd/secret.mp3
    chmod 000 odd/secret.mp3
    odd="$odd secret"
fi
told_odd() {
    local name
    for name in $odd; do grep -q "$name.mp3" told || fail "$1 does not tell of $name"; done
}
for job in '/scan' '/scan /json' '/change /t New' '/rename /template %T' '/makelist' \
    '/encode wav'; do
    # shellcheck disable=SC2086
    fails ${job%% *} odd ${job#"${job%% *}"}
    [ "$job" = '/encode wav' ] || told_odd "$job"
done
[ -p odd/pipe.mp3 ] && [ -L odd/dangling.mp3 ] || fail "odd things were touched"
if grep -aqE 'pipe|dangling|loop|socket' 'odd/!Playlist.m3u'; then fail "listed what is not there"; fi
(cd odd && printf "odd/%s\n" *.mp3) > odd.m3u
fails /copy odd.m3u /to copies
told_odd /copy
[ "$(find copies -type f | wc -l)" = 1 ] || fail "copied what is no file"

# Links under the names of what is written.
echo mine > victim
mkdir linked
cp "$song" linked/
ln -s ../victim 'linked/!Playlist.m3u'
fails /makelist linked
fails /makelist linked /dryrun
ln -s victim log.txt
fails /encode wav linked /to copies /log log.txt
[ "$(cat victim)" = mine ] || fail "written through a link"

# Lists that lead out of the folder that was named.
mkdir -p out/in out/in/sub
cp "$song" out/outside.mp3
cp "$song" out/in/sub/inside.mp3
printf '../outside.mp3\r\nsub/inside.mp3\r\n' > out/in/l.m3u
for wanted in out/in out/in/l.m3u; do
    fails /rename2 $wanted /template 'new %T'
    grep -q 'outside.mp3' told || fail "not named"
    [ -f out/outside.mp3 ] || fail "left the folder by $wanted"
    [ ! -f out/in/sub/inside.mp3 ] || fail "nothing was renamed by $wanted"
    "$TAVLO" /undo > /dev/null
done
fails /rename out/in/l.m3u /template 'new %T'
[ -f out/outside.mp3 ] || fail "/rename left the folder"
"$TAVLO" /undo > /dev/null
"$TAVLO" /rename2 out/in /template 'new %T' /outside > /dev/null
[ ! -f out/outside.mp3 ] || fail "/outside takes nothing along"
"$TAVLO" /undo > /dev/null

# A journal that somebody made, and strange things beside it.
journals=settings/tavlo/renames
cp "$song" stolen.mp3
size=$(stat -c %s stolen.mp3)
touch -d @1700000000 stolen.mp3
forged() {
    printf 'batch\tnow\nfile\t%s\t1700000000000000000\t%s\t%s\nroot\t%s\nmoved\ndone\n' \
        "$size" "$place/odd/taken.mp3" "$place/stolen.mp3" "$place/odd"
}
forged > $journals/000998.txt
fails /undo
[ -f stolen.mp3 ] || fail "moved what a strange journal names"
rm $journals/000998.txt
forged | sed "s|^root.*|root\t$place|" > $journals/000998.txt
chmod 666 $journals/000998.txt
fails /undo
[ -f stolen.mp3 ] || fail "moved what anybody may have written"
rm $journals/000998.txt

# Names and tags that a terminal would act on.
mkdir shown
evil=$'\e]0;x\a\u202e\u009b2J\u2066'
cp "$song" "shown/$evil"$'\n.mp3'
cp "$song" "shown/plain.mp3"
"$TAVLO" /change shown /a "x$evil" /t "y$evil" > /dev/null 2>&1 || true
mkfifo "shown/$evil.mp3"
printf '%s.mp3\nnone.txt\n' "$evil" > evil.m3u
for job in '/scan' '/scan /json' '/change /t z /dryrun' '/change /t z /dryrun /json' \
    '/rename /template %T- /dryrun' '/rename /template %T- /dryrun /json' '/makelist /dryrun' \
    '/encode mp3 /dryrun' '/encode mp3 /dryrun /json' "/$evil"; do
    # shellcheck disable=SC2086
    timeout 60 "$TAVLO" ${job%% *} shown ${job#"${job%% *}"} > printed 2>&1 || true
    timeout 60 "$TAVLO" /copy evil.m3u /to copies >> printed 2>&1 || true
    if LC_ALL=C.UTF-8 grep -qP '[\x00-\x08\x0b-\x1f\x7f\x{80}-\x{9f}\x{202a}-\x{202e}\x{2066}-\x{2069}]' printed
    then fail "a terminal gets more than letters: $job"; fi
done
"$TAVLO" /scan shown /json > printed 2> told || true # the pipe is told
python3 -c '
import json, os, sys
paths = [json.loads(line)["Path"] for line in sys.stdin]
assert sorted(map(os.path.basename, paths)) == sorted(os.listdir("shown")), paths' < printed

# One song under several names: no run is in its own way.
mkdir names
cp "$song" names/a.mp3
for name in b c d; do ln -s a.mp3 "names/$name.mp3"; done
ln names/a.mp3 names/hard.mp3
"$TAVLO" /change names /a "one name" > printed 2> told || fail "$(cat told)"
