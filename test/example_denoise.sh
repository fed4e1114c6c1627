#!/usr/bin/env bash
# The chapter on noise taken out by wavelets: the piece and its noise, the low-pass, and all that
# Haar's bank does once more, straight from the definitions; parts that add up; figures that theory
# has; pictures; and what a bad recording is told.
#
#     example_denoise.sh PROGRAM RECORDING

. "${0%/*}/support/example.sh"
recording=$input

expect_chapter traces ratios thresholds parts details
cp "$work/stdout" "$work/printed"
cd "$work/out/$chapter" || exit 1

# --- the piece and the noise -------------------------------------------------
# Columns of piece.txt: time piece with-noise low-pass symlet symlet-universal Haar Haar-universal.
# They have six digits.

grep -v '^#' "$recording" | sed -n '6481,14672p' >"$work/recorded"
grep -v '^#' piece.txt >"$work/piece"
paste "$work/recorded" "$work/piece" | awk '
    function off(x, y, bound) { return x - y > bound || y - x > bound }
    { recorded[NR] = $1; piece[NR] = $3; sum += $1; if (off($2, 18 + (NR - 1) / 360, 1e-4)) bad++ }
    { e = $4 - $3; s1 += e; s2 += e * e; s3 += e ^ 3; s4 += e ^ 4; next_to += e * before; before = e }
    END {
        for (i = 1; i <= NR; ++i) {
            if (off(piece[i], recorded[i] - sum / NR, 6e-6)) bad++
            energy += piece[i] ^ 2
        }
        if (bad || NR != 8192) { print bad " of " NR; exit 1 }
        deviation = sqrt(energy / NR / 10 ^ 1.2) # 12 dB below
        s = sqrt(s2 / NR)
        # Within four deviations of what Gaussian white noise has.
        n = sqrt(NR)
        if (off(s1 / NR / deviation, 0, 4 / n) || off(s / deviation, 1, 4 / sqrt(2) / n) ||
            off(s3 / NR / s ^ 3, 0, 4 * sqrt(6) / n) || off(s4 / NR / s ^ 4, 3, 4 * sqrt(24) / n) ||
            off(next_to / s2, 0, 4 / n)) {
            print "noise", s1 / NR, s, deviation, s3 / NR / s ^ 3, s4 / NR / s ^ 4, next_to / s2
            exit 1
        }
        printf "%-16s %s\n", "Piece", "22.8 s (8192 samples at 360 Hz) from 18 s on"
        printf "%.0f\n", 1000 * sqrt(energy / NR)
    }' >"$work/told" || fail "the piece and its noise: $(cat "$work/told")"
diff <(sed -n 1p "$work/told") <(sed -n 1p "$work/printed") || fail "the piece as printed"
grep -q "^Signal  *$(sed -n 2p "$work/told") "$'\302\265V RMS' "$work/printed" || fail "level"

# --- the low-pass ------------------------------------------------------------

awk '
    { x[NR - 1] = $3; y[NR - 1] = $4 }
    END {
        pi = atan2(0, -1)
        for (i = -50; i <= 50; ++i) {
            t = pi * i
            h[i] = (i ? sin(80 / 360 * t) / t : 80 / 360) * (0.54 + 0.46 * cos(pi * i / 50))
            sum += h[i]
        }
        for (n = 0; n < NR; n += n < 60 || n > NR - 60 ? 1 : 41) {
            v = 0
            for (i = -50; i <= 50; ++i) {
                k = n + i
                if (k < 0) k = -1 - k
                if (k >= NR) k = 2 * NR - 1 - k
                v += h[i] / sum * x[k]
            }
            if (v - y[n] > 1e-5 || y[n] - v > 1e-5) { print n, y[n], v; exit 1 }
        }
    }' "$work/piece" || fail "the low-pass"

# --- Haar --------------------------------------------------------------------
# Half the differences of pairs and their means, level by level; the noise, both rules, and back.
# A detail of level i has noise 2^(-i/2) times that of a sample.

awk '{ v = $3; x[NR] = v } END {
        n = 2 * NR
        for (i = 1; i <= n; ++i) print i <= NR ? x[i] : x[n + 1 - i]
    }' "$work/piece" >"$work/level0"
for level in 1 2 3 4 5 6; do
    awk 'NR % 2 { first = $1; next } { print (first + $1) / 2, ($1 - first) / 2 }' \
        "$work/level$((level - 1))" >"$work/both"
    cut -d ' ' -f 1 "$work/both" >"$work/level$level"
    cut -d ' ' -f 2 "$work/both" >"$work/details$level"
done
noise=$(head -n 4095 "$work/details1" | tr -d - | sort -g | awk '
    NR == 2048 { printf "%.9g", $1 / 0.6745 * sqrt(2) }')
for level in 1 2 3 4 5 6; do
    tr -d - <"$work/details$level" | sort -g | awk -v noise="$noise" -v level=$level '
        { m[NR] = $1 * sqrt(2 ^ level) / noise; total = NR }
        END {
            least = total
            for (i = 1; i <= total && m[i] <= sqrt(2 * log(8192)); ++i) {
                squares += m[i] ^ 2
                risk = total - 2 * i + squares + (total - i) * m[i] ^ 2
                if (risk < least) { least = risk; threshold = m[i] }
            }
            printf "%.9g\n", threshold * noise
        }'
done >"$work/least"
yes "$(awk -v noise="$noise" 'BEGIN { printf "%.9g", noise * sqrt(2 * log(8192)) }')" |
    head -n 6 >"$work/universal"
column=7
for rule in least universal; do
    cp "$work/level6" "$work/back"
    for level in 6 5 4 3 2 1; do
        paste "$work/back" "$work/details$level" | awk -v threshold="$(
            sed -n ${level}p "$work/$rule")" -v level=$level '
            {
                t = threshold / sqrt(2 ^ level)
                d = $2 > t ? $2 - t : $2 < -t ? $2 + t : 0
                printf "%.12g\n%.12g\n", $1 - d, $1 + d
            }' >"$work/next"
        mv "$work/next" "$work/back"
    done
    paste "$work/piece" "$work/back" | awk -v column=$column '
        NF > 8 { e = $column - $9; if (e > 1e-4 || e < -1e-4) { print NR, $column, $9; exit bad = 1 } }
        END { exit bad }' || fail "Haar by rule $rule"
    column=$((column + 1))
done

# --- parts and details -------------------------------------------------------
# The parts with noise add up to the piece with noise, those behind the thresholds to the result.
# A detail behind its threshold is nearer to zero by as much, and those of a level come every
# 2^level samples. The noise in them is that of the samples.

paste "$work/piece" <(grep -v '^#' parts.txt) | awk '
    {
        noisy = clean = 0
        for (i = 1; i <= 7; ++i) { noisy += $(8 + 2 * i); clean += $(9 + 2 * i) }
        e = noisy - $3; f = clean - $5
        if (e > 1e-5 || e < -1e-5 || f > 1e-5 || f < -1e-5) { print $1, noisy, clean; exit bad = 1 }
    }
    END { exit bad || NR != 8192 }' || fail "the sum of the parts"
grep -v '^#' thresholds.txt >"$work/thresholds"
awk '
    FNR == NR { if (!/^#/) threshold[$1] = $2; next }
    /^#/ { next }
    {
        for (i = 1; i <= 6; ++i) {
            d = $(2 * i); y = $(2 * i + 1); size = d < 0 ? -d : d
            if (d != 0) {
                if (n[i]++ && FNR - last[i] != 2 ^ i) { print "place", i, FNR; exit bad = 1 }
                last[i] = FNR; squares[i] += d * d; by[i, n[i]] = size
                if (y != 0) {
                    kept++
                    if (d * y < 0) { print "sign", d, y; exit bad = 1 }
                    t = size - (y < 0 ? -y : y)
                    if (seen[i]++ && (t - taken[i] > 2e-5 || taken[i] - t > 2e-5)) {
                        print "threshold", i, t, taken[i]; exit bad = 1
                    }
                    taken[i] = t
                }
                else if (size > largest[i]) largest[i] = size
            }
        }
    }
    END {
        if (bad) exit 1
        for (i = 1; i <= 6; ++i) {
            if (n[i] != 8192 / 2 ^ i || !seen[i] || largest[i] > taken[i] + 2e-5) {
                print "level", i, n[i], seen[i], largest[i], taken[i]; exit 1
            }
            noise = taken[i] / threshold[i]
            if (i > 1 && (noise - before > 1e-3 || before - noise > 1e-3)) { print i, noise; exit 1 }
            before = noise
        }
        printf "%-16s %d of 8192 coefficients\n", "Kept", kept + 128
        rms = sqrt(squares[1] / n[1])
        if (rms < 0.97 * noise || rms > 1.05 * noise) { print "noise", rms, noise; exit 1 }
    }' thresholds.txt details.txt >"$work/kept" || fail "details: $(cat "$work/kept")"
grep '^Kept' "$work/printed" | diff "$work/kept" - || fail "kept (above: expected and printed)"

# A detail stands where its part has its energy; a sample more or less is rounding. And as the
# piece is followed by its mirror image, the approximations of its ends know nothing of each other.
paste details.txt parts.txt | awk '
    /^#/ { next }
    {
        n++
        for (i = 1; i <= 6; ++i) { detail[i, n] = $(2 * i) ^ 2; part[i, n] = $(13 + 2 * i) ^ 2 }
        if (n == 1) first = $27
        last = $27
    }
    END {
        for (i = 1; i <= 6; ++i) {
            most = 0
            for (shift = -4; shift <= 4; ++shift) {
                sum = 0
                for (t = 2000; t <= 6000; ++t)
                    if (detail[i, t]) sum += detail[i, t] * part[i, t + shift]
                if (sum > most) { most = sum; best = shift }
            }
            if (best < -1 || best > 1) { print "level", i, best; exit 1 }
        }
        if (first - last < 0.4 && last - first < 0.4) { print "ends", first, last; exit 1 }
    }' || fail "places"

# Haar and splines give back what they got but for rounding, banks of rounded taps nearly so.
awk '/sum of parts/ {
        n++
        if ($(NF - 9) > (/^Haar|^Spline/ ? 1e-14 : 1e-9)) { print; exit bad = 1 }
    }
    END { exit bad || n != 5 }' "$work/printed" || fail "parts and piece are apart"

# --- risks -------------------------------------------------------------------
# With a threshold of zero nothing is taken out. The estimate is within the spread of the noise's
# energy, and the threshold is where it is least, at most the universal one.

awk '
    FNR == NR { if (!/^#/) { chosen[$1] = $2; expected[$1] = $3 } next }
    /^#/ { next }
    {
        for (i = 1; i <= 6; ++i) {
            spread = sqrt(2 / (8192 / 2 ^ i)) # half of the values are mirror images
            e = $(2 * i) - $(2 * i + 1); bound = 4 * spread * (1 + $1)
            if (e > bound || e < -bound) { print "risk", i, $1, $(2 * i), $(2 * i + 1); exit bad = 1 }
            if ($1 == 0 && ($(2 * i + 1) - 1) ^ 2 > 1e-10) { print "at zero", i; exit bad = 1 }
            if ($1 < 4.245 && $(2 * i + 1) < expected[i] - 1e-6) { print "less", i, $1; exit bad = 1 }
        }
    }
    END {
        for (i = 1; i <= 6; ++i) if (chosen[i] > 4.2454 || chosen[i] < 0) exit 1
        exit bad || FNR != 92
    }' thresholds.txt risks.txt || fail "risks"

# --- the curves --------------------------------------------------------------
# Columns of ratios.txt: before, low-pass, five banks with universal thresholds, five with those
# of the least risk.

awk '
    /^#/ { next }
    {
        n++; level = 3 * (n - 1)
        if ($1 - level > 0.15 || level - $1 > 0.15) { print "before", $1; exit bad = 1 }
        for (i = 3; i <= 12; ++i)
            if (n > 1 && $i <= last[i]) { print "falls", i, $1; exit bad = 1 }
        for (i = 8; i <= 12; ++i) {
            if ($i <= $(i - 5)) { print "universal is better", i, $1; exit bad = 1 }
            if (level < (i == 8 ? 25 : 28) && $i < $1 + 0.5) { print "no gain", i, $1; exit bad = 1 }
        }
        for (i = 9; i <= 12; ++i) if ($i < $2 + 0.8) { print "low-pass", i, $1; exit bad = 1 }
        for (i = 2; i <= 12; ++i) last[i] = $i
    }
    # What a low-pass does to white noise, and what it costs when there is none.
    n == 1 { if ($2 < 6 || $2 > 7) { print "low-pass", $2; exit bad = 1 } }
    END { exit bad || n != 15 }' ratios.txt || fail "the curves"
awk '
    /^#/ { next }
    {
        n++
        for (i = 2; i <= 6; ++i) {
            if ($i < 0.98 * $1) { print "too little", i, $1; exit bad = 1 }
            if (n < 4 && $i > 1.02 * $1) { print "too much", i, $1; exit bad = 1 }
        }
    }
    END { exit bad || n != 15 }' noise.txt || fail "estimates of the noise"

# Printed as drawn: of every row the figures at 6, 12, 24 and 36 dB.
four() {
    awk -v column="$2" -v unit="$3" '
        !/^#/ { n++ }
        !/^#/ && (n == 3 || n == 5 || n == 9 || n == 13) {
            printf "%s%.1f", n == 3 ? "" : ", ", unit * $column
        }' "$1"
}
{
    printf '%-16s %s dB before\n' 'Signal/noise' "$(four ratios.txt 1 1)"
    printf '%-16s %s dB after\n' 'Low-pass' "$(four ratios.txt 2 1)"
    column=3
    for bank in Haar 'Daubechies 4' 'Symlet 8' 'Coiflet 2' 'Spline 2, 4'; do
        printf '%-16s %s dB (universal threshold %s dB)\n' "$bank" \
            "$(four ratios.txt $((column + 5)) 1)" "$(four ratios.txt $column 1)"
        column=$((column + 1))
    done
    printf '%-16s %s \302\265V\n' 'Noise added' "$(four noise.txt 1 1000)"
} >"$work/rows"
sed -n '3,10p' "$work/printed" | diff "$work/rows" - || fail "rows (above: expected and printed)"
for column in 2 3 4 5 6; do
    sed -n "$((column + 9))p" "$work/printed" | grep -qF " $(four noise.txt $column 1000) " ||
        fail "estimates printed in column $column"
done

# --- other recordings --------------------------------------------------------

expect_failure "$work/missing.txt: No such file or directory" "$work/missing.txt"
expect_failure "$work: is a directory, not a text file of numbers" "$work"
head -n 14672 "$recording" >"$work/cut.txt"
expect_failure "$work/cut.txt: is too short: it has 14671 numbers, 14672 are needed" \
    "$work/cut.txt"
yes 0.25 | head -n 20000 >"$work/flat.txt"
expect_failure "$work/flat.txt: is flat from 18 to 40.8 s" "$work/flat.txt"
{ head -n 100 "$recording"; echo 'one'; cat "$recording"; } >"$work/bad.txt"
expect_failure "$work/bad.txt: line 101 is not a number" "$work/bad.txt"

finish
