#!/usr/bin/env bash
# The chapter on compression: the transform, the steps and the way back once more, straight from
# the definitions; theory by sums and integrals; what is printed; pictures; and what a photograph
# is told that cannot be taken.
#
#     example_compress.sh PROGRAM PHOTOGRAPH

. "${0%/*}/support/example.sh"
photograph=$input

expect_chapter energies rates closeup curves
cd "$work/out/$chapter" || exit 1
mv "$work/stdout" "$work/printed"

# --- the transform, and three times there and back ---------------------------

# bin FILE SIDE: a square picture, kept column by column from the bottom, as lines
# "row col value".
bin() {
    od -An -v -t f4 -w4 "$1.bin" | awk -v side="$2" '{
        k = NR - 1
        print side - 1 - k % side, int(k / side), $1
    }'
}
tail -c 262144 "$photograph" | od -An -v -t u1 -w1 >"$work/greys"
for name in fine middle coarse; do
    bin $name 256 | sed -n '1~8s/^/256 256 /p'
    bin closeup-$name 96 | sed 's/^/240 392 /'
done >"$work/views"
bin closeup-original 96 | sed 's/^/240 392 /' >>"$work/views"

cat >"$work/functions.awk" <<'AWK'
    function log10(x) { return log(x) / log(10) }
    function log2(x) { return log(x) / log(2) }
    function round(x) { return x < 0 ? -int(0.5 - x) : int(x + 0.5) }
    function make_cosines(    k, n) {
        for (k = 0; k < 8; ++k) for (n = 0; n < 8; ++n)
            c[k, n] = (k ? 0.5 : sqrt(0.125)) * cos((2 * n + 1) * k * atan2(0, -1) / 16)
    }
    function off(name, x, y, bound) {
        if (x - y <= bound && y - x <= bound) return
        if (++strange <= 20) print name, x, y
        bad = 1
    }
    function make_table(    words, i) {
        split("16 11 10 16 24 40 51 61  12 12 14 19 26 58 60 55  14 13 16 24 40 57 69 56 " \
            "14 17 22 29 51 87 80 62  18 22 37 56 68 109 103 77  24 35 55 64 81 104 113 92 " \
            "49 64 78 87 103 121 120 101  72 92 95 98 112 100 103 99", words, " ")
        for (i = 0; i < 64; ++i) table[i] = words[i + 1]
    }
AWK
cp "$work/functions.awk" "$work/blocks.awk"
cat >>"$work/blocks.awk" <<'AWK'
    { grey[NR - 1] = $1 }
    END {
        make_cosines()
        for (top = 0; top < 512; top += 8) for (left = 0; left < 512; left += 8) {
            for (i = 0; i < 8; ++i) {
                at = 512 * (top + i) + left
                for (u = 0; u < 8; ++u) {
                    sum = 0
                    for (j = 0; j < 8; ++j) sum += c[u, j] * (grey[at + j] - 128)
                    half[i, u] = sum
                }
            }
            line = ""
            for (v = 0; v < 8; ++v) for (u = 0; u < 8; ++u) {
                sum = 0
                for (i = 0; i < 8; ++i) sum += c[v, i] * half[i, u]
                line = line sprintf("%.13g ", sum)
            }
            print line
        }
    }
AWK
awk -f "$work/blocks.awk" "$work/greys" >"$work/blocks" || fail "blocks"
[ "$(wc -l <"$work/blocks")" -eq 4096 ] || fail "number of blocks"

# A coefficient in the middle between two steps may go either way, and its block is not looked at;
# there are a few, as means of blocks are multiples of an eighth.
cp "$work/functions.awk" "$work/there.awk"
cat >>"$work/there.awk" <<'AWK'
    BEGIN { make_cosines(); make_table() }
    FILENAME ~ /greys$/ { grey[FNR - 1] = $1; next }
    {
        tie = lines = 0; rows[0] = -1
        for (k = 0; k < 64; ++k) {
            step = scale * table[k]; x = $(k + 1) / step
            q = round(x); d = x - q; if (d > 0.5 - 1e-9 || d < 1e-9 - 0.5) tie = 1
            if (!count[k, q]++) kinds++
            if (!q) none++
            v = int(k / 8); y[v, k % 8] = q * step
            if (q && rows[lines] != v) rows[++lines] = v
        }
        top = 8 * int((FNR - 1) / 64); left = 8 * ((FNR - 1) % 64)
        for (k = 1; k <= lines; ++k) for (j = 0; j < 8; ++j) {
            v = rows[k]; sum = 0
            for (u = 0; u < 8; ++u) if (y[v, u]) sum += c[u, j] * y[v, u]
            half[v, j] = sum
        }
        for (i = 0; i < 8; ++i) for (j = 0; j < 8; ++j) {
            sum = 128
            for (k = 1; k <= lines; ++k) sum += c[rows[k], i] * half[rows[k], j]
            sum = sum < 0 ? 0 : sum > 255 ? 255 : sum
            error += (sum - grey[512 * (top + i) + left + j]) ^ 2
            if (top >= 240 && left >= 256) print top + i, left + j, tie ? "-" : sum / 255
        }
    }
    END {
        for (k in count) bits -= count[k] * log2(count[k] / 4096)
        printf "%.5f %.6f %.4f %.3f\n", bits / 262144, (kinds - 64) / 2 / log(2) / 262144,
            10 * log10(255 ^ 2 * 262144 / error), 100 * none / 262144
    }
AWK
for scale in 1 4 16; do
    awk -v scale=$scale -f "$work/there.awk" "$work/greys" "$work/blocks" >"$work/back.$scale" ||
        fail "there and back"
    sed -n "s/^Table times $scale  *\([0-9.]*\) bits per pixel (about \([0-9.]*\) too low), PSNR \([0-9.]*\) dB, \([0-9.]*\) % zeros\$/\1 \2 \3 \4/p" \
        "$work/printed" | paste -d' ' - <(tail -n 1 "$work/back.$scale") \
        <(grep "^$scale " shown.txt) >"$work/rates"
    awk "$(cat "$work/functions.awk")"'
        {
            off("rate", $1, $5, 0.0015); off("too low", $2, $6, 0.00011)
            off("ratio", $3, $7, 0.0151); off("zeros", $4, $8, 0.11)
            off("rate in the picture", $10, $1, 0.00051)
            off("ratio in the picture", $11, $3, 0.0051)
        }
        END { exit bad || NR != 1 || NF != 11 }' "$work/rates" ||
        fail "table times $scale: $(cat "$work/rates")"
done

# The views begin at the first two numbers of their lines: every eighth pixel of the quarters, and
# all of the close-ups.
cp "$work/functions.awk" "$work/views.awk"
cat >>"$work/views.awk" <<'AWK'
    FILENAME ~ /greys$/ {
        photograph[int((FNR - 1) / 512), (FNR - 1) % 512] = $1 / 255; next
    }
    FILENAME ~ /back/ {
        if (FNR == 1) files++
        if (NF == 3) value[files, $1, $2] = $3
        next
    }
    {
        row = $1 + $3; col = $2 + $4; view = int((FNR - 1) / (8192 + 9216)) + 1
        expected = view == 4 ? photograph[row, col] : value[view, row, col]
        if (expected == "-") { ties++; next }
        off("pixel of view " view, $5, expected, 1e-6); looked++
    }
    END { exit bad || looked + ties != 3 * 17408 + 9216 || ties > 0.1 * looked }
AWK
awk -f "$work/views.awk" "$work/greys" "$work"/back.{1,4,16} "$work/views" >"$work/strange" ||
    fail "views: $(cat "$work/strange")"

# --- where the energy is -----------------------------------------------------

cp "$work/functions.awk" "$work/energies.awk"
cat >>"$work/energies.awk" <<'AWK'
    BEGIN { make_cosines(); rows = kept = 0 }
    function abs(x) { return x < 0 ? -x : x }
    function lambda(k, alike,    i, j, sum) {
        for (i = 0; i < 8; ++i) for (j = 0; j < 8; ++j) sum += c[k, i] * c[k, j] * alike ^ abs(i - j)
        return sum
    }
    FILENAME ~ /greys$/ {
        n = FNR - 1; total += $1; squares += $1 ^ 2
        if (n % 512) across += ($1 - before[n - 1]) ^ 2
        if (n >= 512) down += ($1 - before[n - 512]) ^ 2
        before[n] = $1; next
    }
    FILENAME ~ /blocks$/ {
        for (k = 0; k < 64; ++k) energy[k] += $(k + 1) ^ 2
        first += $1; value[FNR] = $1
        for (k = 1; k < 64; ++k) size[k] += abs($(k + 1)) / 4096
        next
    }
    /^#/ { next }
    FILENAME ~ /energies/ {
        off("place", 8 * $2 + $1, rows, 0); measured[rows] = $3; model[rows++] = $4; next
    }
    { off("kept", $1, ++kept, 0); left[kept] = $2; modelLeft[kept] = $3 }
    function tell(name, e,    share, n, i, words, line) {
        split("0 1 8 16 9 2 3 10 17 24 32 25 18 11 4 5 12 19 26 33 40 48 41 34 27 20 13 6 7 14 " \
            "21 28 35 42 49 56 57 50 43 36 29 22 15 23 30 37 44 51 58 59 52 45 38 31 39 46 53 60 " \
            "61 54 47 55 62 63", words, " ")
        for (i in e) sum[name] += e[i]
        for (n = 1; n <= 64; ++n) {
            share += e[words[n]] / sum[name]
            off("left of " name, name == "Measured" ? left[n] : modelLeft[n], 100 - 100 * share, 1e-4)
            if (n == 1 || n == 3 || n == 10 || n == 21) line = line sprintf(", %.2f", 100 * share)
        }
        return sprintf("%-16s %s %%", name, substr(line, 3))
    }
    function gain(e,    i, sum, levels) {
        for (i in e) { sum += e[i] / 64; levels += 10 * log10(e[i]) / 64 }
        return 10 * log10(sum) - levels
    }
    END {
        variance = (squares - total ^ 2 / 262144) / 262143
        alikeAcross = 1 - across / (2 * 512 * 511 * variance)
        alikeDown = 1 - down / (2 * 512 * 511 * variance)
        for (k = 0; k < 64; ++k) {
            e[k] = energy[k] / 4096 - (k ? 0 : (first / 4096) ^ 2)
            m[k] = variance * lambda(k % 8, alikeAcross) * lambda(int(k / 8), alikeDown)
            off("energy " k, measured[k], 10 * log10(e[k]), 1e-3)
            off("model " k, model[k], 10 * log10(m[k]), 1e-3)
        }
        printf "%-16s 512 by 512 pixels, deviation %.1f of 255\n", "Photograph", sqrt(variance)
        printf "%-16s correlation %.4f across, %.4f down\n", "Neighbours", alikeAcross, alikeDown
        printf "%-16s of the first 1, 3, 10, 21 of 64 coefficients\n", "Energy"
        print tell("Measured", e); print tell("Markov model", m)
        printf "%-16s %.1f dB (Markov model %.1f dB)\n", "Coding gain", gain(e), gain(m)
        for (i in value) size[0] += abs(value[i] - first / 4096) / 4096
        least = 1e9
        for (k = 0; k < 64; ++k) {
            shape = sqrt(e[k]) / size[k]
            if (k && shape < least) least = shape
            if (k && shape > most) most = shape
        }
        printf "%-16s %.2f times the mean magnitude at the first, ", "RMS", sqrt(e[0]) / size[0]
        printf "%.2f to %.2f times at the others (Laplacian %.2f, Gaussian %.2f)\n", least, most,
            sqrt(2), sqrt(atan2(0, -1) / 2)
        # All energy is there, and the model has that of the photograph.
        off("all", sum["Measured"] / 64, variance, 0.01); off("all", sum["Markov model"] / 64, variance, 0.01)
        exit bad || rows != 64 || kept != 64
    }
AWK
awk -f "$work/energies.awk" "$work/greys" "$work/blocks" energies.txt left-out.txt \
    >"$work/expected" || fail "energies: $(cat "$work/expected")"
head -n 7 "$work/printed" | diff "$work/expected" - ||
    fail "energies (above: expected and printed)"

# --- the curves --------------------------------------------------------------
# Rates and ratios in even steps of 8, 32 and 128. The transform keeps squares, so that errors can
# be summed before the way back: what lies beyond black and white makes them a little too large,
# by 0.02 dB, in steps of 128 by 0.1 dB. Pixels in a step at which none lies in the middle.
# Of Laplacian coefficients, probabilities step by step, and the error as an integral.

cp "$work/functions.awk" "$work/curves.awk"
cat >>"$work/curves.awk" <<'AWK'
    BEGIN { pixelStep = 2 ^ 4.75 }
    FILENAME ~ /greys$/ {
        g = $1 - 128
        q = round(g / pixelStep); greys[q]++
        value = q * pixelStep + 128
        value = value < 0 ? 0 : value > 255 ? 255 : value
        pixelError += (value - $1) ^ 2
        next
    }
    FILENAME ~ /blocks$/ {
        first[FNR] = $1; mean += $1 / 4096
        for (k = 0; k < 64; ++k) {
            x = $(k + 1)
            if (k) size[k] += (x < 0 ? -x : x) / 4096
            for (step = 8; step <= 128; step *= 4) {
                q = round(x / step); count[step, k, q]++
                error[step] += (x - q * step) ^ 2
            }
        }
        next
    }
    /^#/ { next }
    { rate[FILENAME, $1] = $2; ratio[FILENAME, $1] = $3; rows[FILENAME]++ }
    function laplacian(step, b,    n, p, x, d, w) {
        p = 1 - exp(-step / 2 / b); lapBits -= p * log2(p)
        for (n = 1; n * step < 30 * b; ++n) {
            p = (exp(-(n - 0.5) * step / b) - exp(-(n + 0.5) * step / b)) / 2
            lapBits -= 2 * p * log2(p)
        }
        w = b / 40
        for (x = w / 2; x < 25 * b; x += w) {
            d = x - step * int(x / step + 0.5); lapError += w * d * d * exp(-x / b) / b
        }
    }
    function psnr(meanSquare) { return 10 * log10(255 ^ 2 / meanSquare) }
    END {
        for (i in first) size[0] += (first[i] < mean ? mean - first[i] : first[i] - mean) / 4096
        for (i in count) {
            split(i, part, SUBSEP); bits[part[1]] -= count[i] * log2(count[i] / 4096)
        }
        for (q in greys) pixelBits -= greys[q] * log2(greys[q] / 262144)
        off("rate of pixels", rate["pixels.txt", "26.9087"], pixelBits / 262144, 1e-5)
        off("ratio of pixels", ratio["pixels.txt", "26.9087"], psnr(pixelError / 262144), 1e-3)
        for (step = 8; step <= 128; step *= 4) {
            off("rate in steps of " step, rate["even.txt", step], bits[step] / 262144, 0.0015)
            d = ratio["even.txt", step] - psnr(error[step] / 262144)
            off("ratio in steps of " step, d, step < 128 ? 0.015 : 0.1, 0.02)
            lapBits = lapError = 0
            for (k = 0; k < 64; ++k) laplacian(step, size[k])
            off("rate by theory", rate["laplacian.txt", step], lapBits / 64, 1e-4)
            off("ratio by theory", ratio["laplacian.txt", step], psnr(lapError / 64), 0.01)
        }
        # A fine step is the error's width; the table is not made for the least error.
        off("ratio in steps of 1", ratio["even.txt", 1], psnr(1 / 12), 0.5)
        off("rows", rows["even.txt"] " " rows["table.txt"] " " rows["laplacian.txt"], "37 37 37", 0)
        exit bad
    }
AWK
awk -f "$work/curves.awk" "$work/greys" "$work/blocks" even.txt table.txt pixels.txt \
    laplacian.txt || fail "curves"

# What is printed of them, from the data of the picture.
cp "$work/functions.awk" "$work/told.awk"
cat >>"$work/told.awk" <<'AWK'
    /^#/ { next }
    { n = ++rows[FILENAME]; step[FILENAME, n] = $1; x[FILENAME, n] = $2; y[FILENAME, n] = $3 }
    function between(file, at, p, q,    i) {
        for (i = 2; i <= rows[file]; ++i) {
            if (p[file, i] > at) continue
            return q[file, i] + (at - p[file, i]) * (q[file, i - 1] - q[file, i]) / \
                (p[file, i - 1] - p[file, i])
        }
    }
    function tell(name, file,    i, line) {
        for (i = 24; i <= 40; i += 4) line = line sprintf(", %.3f", between(file, i, y, x))
        printf "%-16s %s\n", name, substr(line, 3)
    }
    END {
        printf "%-16s at 24, 28, 32, 36, 40 dB\n", "Bits per pixel"
        tell("Table", "table.txt"); tell("Even steps", "even.txt")
        tell("Laplacian", "laplacian.txt"); tell("Pixels", "pixels.txt")
        printf "%-16s %.2f dB in even steps from 2 to 1 (theory 6.02 dB)\n", "A bit more",
            (y["even.txt", 1] - y["even.txt", 5]) / (x["even.txt", 1] - x["even.txt", 5])
        pixels = between("pixels.txt", 4, x, y)
        printf "%-16s %.1f dB over pixels, Laplacian %.1f dB\n", "At 4 bits",
            between("even.txt", 4, x, y) - pixels, between("laplacian.txt", 4, x, y) - pixels
    }
AWK
awk -f "$work/told.awk" even.txt table.txt pixels.txt laplacian.txt |
    diff - <(sed -n '11,$p' "$work/printed") || fail "curves (above: expected and printed)"

# --- other photographs -------------------------------------------------------

# ramps COLS ROWS: a picture of two bytes for each pixel, rough and brighter to the right and to
# the bottom, up to 69 by 66 pixels; beyond them it is as at their rim.
ramps() {
    printf 'P5\n# ramps\n%d %d\n65535\n' "$1" "$2"
    awk -v cols="$1" -v rows="$2" 'BEGIN {
        for (row = 0; row < rows; ++row) for (col = 0; col < cols; ++col) {
            x = col < 68 ? col : 68; y = row < 65 ? row : 65
            x = 400 * x + 200 * y + 50 * ((37 * x + 101 * y) * (x + 3 * y) % 251)
            printf "\\x%02x\\x%02x", int(x / 256), x % 256
        }
    }' | { read -r bytes; printf "$bytes"; }
}
ramps 69 66 >"$work/odd.pgm"
ramps 72 72 >"$work/whole.pgm"
for name in odd whole; do
    "$program" "$work/$name.pgm" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
        fail "exit code $? on ramps: $(cat "$work/stderr")"
    grep -q nan "$work/stdout" && fail "not a number on ramps"
    cp even.txt "$work/even.$name"
done
paste -d' ' "$work"/even.{odd,whole} | awk "$(cat "$work/functions.awk")"'
    /^#/ { next }
    { off("bits in steps of " $1, $2 * 69 * 66, $5 * 72 * 72, 1e-5 * $5 * 72 * 72); most = $5 > most ? $5 : most }
    END { exit bad || NR != 38 || most < 0.5 }' || fail "blocks that are not filled"

{
    printf 'P5 64 65 255\n'
    head -c 4160 /dev/zero
} >"$work/black.pgm"
expect_failure "$work/black.pgm: is of one grey: there is nothing to compress" "$work/black.pgm"
expect_failure "$work/missing.pgm: No such file or directory" "$work/missing.pgm"
expect_failure "$work: is a directory, not a PGM file" "$work"
echo 'no picture at all' >"$work/text.pgm"
expect_failure "$work/text.pgm: is not a binary PGM file" "$work/text.pgm"
printf 'P5 63 64 255\n' >"$work/small.pgm"
expect_failure "$work/small.pgm: has 63 by 64 pixels; 64 to 4096 are needed on each side" \
    "$work/small.pgm"

finish
