// Companding, beside a look-up for each sample.

#include <cmath>
#include <random>
#include <string>

#include "compare.h"
#include "peer_law.h"
#include "rvx.h"

namespace {

using Byte = unsigned char;

// Levels as speech has them: most samples far below full scale.
std::vector<double> speech(int n)
{
    std::mt19937 random(711);
    std::normal_distribution<double> sample(0.0, 1.0);
    std::vector<double> samples;
    for (int i = 0; i < n; ++i)
        samples.push_back(0.25 * sample(random) * std::fabs(std::sin(1e-3 * i)));
    return samples;
}

void compareLaw(const std::string &law, int n, void (*encode)(const double *, Byte *, int),
                void (*decode)(const Byte *, double *, int))
{
    // Of all 16-bit samples, by their bits without a sign.
    auto *codeTable = new std::vector<Byte>(65536);
    std::vector<double> all;
    for (int pattern = 0; pattern < 65536; ++pattern)
        all.push_back((pattern < 32768 ? pattern : pattern - 65536) / 32768.0);
    encode(all.data(), codeTable->data(), 65536);
    auto *valueTable = new std::vector<double>(256);
    std::vector<Byte> codes;
    for (int c = 0; c < 256; ++c)
        codes.push_back(static_cast<Byte>(c));
    decode(codes.data(), valueTable->data(), 256);

    auto *linear = new std::vector<double>(speech(n));
    auto *coded = new std::vector<Byte>(static_cast<std::size_t>(n));
    auto *decoded = new std::vector<double>(static_cast<std::size_t>(n));
    encode(linear->data(), coded->data(), n);
    auto *again = new std::vector<Byte>(*coded);
    compare("to " + law, std::to_string(n),
            {{"rvx",
              [=] {
                  encode(linear->data(), again->data(), n);
                  escape(again->data());
              }},
             {"table", [=] {
                  loopEncode(linear->data(), again->data(), n, codeTable->data());
                  escape(again->data());
              }}});
    compare("from " + law, std::to_string(n),
            {{"rvx",
              [=] {
                  decode(coded->data(), decoded->data(), n);
                  escape(decoded->data());
              }},
             {"table",
              [=] {
                  lookUp(coded->data(), decoded->data(), n, valueTable->data());
                  escape(decoded->data());
              }},
             {"gather", [=] {
                  loopDecode(coded->data(), decoded->data(), n, valueTable->data());
                  escape(decoded->data());
              }}});
}

} // namespace

void registerComparisons()
{
    for (const char *law : {"A-law", "mu-law"}) {
        limit(std::string("to ") + law, 0.4,
              "Shuffles: the first 16 bits of each sample and of its sum with a constant are "
              "collected, and the codes put in order.");
        limit(std::string("from ") + law, 1.0,
              "Some ten operations on 8 floats, and the widening to doubles.");
    }
    for (const int n : {256, 4096, 65536, 1000000}) {
        compareLaw("A-law", n, rvxdbLinToALaw, rvxdbALawToLin);
        compareLaw("mu-law", n, rvxdbLinToMuLaw, rvxdbMuLawToLin);
    }
}
