#!/usr/bin/env bash
# The chapter on the room: the voice in it and the correlations once more, straight from the
# definitions; every arrival found where it was put; pictures; and what a bad recording is told.
#
#     example_room.sh PROGRAM RECORDING

. "${0%/*}/support/example.sh"
recording=$input

expect_chapter response voice correlation
cd "$work/out/$chapter" || exit 1

# --- the arrivals ------------------------------------------------------------
# 343 m/s, 8000 samples a second: every delay is the way's, and is found to the sample.

awk 'BEGIN {
    split("2 3.6 5.1 7.9 10.7 14.2 23", metres)
    for (i = 1; i <= 7; ++i) print int(metres[i] / 343 * 8000 + 0.5)
}' >"$work/delays"
awk '!/^#/ { print $3 }' put-in.txt | diff "$work/delays" - ||
    fail "delays put in (above: expected and written)"
awk '!/^#/ { print $3 }' found.txt | diff "$work/delays" - ||
    fail "delays found (above: expected and written)"
sed -n 's/.*put in at \([0-9]*\) samples.*found at \1, gain.*/\1/p' "$work/stdout" |
    diff "$work/delays" - || fail "delays printed (above: expected and printed)"
grep -qx 'Arrivals         7 put in, 7 found, 7 of them where they were' "$work/stdout" ||
    fail "count of arrivals: $(grep ^Arrivals "$work/stdout")"
paste put-in.txt found.txt | awk '
    /^#/ { next }
    { d = $2 - $5; if (d < -0.02 || d > 0.02) { print; bad = 1 } }
    END { exit bad || NR != 8 }' || fail "gains found"

# The response is nothing else than these and a tail that falls by 60 dB in 0.6 s.
awk '
    FNR == NR { if (!/^#/) gain[$3] = $2; next }
    /^#/ { next }
    {
        n++; k = n - 1; time = k / 8000
        if (k in gain) { if ($2 != gain[k]) bad++; next }
        bound = time < 0.03 ? 0 : 0.05 * 10 ^ (-3 * time / 0.6)
        if ($2 > bound || $2 < -bound) bad++
        if (bound > 0) { tail++; sum += $2 / bound; squares += ($2 / bound) ^ 2 }
    }
    # Evenly spread between -1 and 1: a mean of 0 and a mean square of 1/3.
    END {
        mean = sum / tail; square = squares / tail
        if (bad || n != 4800 || mean < -0.03 || mean > 0.03 || square < 0.32 || square > 0.345) {
            print bad, n, mean, square; exit 1
        }
    }' put-in.txt response.txt || fail "the response"

# --- the voice in the room ---------------------------------------------------

od -An -v -t d2 -w2 -j 44 "$recording" | awk '{ print $1 / 32768 }' >"$work/dry"
awk '
    FILENAME == ARGV[1] { dry[n++] = $1; next }
    /^#/ { next }
    FILENAME == ARGV[2] { response[m++] = $2; next }
    # Every 977th sample as the sum that it is; the files have six digits.
    {
        k = total++
        if (k % 977) next
        sum = 0
        for (i = k < n ? 0 : k - n + 1; i < m && i <= k; ++i) sum += response[i] * dry[k - i]
        if ($2 - sum > 2e-5 || sum - $2 > 2e-5) { print k, $2, sum; bad++ }
    }
    END { if (bad || total != n + m - 1) { print bad, total; exit 1 } }
    ' "$work/dry" response.txt echoed.txt || fail "the voice in the room"

# --- the correlations --------------------------------------------------------

awk '
    FILENAME == ARGV[1] { dry[n++] = $1; next }
    /^#/ { next }
    FILENAME == ARGV[2] { echoed[m++] = $2; next }
    { sharp[lags++] = $3; voice[lags - 1] = $2 }
    function off(name, lag, x, y) {
        if (x - y > 1e-3 || y - x > 1e-3) { print name, lag, x, y; bad = 1 }
    }
    END {
        for (i = 0; i < n; ++i) energy += dry[i] ^ 2
        for (i = 0; i + 2 < n; ++i) {
            x[i] = dry[i + 2] - 2 * dry[i + 1] + dry[i]; sharpEnergy += x[i] ^ 2
        }
        for (i = 0; i + 2 < m; ++i) y[i] = echoed[i + 2] - 2 * echoed[i + 1] + echoed[i]
        for (lag = 0; lag < lags; lag += 47) {
            sum = sharpSum = 0
            for (i = 0; i < n; ++i) sum += dry[i] * echoed[i + lag]
            for (i = 0; i + 2 < n; ++i) sharpSum += x[i] * y[i + lag]
            off("voice", lag, voice[lag], sum / energy)
            off("second differences", lag, sharp[lag], sharpSum / sharpEnergy)
        }
        if (bad || lags != 721) { print lags " lags"; exit 1 }
    }' "$work/dry" echoed.txt correlation.txt || fail "the correlations"

# --- what was printed --------------------------------------------------------

awk '
    function db(x) { return 20 * log(x) / log(10) }
    FNR == NR { n++; dry += $1 ^ 2; next }
    /^#/ { next }
    { m++; echoed += $2 ^ 2 }
    END {
        printf "%-16s %.2f s, %.1f dBFS\n", "Voice", n / 8000, db(sqrt(dry / n))
        printf "%-16s 0.60 s (4800 samples at 8000 Hz)\n", "Response"
        printf "%-16s %.2f s, %.1f dBFS\n", "In the room", m / 8000, db(sqrt(echoed / m))
    }' "$work/dry" echoed.txt | diff - <(head -n 3 "$work/stdout") ||
    fail "levels (above: expected and printed)"

# --- other recordings --------------------------------------------------------

# A single click is played as the response itself, so that all is found.
wav "$work/click.wav" 8000 16000
{
    head -c 2000 /dev/zero
    printf '\x00\x40'
    head -c 13998 /dev/zero
} >>"$work/click.wav"
"$program" "$work/click.wav" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
    fail "exit code $? on a click: $(cat "$work/stderr")"
grep -q '7 found, 7 of them where they were' "$work/stdout" || fail "arrivals of a click"

wav "$work/silence.wav" 8000 16000
head -c 16000 /dev/zero >>"$work/silence.wav"
"$program" "$work/silence.wav" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
    fail "exit code $? on silence: $(cat "$work/stderr")"
grep -q nan "$work/stdout" && fail "not a number on silence"
grep -q '7 put in, 0 found' "$work/stdout" || fail "arrivals in silence"

expect_failure "$work/missing.wav: No such file or directory" "$work/missing.wav"
wav "$work/short.wav" 8000 15998
head -c 15998 /dev/zero >>"$work/short.wav"
expect_failure "$work/short.wav: is too short: it has 0.999875 s, 1 s are needed" "$work/short.wav"
wav "$work/slow.wav" 3999 16000
head -c 16000 /dev/zero >>"$work/slow.wav"
expect_failure "$work/slow.wav: has 3999 samples per second, 4000 are needed" "$work/slow.wav"

finish
