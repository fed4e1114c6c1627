#!/usr/bin/env bash
# The chapter on pitch: every twentieth frame once more, straight from the definition; the
# median and what is printed; sounds of known pitch, noise and silence; pictures; and what a bad
# recording is told.
#
#     example_pitch.sh PROGRAM RECORDING

. "${0%/*}/support/example.sh"
recording=$input

expect_chapter track closeup frames
cd "$work/out/$chapter" || exit 1

# --- the frames --------------------------------------------------------------
# Columns: time level period strength frequency pitch, six digits each. Frames of 400 samples
# every 80; periods of 20 to 133 samples.

od -An -v -t d2 -w2 -j 44 "$recording" | awk '{ print $1 / 32768 }' >"$work/samples"
grep -v '^#' pitch.txt >"$work/frames"
awk '
    function off(name, time, x, y, bound) {
        if (x - y < bound && y - x < bound) return
        print name, time, x, y; bad = 1
    }
    function at(lag, i, sum) {
        sum = 0
        for (i = 0; i + lag < 400; ++i) sum += v[i] * v[i + lag]
        return sum / v0 / wr[lag]
    }
    BEGIN {
        pi = atan2(0, -1)
        for (i = 0; i < 400; ++i) w[i] = 0.5 - 0.5 * cos(2 * pi * i / 399)
        for (lag = 0; lag <= 134; ++lag) {
            for (i = 0; i + lag < 400; ++i) wr[lag] += w[i] * w[i + lag]
            if (lag) wr[lag] /= wr[0]
        }
    }
    FNR == NR { x[n++] = $1; next }
    {
        start = 80 * frames++
        if (frames % 20) next
        mean = squares = v0 = 0
        for (i = 0; i < 400; ++i) { mean += x[start + i] / 400; squares += x[start + i] ^ 2 }
        for (i = 0; i < 400; ++i) { v[i] = (x[start + i] - mean) * w[i]; v0 += v[i] ^ 2 }
        r[19] = at(19); r[20] = at(20)
        best = 0; period = 133; strength = 0
        for (lag = 20; lag <= 133; ++lag) {
            a = r[lag - 1]; b = r[lag]; c = r[lag + 1] = at(lag + 1)
            if (b < a || b <= c) continue
            top = lag + (c - a) / (2 * (2 * b - a - c))
            height = b + (c - a) ^ 2 / (8 * (2 * b - a - c))
            score = height - 0.05 * log(top / 20) / log(2)
            if (score > best) { best = score; period = top; strength = height }
        }
        level = squares ? 10 * log(squares / 400) / log(10) : -120
        if (level < -120) level = -120
        voiced = strength >= 0.6 && level >= -50
        off("time", $1, $1, (start + 200) / 8000, 1e-4)
        off("level", $1, $2, level, 1e-3)
        off("period", $1, $3, period, 1e-3)
        off("strength", $1, $4, strength, 1e-5)
        off("frequency", $1, $5, voiced ? 8000 / period : 0, 1e-2)
        looked++
    }
    END { if (bad || frames != 2194 || looked != 109) { print looked " of " frames; exit 1 } }
    ' "$work/samples" "$work/frames" || fail "frames"

# The median of seven; the end ones stand for what is beyond.
awk '
    { f[NR] = $5; pitch[NR] = $6 }
    function clamp(k) { return k < 1 ? 1 : k > NR ? NR : k }
    END {
        for (k = 2; k < NR; ++k) {
            below = same = 0
            for (i = -3; i <= 3; ++i) {
                below += f[clamp(k + i)] < pitch[k]; same += f[clamp(k + i)] == pitch[k]
            }
            if (below > 3 || below + same < 4) { print k, pitch[k]; exit 1 }
        }
    }' "$work/frames" || fail "the median"

# --- what was printed --------------------------------------------------------

awk '$6 > 0 { print $6 }' "$work/frames" | sort -g | awk '
    { p[NR - 1] = $1 }
    function quantile(part) { return p[int(part * (NR - 1))] }
    END {
        printf "%-16s 2194 of 50 ms, one every 10 ms\n", "Frames"
        printf "%-16s %d frames (%.0f %%)\n", "Voiced", NR, 100 * NR / 2194
        printf "%-16s median %.0f Hz, nine tenths from %.0f to %.0f Hz\n", "Pitch",
            quantile(0.5), quantile(0.05), quantile(0.95)
    }' | diff - "$work/stdout" || fail "pitch (above: expected and printed)"

# --- sounds of known pitch ---------------------------------------------------

# sound FILE RATE SAMPLES: a file of samples given as an expression of i in awk.
sound() {
    wav "$1" "$2" 16000
    awk -v rate="$2" "BEGIN {
        pi = atan2(0, -1)
        for (i = 0; i < 8000; ++i) {
            x = int($3); if (x < 0) x += 65536
            printf \"\\\\x%02x\\\\x%02x\", x % 256, int(x / 256)
        }
    }" | { read -r bytes; printf "$bytes"; } >>"$1"
}

# expect_pitch HZ BOUND FILE: all frames are voiced and at this pitch.
expect_pitch() {
    "$program" "$3" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
        fail "exit code $? on $3: $(cat "$work/stderr")"
    awk -v pitch="$1" -v bound="$2" '
        !/^#/ { seen = 1; if ($6 < pitch - bound || $6 > pitch + bound) { print; exit bad = 1 } }
        END { exit bad || !seen }' "$work/out/pitch/pitch.txt" || fail "pitch of $3"
}

# Pulses every 64 samples, and the same at another rate; sines at the ends of the range; and a
# tone of which only the second and the third harmonic are there.
sound "$work/pulses.wav" 8000 'i % 64 == 0 ? 20000 : 0'
expect_pitch 125 0.05 "$work/pulses.wav"
sound "$work/pulses-16k.wav" 16000 'i % 64 == 0 ? 20000 : 0'
expect_pitch 250 0.1 "$work/pulses-16k.wav"
sound "$work/low.wav" 8000 '9000 * sin(2 * pi * 62 * i / rate)'
expect_pitch 62 0.3 "$work/low.wav"
sound "$work/high.wav" 8000 '9000 * sin(2 * pi * 390 * i / rate)'
expect_pitch 390 2 "$work/high.wav"
sound "$work/missing-first.wav" 8000 \
    '9000 * sin(2 * pi * 300 * i / rate) + 9000 * sin(2 * pi * 450 * i / rate)'
expect_pitch 150 0.3 "$work/missing-first.wav"

# expect_silence FILE: no frame is voiced.
expect_silence() {
    "$program" "$1" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
        fail "exit code $? on $1: $(cat "$work/stderr")"
    grep -qx 'Voiced           0 frames (0 %)' "$work/stdout" || fail "voiced frames in $1"
    grep -qx 'Pitch            none' "$work/stdout" || fail "pitch of $1"
    grep -q nan "$work/stdout" "$work/out/pitch/pitch.txt" && fail "not a number on $1"
}
sound "$work/noise.wav" 8000 '20000 * (rand() - 0.5)'
expect_silence "$work/noise.wav"
sound "$work/quiet.wav" 8000 '90 * sin(2 * pi * 200 * i / rate)' # -54 dBFS
expect_silence "$work/quiet.wav"
wav "$work/silence.wav" 8000 16000
head -c 16000 /dev/zero >>"$work/silence.wav"
expect_silence "$work/silence.wav"

# --- recordings that cannot be taken -----------------------------------------

expect_failure "$work/missing.wav: No such file or directory" "$work/missing.wav"
wav "$work/short.wav" 8000 1022
head -c 1022 /dev/zero >>"$work/short.wav"
expect_failure "$work/short.wav: is too short: it has 511 samples, 512 are needed" "$work/short.wav"
wav "$work/brief.wav" 16000 1600
head -c 1600 /dev/zero >>"$work/brief.wav"
expect_failure "$work/brief.wav: is too short: it has 0.05 s, 0.06 s are needed" "$work/brief.wav"
wav "$work/slow.wav" 3999 16000
head -c 16000 /dev/zero >>"$work/slow.wav"
expect_failure "$work/slow.wav: has 3999 samples per second, 4000 are needed" "$work/slow.wav"

finish
