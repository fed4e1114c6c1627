#!/usr/bin/env bash
# The chapter on the telephone: the line, the formats and every number once more, straight from
# the definitions; what theory says; other rates; pictures; and what a bad recording is told.
#
#     example_phone.sh PROGRAM RECORDING

. "${0%/*}/support/example.sh"
recording=$input

expect_chapter spectra loudness quiet ratios frame
cp "$work/stdout" "$work/printed"
cd "$work/out/$chapter" || exit 1

# --- the line ----------------------------------------------------------------
# Columns of line.txt: time line A-law mu-law 8-bits 16-bits, six digits each.

od -An -v -t d2 -w2 -j 44 "$recording" | awk '{ print $1 / 32768 }' >"$work/recorded"
grep -v '^#' line.txt >"$work/line"

# Every 41st sample: 161 taps under a Hamming window, the difference of two ideal low-passes, and
# silence before and behind.
awk '
    FNR == NR { x[n++] = $1; next }
    {
        k = m++
        if (k % 41) next
        if (!taps) {
            pi = atan2(0, -1); taps = 161
            for (i = -80; i <= 80; ++i) {
                ideal = i ? (sin(pi * i * 0.85) - sin(pi * i * 0.075)) / (pi * i) : 0.775
                h[i] = ideal * (0.54 + 0.46 * cos(pi * i / 80))
            }
        }
        sum = 0
        for (i = -80; i <= 80; ++i) if (k + i >= 0 && k + i < n) sum += h[i] * x[k + i]
        if ($2 - sum > 1e-6 || sum - $2 > 1e-6) { print k, $2, sum; bad++ }
    }
    END { if (bad || m != n || n != 175858) { print bad " of " m; exit 1 } }
    ' "$work/recorded" "$work/line" || fail "the line"

# --- the formats -------------------------------------------------------------
# The laws from their decoded values: a sample goes to the one in whose step it lies. In 16 bits
# the steps of A-law are 16 from 0 on, twice as wide from each power of two above 1024 on; those
# of mu-law end at 4, 12 ... 124, and are twice as wide from 124, 380, 892 ... on.

cat >"$work/laws.awk" <<'AWK'
    function make_laws(k, i, low, step) {
        low = 0
        for (k = 0; k < 8; ++k) {
            step = k ? 8 * 2 ^ k : 16
            for (i = 0; i < 16; ++i) {
                for (j = 0; j < step / 16; ++j) aLaw[low / 16 + j] = low + step / 2
                low += step
            }
        }
        low = 5 # the first integer of a step; from -4 to 4 is zero
        for (i = 0; i < 5; ++i) muLaw[i] = 0
        for (k = 0; k < 8; ++k) {
            step = 8 * 2 ^ k
            for (i = k ? 0 : 1; i < 16; ++i) {
                for (j = 0; j < step; ++j) muLaw[low + j] = low + step / 2 - 1
                low += step
            }
        }
    }
    function through_laws(x, size, whole) {
        size = x < 0 ? -x : x
        whole = int(size * 32768)
        # From 31/32 on all is the largest code.
        byA = size >= 0.96875 ? 32256 : aLaw[int(whole / 16)]
        byMu = size >= 0.96875 ? 32124 : muLaw[whole]
        # What is not a whole 1/32768 counts as positive.
        if (x < 0 && whole > 0) { byA = -byA; byMu = -byMu }
        byA /= 32768; byMu /= 32768
    }
    # To the nearest step of n bits; halves do not occur.
    function even(x, bits, scale, y, z) {
        scale = 2 ^ (bits - 1); y = x * scale
        z = y < 0 ? -int(0.5 - y) : int(0.5 + y)
        return (z > scale - 1 ? scale - 1 : z < -scale ? -scale : z) / scale
    }
    function noise_a(size, step) {
        step = 2048; while (step > 16 && size * 32768 < 16 * step) step /= 2
        return (step / 32768) ^ 2 / 12
    }
    function noise_mu(size, step) {
        step = 1024; while (step > 8 && size * 32768 < 16 * step - 132) step /= 2
        return (step ^ 2 / 12 + 1) / 32768 ^ 2
    }
    function db(power) { return 10 * log(power) / log(10) }
AWK
cp "$work/laws.awk" "$work/voice.awk"
cat >>"$work/voice.awk" <<'AWK'
    BEGIN { make_laws() }
    # A sample at the edge of a step may go either way by its six digits.
    function off(name, x, y) {
        if (x - y < 1e-6 && y - x < 1e-6) return
        if (++strange[name] > 5) { print name, NR, $2, x, y; bad = 1 }
    }
    {
        through_laws($2)
        off("A-law", $3, byA); off("mu-law", $4, byMu); off("8 bits", $5, even($2, 8))
        d = $6 - $2; if (d > 1.65e-5 || d < -1.65e-5) { print "16 bits", NR, $2, $6; bad = 1 }
        size = $2 < 0 ? -$2 : $2
        power += $2 ^ 2
        error[1] += ($3 - $2) ^ 2; theory[1] += noise_a(size)
        error[2] += ($4 - $2) ^ 2; theory[2] += noise_mu(size)
        error[3] += ($5 - $2) ^ 2
    }
    function tell(name, rate, noise, theory) {
        printf "%-16s %d kbit/s, voice %.1f dB over noise of %.1f dBFS (theory %.1f dBFS)\n",
            name, rate, db(power) - db(noise), db(noise / NR), theory
    }
    END {
        tell("A-law", 64, error[1], db(theory[1] / NR))
        tell("Mu-law", 64, error[2], db(theory[2] / NR))
        tell("8 bits", 64, error[3], db(2 ^ -14 / 12))
        exit bad
    }
AWK
awk -f "$work/voice.awk" "$work/line" >"$work/expected" || fail "formats: $(cat "$work/expected")"
sed -n 3,5p "$work/printed" | diff "$work/expected" - ||
    fail "noise of 8 bits (above: expected and printed)"

# What takes more bits is as theory has it: -6.02 n - 4.77 dBFS, whatever the voice.
sed -n 's/^\(16\|32\) bits  .* noise of \(-[0-9.]*\) dBFS.*(theory \(-[0-9.]*\) dBFS)$/\1 \2 \3/p' \
    "$work/printed" | awk '
    { theory = -20 * $1 * log(2) / log(10) - 10 * log(3) / log(10); d = $2 - theory; t = $3 - theory
      if (d > 0.1 || d < -0.2 || t > 0.051 || t < -0.051) { print; bad = 1 } }
    END { exit bad || NR != 2 }' || fail "noise of 16 and 32 bits"

awk '
    function db(power) { return 10 * log(power) / log(10) }
    FNR == NR { recorded += $1 ^ 2; n++; next }
    { line += $2 ^ 2; m++ }
    END {
        printf "%-16s 21.98 s (%d samples at 8000 Hz), %.1f dBFS\n", "Recording", n,
            db(recorded / n)
        printf "%-16s %d samples at 8000 Hz, %.1f dBFS from 300 to 3400 Hz\n", "On the line", m,
            db(line / m)
    }' "$work/recorded" "$work/line" | diff - <(head -n 2 "$work/printed") ||
    fail "levels (above: expected and printed)"

# Every 20 ms.
cp "$work/laws.awk" "$work/loudness.awk"
cat >>"$work/loudness.awk" <<'AWK'
    FNR == NR {
        if (FNR > 175840) next
        b = int((FNR - 1) / 160)
        voice[b] += $2 ^ 2; a[b] += ($3 - $2) ^ 2; mu[b] += ($4 - $2) ^ 2; bits[b] += ($5 - $2) ^ 2
        next
    }
    /^#/ { next }
    function off(x, power) {
        x = x - (power > 160e-30 ? db(power / 160) : -300)
        if ((x > 0.01 || x < -0.01) && power > 160e-9) { print rows, $0, x; bad = 1 }
    }
    {
        off($2, voice[rows]); off($3, a[rows]); off($4, mu[rows]); off($5, bits[rows]); rows++
    }
    END { exit bad || rows != 1099 }
    BEGIN { rows = 0 }
AWK
awk -f "$work/loudness.awk" "$work/line" loudness.txt || fail "loudness"

# --- spectra -----------------------------------------------------------------
# Frames of 4096 samples under a Hann window, each half a frame after the other, as Fourier sums
# at a few frequencies: the line, and the errors of A-law and 8 bits.

awk '
    BEGIN {
        N = 4096; pi = atan2(0, -1)
        for (i = 0; i < N; ++i) {
            w[i] = 0.5 - 0.5 * cos(2 * pi * i / (N - 1)); squares += w[i] ^ 2
            c[i] = cos(2 * pi * i / N); s[i] = sin(2 * pi * i / N)
        }
    }
    FNR == NR { n = NR; line[n - 1] = $2; byA[n - 1] = $3 - $2; even[n - 1] = $5 - $2; next }
    /^#/ { next }
    function density(x, k, start, i, re, im, v, sum, frames) {
        for (start = 0; start + N <= n; start += N / 2) {
            frames++; re = im = 0
            for (i = 0; i < N; ++i) {
                v = w[i] * x[start + i]
                re += v * c[k * i % N]; im += v * s[k * i % N]
            }
            sum += re * re + im * im
        }
        return 10 * log(2 * sum / (frames * 8000 * squares)) / log(10)
    }
    function off(name, x, y) {
        if (x - y < 0.01 && y - x < 0.01) return
        print name, $1, x, y; bad = 1
    }
    { k = bins++ }
    k == 180 || k == 512 || k == 1600 {
        off("frequency", $1, k * 8000 / 4096)
        off("line", $2, density(line, k)); off("A-law", $3, density(byA, k))
        off("8 bits", $5, density(even, k))
    }
    END { exit bad || bins != 2049 }
    ' "$work/line" spectra.txt || fail "spectra"

# White noise: the mean over all frequencies is the power spread over 4000 Hz.
awk '!/^#/ { a += 10 ^ ($3 / 10); b += 10 ^ ($6 / 10); n++ }
    END {
        db = 10 / log(10); d = db * log(b / n) + 101.087 + 36.021; e = db * log(a / n)
        if (d > 0.1 || d < -0.2 || e > -94 || e < -95.5) { print d, e; exit 1 }
    }' spectra.txt || fail "strength of the noise"

# --- sines -------------------------------------------------------------------
# Columns: the level of the peak, five ratios, five by theory. Every twelfth level once more.

cp "$work/laws.awk" "$work/sines.awk"
cat >>"$work/sines.awk" <<'AWK'
    BEGIN {
        make_laws(); pi = atan2(0, -1); n = 16384
        for (i = 0; i < n; ++i) {
            sine[i] = sin(2 * pi * 1013.7 / 8000 * i)
            if (sine[i] > peak) peak = sine[i]
            if (-sine[i] > peak) peak = -sine[i]
        }
    }
    function off(name, x, y, bound) {
        if (x - y < bound && y - x < bound) return
        print name, $1, x, y; bad = 1
    }
    /^#/ { next }
    {
        if ($1 != -60 + 0.5 * rows) { print; bad = 1 }
        if (rows++ % 12) next
        gain = exp($1 / 20 * log(10)) / peak
        power = a = mu = b8 = b16 = b32 = aTheory = muTheory = 0
        for (i = 0; i < n; ++i) {
            x = gain * sine[i]; size = x < 0 ? -x : x
            power += x * x
            through_laws(x); a += (byA - x) ^ 2; mu += (byMu - x) ^ 2
            b8 += (even(x, 8) - x) ^ 2; b16 += (even(x, 16) - x) ^ 2
            b32 += (even(x, 32) - x) ^ 2
            aTheory += noise_a(size); muTheory += noise_mu(size)
        }
        off("A-law", $2, db(power / a), 0.01); off("mu-law", $3, db(power / mu), 0.01)
        off("8 bits", $4, db(power / b8), 0.01); off("16 bits", $5, db(power / b16), 0.01)
        off("32 bits", $6, db(power / b32), 0.05)
        off("A-law by theory", $7, db(power / aTheory), 0.01)
        off("mu-law by theory", $8, db(power / muTheory), 0.01)
        for (i = 0; i < 3; ++i) {
            off("even steps by theory", $(9 + i), db(3 * power / n) + db(4) * 2 ^ (i + 3), 0.01)
        }
    }
    END { exit bad || rows != 121 }
AWK
awk -f "$work/sines.awk" ratios-sine.txt || fail "ratios of sines"

# 6.02 n + 1.76 dB and the level; the laws' plateau; and theory of the laws, off by a decibel and a
# half at most where a sine has many steps, and by a fifth of one in the mean.
awk '
    /^#/ { next }
    function off(name, x, y, bound) {
        if (x - y < bound && y - x < bound) return
        print name, $1, x, y; bad = 1
    }
    {
        if ($1 >= -20 && $1 < 0) off("8 bits", $4, 6.0206 * 8 + 1.7609 + $1, 1)
        if ($1 >= -40) off("16 bits", $5, 6.0206 * 16 + 1.7609 + $1, 0.2)
        off("32 bits", $6, 6.0206 * 32 + 1.7609 + $1, 0.1)
        if ($1 <= -49) off("less than half a step", $4, 0, 1e-9)
        if ($1 >= -50) {
            off("A-law and theory", $2, $7, 1.6); off("mu-law and theory", $3, $8, 1.6)
            a += $2 - $7; mu += $3 - $8; n++
        }
        if ($1 >= -30) {
            off("plateau of A-law", $2, 37.5, 2); off("plateau of mu-law", $3, 37.2, 2.4)
        }
    }
    END {
        off("A-law in the mean", a / n, 0, 0.2); off("mu-law in the mean", mu / n, 0, 0.2)
        exit bad
    }' ratios-sine.txt || fail "theory of sines"

# What is printed of them.
awk '
    /^#/ { next }
    { for (i = 2; i <= 11; ++i) r[$1, i] = $i }
    $1 >= -30 {
        for (i = 2; i <= 3; ++i) {
            if (!(i in low) || $i < low[i]) low[i] = $i
            if (!(i in high) || $i > high[i]) high[i] = $i
        }
    }
    END {
        split("A-law,Mu-law,8 bits,16 bits,32 bits", names, ",")
        for (i = 1; i <= 5; ++i) {
            printf "%-16s %.1f, %.1f, %.1f, %.1f dB (theory %.1f, %.1f, %.1f, %.1f dB)\n", names[i],
                r[0, i + 1], r[-20, i + 1], r[-40, i + 1], r[-60, i + 1],
                r[0, i + 6], r[-20, i + 6], r[-40, i + 6], r[-60, i + 6]
        }
        printf "%-16s A-law %.1f to %.1f dB (smooth law 38.2 dB), ", "Loud sines", low[2], high[2]
        printf "mu-law %.1f to %.1f dB (smooth law 38.1 dB)\n", low[3], high[3]
    }' ratios-sine.txt | diff - <(sed -n 9,14p "$work/printed") ||
    fail "sines (above: expected and printed)"

# The voice at a few levels, too.
cp "$work/laws.awk" "$work/voices.awk"
cat >>"$work/voices.awk" <<'AWK'
    BEGIN { make_laws() }
    FNR == NR {
        x[n++] = $2
        if ($2 > peak) peak = $2
        if (-$2 > peak) peak = -$2
        next
    }
    function off(name, x, y, bound) {
        if (x - y < bound && y - x < bound) return
        print name, $1, x, y; bad = 1
    }
    $1 == 0 || $1 == -30 || $1 == -50 {
        gain = exp($1 / 20 * log(10)) / peak
        power = a = mu = b8 = aTheory = muTheory = 0
        for (i = 0; i < n; ++i) {
            v = gain * x[i]; size = v < 0 ? -v : v
            power += v * v
            through_laws(v); a += (byA - v) ^ 2; mu += (byMu - v) ^ 2; b8 += (even(v, 8) - v) ^ 2
            aTheory += noise_a(size); muTheory += noise_mu(size)
        }
        off("A-law", $2, db(power / a), 0.01); off("mu-law", $3, db(power / mu), 0.01)
        off("8 bits", $4, db(power / b8), 0.01)
        off("A-law by theory", $7, db(power / aTheory), 0.01)
        off("mu-law by theory", $8, db(power / muTheory), 0.01)
        off("8 bits by theory", $9, db(power / n * 12 * 2 ^ 14), 0.01)
        levels++
    }
    END { exit bad || levels != 3 }
AWK
awk -f "$work/voices.awk" "$work/line" ratios-voice.txt || fail "ratios of the voice"

# --- the frame ---------------------------------------------------------------
# Magnitudes and phases as Fourier sums, counted from the middle; what they give; and the
# magnitudes alone, which look the same on both sides of the middle.

awk '
    function off(name, x, y, bound) {
        if (x - y < bound && y - x < bound) return
        print name, x, y; bad = 1
    }
    BEGIN { n = bins = 0 }
    /^#/ { next }
    FNR == NR {
        x[n] = $2; alone[n] = $5; off("rebuilt", $3, $2, 1e-6)
        if ($4 > 1e-15 || $4 < -1e-15) { print "error", $4; bad = 1 }
        size = $4 < 0 ? -$4 : $4; if (size > most) most = size
        n++; next
    }
    { magnitude[bins] = $2; phase[bins] = $3; bins++ }
    END {
        pi = atan2(0, -1)
        for (k = 0; k <= 128; ++k) {
            re[k] = im[k] = 0
            for (i = 0; i < n; ++i) {
                re[k] += x[i] * cos(2 * pi * k * (i - 128) / 256)
                im[k] -= x[i] * sin(2 * pi * k * (i - 128) / 256)
            }
            m[k] = sqrt(re[k] ^ 2 + im[k] ^ 2); if (m[k] > largest) largest = m[k]
        }
        for (k = 0; k <= 128; ++k) {
            if (m[k] < 0.001 * largest) continue
            looked++
            off("magnitude", magnitude[k], 20 * log(m[k] / largest) / log(10), 0.01)
            off("phase", cos(phase[k]), re[k] / m[k], 1e-3)
            off("phase", sin(phase[k]), im[k] / m[k], 1e-3)
        }
        for (i = 0; i < n; i += 9) {
            sum = m[0] + m[128] * (i % 2 ? -1 : 1)
            for (k = 1; k < 128; ++k) sum += 2 * m[k] * cos(2 * pi * k * (i - 128) / 256)
            off("from the magnitudes alone", alone[i], sum / 256, 2e-6)
        }
        if (bad || n != 256 || bins != 129 || looked < 30) { print n, bins, looked; exit 1 }
        printf "%.1e\n", most
    }' frame.txt polar.txt >"$work/most" || fail "the frame: $(cat "$work/most")"
grep -qx "Frame            32 ms at 19.95 s, back from magnitudes and phases to within $(
    cat "$work/most")" "$work/printed" || fail "printed: $(grep ^Frame "$work/printed")"

# --- other rates -------------------------------------------------------------
# Tones at other rates: that of 1000 Hz comes through at its time and level; those of 5000 Hz,
# which would fold down to 3000 Hz, and of 100 Hz do not.

tones() {
    wav "$1" "$2" $((3 * $2))
    awk -v rate="$2" 'BEGIN {
        pi = atan2(0, -1)
        for (i = 0; i < 1.5 * rate; ++i) {
            x = 8000 * sin(2 * pi * 1000 * i / rate) + 8000 * sin(2 * pi * 5000 * i / rate)
            x = int(x + 8000 * sin(2 * pi * 100 * i / rate) + 40000.5) - 40000
            if (x < 0) x += 65536
            printf "\\x%02x\\x%02x", x % 256, int(x / 256)
        }
    }' | { read -r bytes; printf "$bytes"; } >>"$1"
}
for rate in 11025 16000 44100; do
    tones "$work/$rate.wav" $rate
    "$program" "$work/$rate.wav" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
        fail "exit code $? on $rate Hz: $(cat "$work/stderr")"
    awk '
        /^#/ { next }
        {
            k = n++
            if (k < 200 || k > 11800) next
            d = $2 - 8000 / 32768 * sin(2 * atan2(0, -1) * k / 8)
            if (d > 1e-3 || d < -1e-3) { print k, $2, d; exit bad = 1 }
        }
        END { exit bad || n < 11999 || n > 12000 }' line.txt || fail "tones at $rate Hz"
    grep -q nan "$work/stdout" && fail "not a number at $rate Hz"
done

# --- recordings that cannot be taken -----------------------------------------

expect_failure "$work/missing.wav: No such file or directory" "$work/missing.wav"
expect_failure "$work: is a directory, not a WAV file" "$work"
wav "$work/short.wav" 8000 8190
head -c 8190 /dev/zero >>"$work/short.wav"
expect_failure "$work/short.wav: is too short: it has 4095 samples, 4096 are needed" \
    "$work/short.wav"
wav "$work/brief.wav" 16000 16000
head -c 16000 /dev/zero >>"$work/brief.wav"
expect_failure "$work/brief.wav: is too short: it has 0.5 s, 1 s are needed" "$work/brief.wav"
wav "$work/slow.wav" 7999 16000
head -c 16000 /dev/zero >>"$work/slow.wav"
expect_failure "$work/slow.wav: has 7999 samples per second, 8000 are needed" "$work/slow.wav"
wav "$work/fast.wav" 192001 400000
head -c 400000 /dev/zero >>"$work/fast.wav"
expect_failure "$work/fast.wav: has 192001 samples per second, 192000 at most can be taken" \
    "$work/fast.wav"
wav "$work/silence.wav" 8000 16000
head -c 16000 /dev/zero >>"$work/silence.wav"
expect_failure "$work/silence.wav: is silent from 300 to 3400 Hz" "$work/silence.wav"

finish
