#!/usr/bin/env bash
# The spectrogram chapter: right levels, spectra and pictures from good recordings,
# a clear message and the exit code 1 for all others.
#
#     example_spectrogram.sh PROGRAM RECORDING

. "${0%/*}/support/example.sh"
recording=$input

# --- a good recording --------------------------------------------------------

expect_chapter waveform spectrogram closeup

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

# --- a sine of full scale: 1000 Hz is bin 32 ---------------------------------

sine=
for sample in 0 23170 32767 23170 0 -23170 -32767 -23170; do
    sine+=$(le "$sample" 2)
done
wav "$work/sine.wav" 8000 16000
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

wav "$work/silence.wav" 8000 512
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

wav "$work/short.wav" 8000 510
head -c 510 /dev/zero >>"$work/short.wav"
expect_failure "$work/short.wav: is too short: it has 255 samples, 256 are needed" "$work/short.wav"

printf '.snd\0\0\0\x18\0\0\x02\0\0\0\0\x03\0\0\x1f\x40\0\0\0\x01' >"$work/sun.wav"
head -c 512 /dev/zero >>"$work/sun.wav"
expect_failure "$work/sun.wav: is not a WAV file but another kind" "$work/sun.wav"

wav "$work/stereo.wav" 8000 4000 2 1 16
head -c 4000 /dev/zero >>"$work/stereo.wav"
expect_failure "$work/stereo.wav: has 2 channels" "$work/stereo.wav"

wav "$work/nan.wav" 8000 2000 1 3 32
{
    head -c 1996 /dev/zero
    printf '\x00\x00\xc0\x7f'
} >>"$work/nan.wav"
expect_failure "$work/nan.wav: has samples that are infinite or not a number" "$work/nan.wav"

# --- places that cannot be written, and gnuplot failing ----------------------

: >"$work/file"
expect_failure "$work/file/spectrogram: Not a directory" "$recording" "$work/file"

mkdir -p "$work/blocked/spectrogram/waveform.txt"
expect_late_failure "$work/blocked/spectrogram/waveform.txt: cannot be written" "$recording" \
    "$work/blocked"

mkdir "$work/bin"
gnuplotPath=$work/bin
expect_late_failure "gnuplot cannot be run: No such file or directory" "$recording"

printf '#!/bin/sh\nexit 3\n' >"$work/bin/gnuplot"
chmod +x "$work/bin/gnuplot"
expect_late_failure "gnuplot failed on $work/out/spectrogram/waveform.gp" "$recording"

printf '#!/bin/sh\nexit 0\n' >"$work/bin/gnuplot"
expect_late_failure "$work/out/spectrogram/waveform.png: gnuplot drew nothing" "$recording"

finish
