#!/bin/bash
# Drives the real window with keyboard and mouse on a screen of its own and looks at what comes of
# it: "$TAVLO" is the program, "$TAVLO_DRAG" the window to drag from, "$TAVLO_PICTURES" the folder
# for what was seen. 77: the tools for it are not here.
set -u
for tool in Xvfb openbox xdotool import; do command -v $tool >/dev/null || exit 77; done
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null; wait 2>/dev/null; rm -rf "$work"' EXIT
pictures=${TAVLO_PICTURES:-$work}
mkdir -p "$pictures" "$work/settings/tavlo"
export XDG_CONFIG_HOME=$work/settings TAVLO_TRACE=$work/trace
patience=${TAVLO_PATIENCE:-600} # tenths of a second
many=60000                       # files whose reading takes long enough to be stopped

fail() {
    echo "FAILED: $*"
    cat "$work/trace" "$work/out" 2>/dev/null
    picture failed
    exit 1
}
# The name by which the program knows a path.
named() {
    local path=$1
    [ "$TAVLO_SYSTEM" = native ] || path=Z:${path//\//\\}
    echo "$path"
}
picture() { import -window root "$pictures/$1.png"; }
keys() { xdotool key --clearmodifiers --delay 40 "$@"; }
write() { xdotool type --delay 25 "$1"; }
# Waits for the Nth line of the trace that says so; gives its number.
await() {
    local event=$1 nth=${2:-1} value
    for ((i = 0; i < patience; ++i)); do
        value=$(awk -v e="$event" -v n="$nth" '$2 == e && ++seen == n { print int($3); exit }' \
            "$work/trace" 2>/dev/null)
        if [ -n "$value" ]; then
            answer=$value
            return
        fi
        sleep 0.1
    done
    fail "no $event ($nth)"
}
happened() { grep -c " $1 " "$work/trace"; }
# Does something and waits for the next such line.
then_await() {
    local event=$1 before
    before=$(happened "$event")
    "${@:2}"
    await "$event" $((before + 1))
    sleep 0.3
}
title_of() {
    /usr/bin/python3 -c 'import sys, mutagen.id3
print(mutagen.id3.ID3(sys.argv[1]).get("TIT2"))' "$1"
}
sound_of() {
    /usr/bin/python3 -c 'import sys, hashlib, mutagen.id3
data = open(sys.argv[1], "rb").read()
data = data[mutagen.id3.ID3(sys.argv[1]).size:]
print(hashlib.sha256(data[:-128] if data[-128:-125] == b"TAG" else data).hexdigest())' "$1"
}
begin() {
    : >"$work/trace"
    "$TAVLO" "$@" >"$work/out" 2>&1 &
    program=$!
    await shown
    await loaded
    sleep 1
}
close() {
    then_await closed keys ctrl+q
    wait "$program" || fail "exit code $?"
}
go_to() {
    keys ctrl+l ctrl+a
    write "$1"
    keys Return
}

Xvfb -displayfd 9 -screen 0 1024x768x24 -nolisten tcp 9>"$work/display" >/dev/null 2>&1 &
for ((i = 0; i < 100; ++i)); do [ -s "$work/display" ] && break; sleep 0.1; done
DISPLAY=:$(cat "$work/display")
export DISPLAY TAVLO_DISPLAY=$DISPLAY
openbox >/dev/null 2>&1 &
sleep 0.5

# On Windows the settings lie in the registry, where an earlier run has left its own.
[ "$TAVLO_SYSTEM" = native ] ||
    cmake/wine.sh reg delete 'HKCU\Software\Tavlo' /f >/dev/null 2>&1

cp -r samples "$work/music"
second=$(ls -d "$work"/music/02*.mp3)
bench/make_tree.py "$work/tree" "$many"
mkdir "$work/dropped"
cp "$work"/music/0[5-7]*.mp3 "$work/dropped"

# A folder of real files, an edit, the bytes on the disk.
before=$(sound_of "$second")
begin "$(named "$work/music")"
[ "$answer" = 11 ] || fail "$answer files listed"
keys Down
sleep 0.5
keys F4 Tab ctrl+a
write "Typed here"
sleep 0.5
picture edit
then_await done keys ctrl+s
[ "$(title_of "$second")" = "Typed here" ] || fail "title is $(title_of "$second")"
[ "$(sound_of "$second")" = "$before" ] || fail "the sound changed"

# Sorting by a click on a heading, narrowing while typing.
heading=138
[ "$TAVLO_SYSTEM" = native ] || heading=153
then_await sorted xdotool mousemove 60 $heading click 1
sleep 1 # or else it is a double click
then_await sorted xdotool click 1
keys F3
then_await selected keys Down # the row that was selected is elsewhere now
[ "$answer" = 1 ] || fail "$answer files selected by one key"
keys ctrl+f
then_await filtered write M
write arble
sleep 1
shown=$(awk '$2 == "listed" { shown = int($3) } END { print shown }' "$work/trace")
[ "$shown" = 1 ] || fail "$shown files shown for Marble"
picture filter
keys Escape

# A folder that is dropped onto the list is shown.
"$TAVLO_DRAG" 930 670 "$work/dropped" >/dev/null 2>&1 &
drag=$!
sleep 1.5
xdotool mousemove 970 710 mousedown 1
for step in $(seq 1 12); do
    xdotool mousemove $((970 - step * 55)) $((710 - step * 30))
    sleep 0.05
done
then_await loaded xdotool mouseup 1
kill $drag
[ "$answer" = 3 ] || fail "$answer files after the drop"

# A long reading is cut short.
keys ctrl+b
sleep 1
before=$(happened loaded)
begun=$(happened rows)
go_to "$(named "$work/tree")"
await rows $((begun + 1))
keys Escape
await loaded $((before + 1))
[ "$answer" -lt $many ] || fail "the reading was not stopped"
sleep 0.7
picture stopped
keys Escape

# Closing with an edit that is not saved asks; the file stays as it is.
then_await loaded go_to "$(named "$work/music")"
keys F3 Home
sleep 0.3
keys Down
sleep 0.5
keys F4 Tab ctrl+a
write "Not to be kept"
keys F12
sleep 1
keys ctrl+f
write double
sleep 0.5
keys Tab Tab space # the only option that is left
picture options
then_await options keys Return
[ "$answer" = 1 ] || fail "no option was changed"
keys ctrl+q
sleep 1
picture question
keys Escape
sleep 0.5
kill -0 "$program" || fail "it closed without an answer"
keys ctrl+q
sleep 1
then_await closed keys alt+d
wait "$program" || fail "exit code $?"
[ "$(title_of "$second")" = "Typed here" ] || fail "an edit was kept that nobody saved"

# Other language, other colours.
cat >"$work/settings/tavlo/settings.txt" <<'END'
[HKEY_CURRENT_USER\Software\Tavlo\Audio Desk\4.0\Settings]
"Language"="ru"
"MainTree"=-1
END
if [ "$TAVLO_SYSTEM" = native ]; then
    GTK_THEME=Adwaita:dark begin "$(named "$work/music")"
    keys Down Down Down
    sleep 0.7
    picture dark-russian
    keys F12
    sleep 1
    picture options-russian
    keys Escape
    sleep 0.5
    keys alt+Return
    sleep 1
    picture information-russian
    keys Escape
    sleep 0.5
    close
fi
echo "the window did what it was told"
