#!/usr/bin/env bash
# The chapter on the electrocardiogram: every step of the chain and every number once
# more, straight from the definitions; pictures; and what a bad recording is told.
#
#     example_ecg.sh PROGRAM RECORDING

. "${0%/*}/support/example.sh"
recording=$input

expect_chapter before-after steps hum spectra responses
cd "$work/out/$chapter" || exit 1

# --- the chain ---------------------------------------------------------------
# Columns: time recorded hummed wander level adaptive notched smooth. They have six
# digits, which is 5e-6 mV at the largest values.

grep -v '^#' "$recording" >"$work/input"
grep -v '^#' steps.txt >"$work/steps"
paste "$work/input" "$work/steps" | awk '
    $1 != $3 { bad++ }
    END { if (bad || NR != 21600) { print bad " of " NR; exit 1 } }' || fail "what was read"

awk '
    function off(name, n, x, y, bound) {
        if (x - y < bound && y - x < bound) return
        if (!seen[name]++) print name ": " x " instead of " y " at " n
        bad = 1
    }
    BEGIN { pi = atan2(0, -1); step = 2 / 6 * 2 * pi / 360 }
    {
        n = NR - 1
        recorded = $2; hummed[n] = $3; wander[n] = $4; level[n] = $5; adaptive[n] = $6
        notched[n] = $7; smooth[n] = $8

        # The mains, which come two samples late into the recording.
        reference = sin(phase)
        phase += 2 * pi / 360 * (60 + 0.1 * sin(2 * pi * n / 360 / 20))
        off("hum", n, $3, recorded + 0.1 * late[n % 2], 2e-5)
        late[n % 2] = reference
        off("wander subtracted", n, $5, $3 - $4, 2e-5)

        # Least mean squares.
        for (i = 0; i < 6; ++i) tap[i] += step * error * line[i]
        for (i = 5; i > 0; --i) line[i] = line[i - 1]
        line[0] = reference
        error = $5
        for (i = 0; i < 6; ++i) error -= tap[i] * line[i]
        off("adaptive filter", n, $6, error, 5e-5)

        # The notch, by its difference equation.
        r = 1 - pi / 360; c = 2 * cos(2 * pi / 6)
        gain = (1 - c * r + r * r) / (2 - c)
        y = gain * ($5 - c * x1 + x2) + c * r * y1 - r * r * y2
        x2 = x1; x1 = $5; y2 = y1; y1 = y
        off("notch", n, $7, y, 5e-5)
    }
    # The middle one of values[0] to values[m - 1].
    function middle(m, i, j, v) {
        for (i = 1; i < m; ++i) {
            v = values[i]
            for (j = i - 1; j >= 0 && values[j] > v; --j) values[j + 1] = values[j]
            values[j + 1] = v
        }
        return values[int(m / 2)]
    }
    function clamp(n) { return n < 0 ? 0 : n >= NR ? NR - 1 : n }
    function first_median(n, i) {
        if (n == 0 || n == NR - 1) return hummed[n]
        for (i = 0; i < 73; ++i) values[i] = hummed[clamp(n + i - 36)]
        return middle(73)
    }
    END {
        for (n = 36; n < NR; n += 2154) {
            for (i = 0; i < 217; ++i) firsts[i] = first_median(clamp(n + i - 108))
            for (i = 0; i < 217; ++i) values[i] = firsts[i]
            off("wander", n, wander[n], middle(217), 1e-9)
        }
        for (i = 0; i < 101; ++i) {
            t = pi * (i - 50)
            h[i] = (i == 50 ? 80 / 360 : sin(80 / 360 * t) / t) * (0.54 - 0.46 * cos(pi * i / 50))
            sum += h[i]
        }
        for (n = 0; n < NR; n += 41) {
            y = 0
            for (i = 0; i < 101; ++i) y += h[i] / sum * adaptive[clamp(n + i - 50)]
            off("low-pass", n, smooth[n], y, 2e-5)
        }
        exit bad
    }' "$work/steps" || fail "the chain"

# Every 25 new samples take as long as 36 old ones. At the very start the kink to the
# value held before it lies in the middle of the filter.
awk '
    FNR == NR { if (!/^#/) smooth[old++] = $8; next }
    /^#/ { next }
    {
        if (m > 0 && m % 25 == 0) {
            difference = $2 - smooth[m / 25 * 36]
            if (difference > 1e-4 || difference < -1e-4) bad++
            common++
        }
        m++
    }
    END {
        if (bad || m != 15000 || common != 599) {
            print bad " of " common " in " m; exit 1
        }
    }' steps.txt resampled.txt || fail "the change of rate"

# --- what was printed --------------------------------------------------------
# The level from 59.5 to 60.5 Hz: Fourier sums at the frequencies in between, over frames
# of 4096 samples under a Hann window.

awk '
    BEGIN {
        N = 4096; pi = atan2(0, -1)
        for (i = 0; i < N; ++i) {
            w[i] = 0.5 - 0.5 * cos(2 * pi * i / (N - 1)); squares += w[i] * w[i]
            c[i] = cos(2 * pi * i / N); s[i] = sin(2 * pi * i / N)
        }
    }
    { x[1, NR - 1] = $2; x[2, NR - 1] = $5; x[3, NR - 1] = $6; x[4, NR - 1] = $7 }
    function level(column, start, k, i, re, im, v, sum, frames) {
        for (start = 1800; start + N <= NR; start += N / 2) {
            frames++
            for (k = 677; k <= 688; ++k) {
                re = im = 0
                for (i = 0; i < N; ++i) {
                    v = w[i] * x[column, start + i]
                    re += v * c[k * i % N]; im += v * s[k * i % N]
                }
                sum += re * re + im * im
            }
        }
        return 1000 * sqrt(2 * sum / (frames * N * squares))
    }
    function db(x) { return 20 * log(x) / log(10) }
    END {
        recorded = level(1); before = level(2); adaptive = level(3); notched = level(4)
        printf "%-16s %.1f \302\265V as recorded, %.1f \302\265V with hum\n",
            "Around 60 Hz", recorded, before
        printf "%-16s %.1f \302\265V left, suppressed by %.1f dB\n",
            "Adaptive filter", adaptive, db(before / adaptive)
        printf "%-16s %.1f \302\265V left, suppressed by %.1f dB\n",
            "Notch", notched, db(before / notched)
        if (db(before / adaptive) < 25 || db(before / notched) < 15) exit 1
    }' "$work/steps" >"$work/levels" || fail "hum is hardly suppressed"
grep -e '^Around' -e '^Adaptive' -e '^Notch' "$work/stdout" | diff "$work/levels" - ||
    fail "levels of the hum (above: expected and printed)"
{
    printf '%-16s %s\n' Recording '60.0 s (21600 samples at 360 Hz)'
    printf '%-16s %s\n' 'Hum added' $'70.7 \302\265V at 60 Hz, give or take 0.1 Hz'
    printf '%-16s %s\n' Resampled '60.0 s (15000 samples at 250 Hz)'
} >"$work/lengths"
grep -e '^Recording' -e '^Hum' -e '^Resampled' "$work/stdout" | diff "$work/lengths" - ||
    fail "lengths (above: expected and printed)"

# --- the responses -----------------------------------------------------------

# within FILE COLUMN FROM TO LOWEST HIGHEST: the gain in a band lies between two values.
within() {
    awk -v column="$2" -v from="$3" -v to="$4" -v lowest="$5" -v highest="$6" '
        /^#/ || $1 < from || $1 > to { next }
        { seen = 1; if ($column < lowest || $column > highest) { print; exit bad = 1 } }
        END { exit bad || !seen }' "$1" || fail "gain in column $2 of $1 from $3 to $4 Hz"
}
within responses.txt 2 0 180 -0.0001 0.0001 # an impulse passes a median's difference
for column in 3 4; do
    within responses.txt $column 0 50 -0.03 0.08
    within responses.txt $column 59.485 59.515 -3.3 -2.8
    within responses.txt $column 59.98 60.02 -200 -30
    within responses.txt $column 60.485 60.515 -3.3 -2.8
    within responses.txt $column 70 180 -0.03 0.08
done
within responses.txt 5 0 33 -0.03 0.03
within responses.txt 5 39.98 40.02 -6.2 -5.9
within responses.txt 5 47 180 -200 -53
within responses-rate.txt 2 0 95 -0.01 0.01
within responses-rate.txt 2 109.8 110.2 -6.3 -5.8
within responses-rate.txt 2 125 4500 -400 -74
within responses-median.txt 2 0.05 0.2 -100 -35
within responses-median.txt 2 10 20 -0.5 0.5

# --- other recordings --------------------------------------------------------

{
    printf '# one beat a second, none of it real\n\n'
    awk 'BEGIN { for (i = 0; i < 8000; ++i) print i % 360 == 100 ? "1e0" : 0 }'
} >"$work/short.txt"
"$program" "$work/short.txt" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
    fail "exit code $? on a short recording: $(cat "$work/stderr")"
grep -qF '(8000 samples at 360 Hz)' "$work/stdout" || fail "length of a short recording"
grep -qF '(5555 samples at 250 Hz)' "$work/stdout" || fail "resampled length of a short recording"
grep -q nan "$work/stdout" && fail "not a number on a short recording"

expect_failure "$work/missing.txt: No such file or directory" "$work/missing.txt"
expect_failure "$work: is a directory, not a text file of numbers" "$work"
: >"$work/empty.txt"
expect_failure "$work/empty.txt: is empty" "$work/empty.txt"
mkfifo "$work/pipe.txt"
expect_failure "$work/pipe.txt: is not a regular file" "$work/pipe.txt"
head -n 7000 "$recording" >"$work/cut.txt"
expect_failure "$work/cut.txt: is too short: it has 6999 numbers, 7944 are needed" "$work/cut.txt"
for line in 'one' '1 2' '1,5' 'nan' 'inf' '1e999' '0.5 mV'; do
    { head -n 100 "$recording"; echo "$line"; cat "$recording"; } >"$work/bad.txt"
    expect_failure "$work/bad.txt: line 101 is not a number" "$work/bad.txt"
done

finish
