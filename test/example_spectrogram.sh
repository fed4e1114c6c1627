#!/usr/bin/env bash
# The spectrogram chapter: right levels, spectra and pictures from good recordings,
# a clear message and the exit code 1 for all others.
#
#     example_spectrogram.sh PROGRAM RECORDING

export LC_ALL=C
program=$1
recording=$2
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
failures=0

[ -x "$program" ] && [ -r "$recording" ] || {
    echo "usage: $0 PROGRAM RECORDING" >&2
    exit 2
}

fail() {
    printf 'FAILED: %s\n' "$*"
    failures=$((failures + 1))
}

# expect_failure TEXT INPUT [OUTPUT]: one line that begins with the chapter's name and holds
# the text, nothing else printed, exit code 1. The program looks for gnuplot in gnuplotPath.
gnuplotPath=$PATH
expect_failure() {
    local text=$1 input=$2 output=${3:-$work/out} status
    env PATH="$gnuplotPath" "$program" "$input" "$output" >"$work/stdout" 2>"$work/stderr"
    status=$?
    [ "$status" -eq 1 ] || fail "exit code $status on $input"
    [ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "not one line on $input: $(cat "$work/stderr")"
    grep -qF "spectrogram: $text" "$work/stderr" ||
        fail "expected '$text' on $input, got: $(cat "$work/stderr")"
}

# le VALUE BYTES: an integer, lowest byte first, as printf's escapes.
le() {
    local value=$1 i
    for ((i = 0; i < $2; ++i)); do
        printf '\\x%02x' $((value & 255))
        value=$((value >> 8))
    done
}

# wav FILE CHANNELS FORMAT BITS BYTES: the header of a file at 8000 samples a second.
wav() {
    local file=$1 channels=$2 format=$3 bits=$4 bytes=$5
    local block=$((channels * bits / 8))
    printf "RIFF$(le $((36 + bytes)) 4)WAVEfmt $(le 16 4)$(le "$format" 2)$(le "$channels" 2)$(
        le 8000 4)$(le $((8000 * block)) 4)$(le "$block" 2)$(le "$bits" 2)data$(le "$bytes" 4)" \
        >"$file"
}

# --- a good recording --------------------------------------------------------

"$program" "$recording" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
    fail "exit code $? on the recording"
[ ! -s "$work/stderr" ] || fail "on the recording: $(cat "$work/stderr")"

# The levels, once more, from the samples behind the header of 44 bytes.
od -An -v -t d2 -w2 -j 44 "$recording" | awk '
    { x = $1 / 32768; sum += x; squares += x * x; a = x < 0 ? -x : x; if (a > peak) peak = a }
    function db(x) { return 20 * log(x) / log(10) }
    END {
        rms = sqrt(squares / NR); mean = sum / NR; if (mean < 0) mean = -mean
        printf "%-16s %.2f s (%d samples at 8000 Hz)\n", "Length", NR / 8000, NR
        printf "%-16s %.1f dBFS\n", "Peak", db(peak)
        printf "%-16s %.1f dBFS\n", "RMS", db(rms)
        printf "%-16s %.1f dB\n", "Crest factor", db(peak / rms)
        printf "%-16s %.1f dBFS\n", "DC", db(mean)
    }' >"$work/levels"
diff "$work/levels" "$work/stdout" || fail "levels (above: expected and printed)"

for picture in waveform spectrogram closeup; do
    grep -qF "src=\"spectrogram/$picture.png\"" "$work/out/spectrogram/section.html" ||
        fail "$picture.png is not on the page"
    [ "$(head -c 8 "$work/out/spectrogram/$picture.png" | od -An -t x1 | tr -d ' \n')" = \
        89504e470d0a1a0a ] || fail "$picture.png is no picture"
done

# --- a sine of full scale: 1000 Hz is bin 32 ---------------------------------

sine=
for sample in 0 23170 32767 23170 0 -23170 -32767 -23170; do
    sine+=$(le "$sample" 2)
done
wav "$work/sine.wav" 1 1 16 16000
for ((i = 0; i < 1000; ++i)); do
    printf "$sine"
done >>"$work/sine.wav"
"$program" "$work/sine.wav" "$work/out" >"$work/stdout" || fail "exit code $? on the sine"
grep -qx 'Crest factor     3.0 dB' "$work/stdout" || fail "crest factor of a sine"
od -An -v -t f4 -w516 "$work/out/spectrogram/spectrogram.bin" | awk '
    function off(x, y) { return x < y - 0.01 || x > y + 0.01 }
    # The levels one bin away: the spectrum of the window itself there.
    BEGIN {
        pi = atan2(0, -1)
        for (i = 0; i < 256; ++i) {
            w = 0.5 - 0.5 * cos(2 * pi * i / 255)
            sum += w; re += w * cos(2 * pi * i / 256); im += w * sin(2 * pi * i / 256)
        }
        beside = 20 * log(sqrt(re * re + im * im) / sum) / log(10)
    }
    {
        best = 1; for (k = 2; k <= NF; ++k) if ($k > $best) best = k
        if (NF != 129 || best != 33 || off($33, 0) || off($32, beside) || off($34, beside)) bad++
    }
    END { if (bad || NR != 122) { print bad " of " NR " frames"; exit 1 } }' ||
    fail "spectrum of a sine"

# --- silence, and the shortest recording -------------------------------------

wav "$work/silence.wav" 1 1 16 512
head -c 512 /dev/zero >>"$work/silence.wav"
"$program" "$work/silence.wav" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
    fail "exit code $? on silence: $(cat "$work/stderr")"
grep -q nan "$work/stdout" && fail "not a number on silence"

# --- recordings that cannot be taken -----------------------------------------

expect_failure "$work/missing.wav: No such file or directory" "$work/missing.wav"
expect_failure "$work: is a directory" "$work"

: >"$work/empty.wav"
expect_failure "$work/empty.wav: is empty" "$work/empty.wav"

echo 'no sound at all, just words' >"$work/text.wav"
expect_failure "$work/text.wav: is not a WAV file" "$work/text.wav"

mkfifo "$work/pipe.wav"
expect_failure "$work/pipe.wav: is not a regular file" "$work/pipe.wav"

if [ "$(id -u)" -ne 0 ]; then
    cp "$recording" "$work/locked.wav"
    chmod 000 "$work/locked.wav"
    expect_failure "$work/locked.wav: Permission denied" "$work/locked.wav"
fi

head -c 30 "$recording" >"$work/header.wav"
expect_failure "$work/header.wav: is not a WAV file" "$work/header.wav"

head -c 100000 "$recording" >"$work/half.wav"
expect_failure "$work/half.wav: is cut short" "$work/half.wav"

head -c -2 "$recording" >"$work/nearly.wav"
expect_failure "$work/nearly.wav: is cut short" "$work/nearly.wav"

head -c 44 "$recording" >"$work/none.wav"
expect_failure "$work/none.wav: is cut short" "$work/none.wav"

wav "$work/short.wav" 1 1 16 510
head -c 510 /dev/zero >>"$work/short.wav"
expect_failure "$work/short.wav: is too short: it has 255 samples, 256 are needed" "$work/short.wav"

printf '.snd\0\0\0\x18\0\0\x02\0\0\0\0\x03\0\0\x1f\x40\0\0\0\x01' >"$work/sun.wav"
head -c 512 /dev/zero >>"$work/sun.wav"
expect_failure "$work/sun.wav: is not a WAV file but another kind" "$work/sun.wav"

wav "$work/stereo.wav" 2 1 16 4000
head -c 4000 /dev/zero >>"$work/stereo.wav"
expect_failure "$work/stereo.wav: has 2 channels" "$work/stereo.wav"

wav "$work/nan.wav" 1 3 32 2000
{
    head -c 1996 /dev/zero
    printf '\x00\x00\xc0\x7f'
} >>"$work/nan.wav"
expect_failure "$work/nan.wav: has samples that are infinite or not a number" "$work/nan.wav"

# --- places that cannot be written, and gnuplot failing ----------------------

: >"$work/file"
expect_failure "$work/file/spectrogram: Not a directory" "$recording" "$work/file"

mkdir -p "$work/blocked/spectrogram/waveform.txt"
expect_failure "$work/blocked/spectrogram/waveform.txt: cannot be written" "$recording" \
    "$work/blocked"

mkdir "$work/bin"
gnuplotPath=$work/bin
expect_failure "gnuplot cannot be run: No such file or directory" "$recording"

printf '#!/bin/sh\nexit 3\n' >"$work/bin/gnuplot"
chmod +x "$work/bin/gnuplot"
expect_failure "gnuplot failed on $work/out/spectrogram/waveform.gp" "$recording"

printf '#!/bin/sh\nexit 0\n' >"$work/bin/gnuplot"
expect_failure "$work/out/spectrogram/waveform.png: gnuplot drew nothing" \
    "$recording"

"$program" "$recording" >/dev/null 2>"$work/stderr"
[ $? -eq 2 ] || fail "exit code on a missing argument"
grep -q '^usage: ' "$work/stderr" || fail "no usage on a missing argument"

[ "$failures" -eq 0 ]
