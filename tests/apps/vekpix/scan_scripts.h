// Scan scripts of many kinds, for pictures of one component and of three.
#ifndef VEK_TESTS_VEKPIX_SCAN_SCRIPTS_H
#define VEK_TESTS_VEKPIX_SCAN_SCRIPTS_H

#include <string>
#include <vector>

#include "jpeg_peer.h"
#include "support/generators.h"

namespace support {

using Script = std::vector<peer::Scan>;

// As the packaged tools read it from a file.
inline std::string describe(const Script& script)
{
    std::string text;
    for (const peer::Scan& scan : script) {
        for (const int component : scan.components) text += std::to_string(component) + " ";
        text.back() = ':';
        for (const int number : {scan.begin, -scan.end, scan.high, scan.low}) text += " " + std::to_string(number);
        text += ";\n";
    }
    for (size_t at = text.find(" -"); at != std::string::npos; at = text.find(" -", at + 1)) text.erase(at, 1);
    return text;
}

// A script of the given components by chance: bands and bits cut anywhere, in any order that the standard allows.
inline Script randomScript(int components, uint64_t seed)
{
    Random random(seed);
    Script script;
    std::vector<int> all;
    for (int c = 0; c < components; ++c) all.push_back(c);
    const int dcLow = static_cast<int>(random.in(0, 3));
    script.push_back({all, 0, 0, 0, dcLow});
    std::vector<Script> pending(static_cast<size_t>(components));  // AC, of each component in its order
    for (int c = 0; c < components; ++c)
        for (int begin = 1; begin < 64;) {
            const int end = static_cast<int>(random.in(begin, random.in(begin, 63)));
            int low = static_cast<int>(random.in(0, 3));
            Script& scans = pending[static_cast<size_t>(c)];
            scans.push_back({{c}, begin, end, 0, low});
            for (; low > 0; --low) scans.push_back({{c}, begin, end, low, low - 1});
            begin = end + 1;
        }
    for (int low = dcLow; low > 0; --low) {
        if (random.in(0, 1) != 0) {
            script.push_back({all, 0, 0, low, low - 1});
            continue;
        }
        for (const int c : all) script.push_back({{c}, 0, 0, low, low - 1});
    }
    std::vector<size_t> next(pending.size(), 0);
    size_t left = 0;
    for (const Script& scans : pending) left += scans.size();
    while (left > 0) {
        const size_t c = static_cast<size_t>(random.in(0, components - 1));
        if (next[c] == pending[c].size())
            continue;
        script.push_back(pending[c][next[c]++]);
        --left;
    }
    return script;
}

inline std::vector<Script> greyScripts()
{
    std::vector<Script> scripts = {
        {{{0}, 0, 0, 0, 0}, {{0}, 1, 63, 0, 0}},
        {{{0}, 0, 0, 0, 0}, {{0}, 1, 1, 0, 0}, {{0}, 2, 62, 0, 0}, {{0}, 63, 63, 0, 0}},
        {{{0}, 0, 0, 0, 1}, {{0}, 1, 63, 0, 1}, {{0}, 0, 0, 1, 0}, {{0}, 1, 63, 1, 0}},
        {{{0}, 0, 0, 0, 3},
         {{0}, 0, 0, 3, 2},
         {{0}, 0, 0, 2, 1},
         {{0}, 0, 0, 1, 0},
         {{0}, 1, 63, 0, 4},
         {{0}, 1, 63, 4, 3},
         {{0}, 1, 63, 3, 2},
         {{0}, 1, 63, 2, 1},
         {{0}, 1, 63, 1, 0}},
    };
    for (uint64_t seed = 1; seed <= 5; ++seed) scripts.push_back(randomScript(1, seed));
    scripts.push_back(scripts[2]);
    return scripts;
}

inline std::vector<Script> colourScripts()
{
    std::vector<Script> scripts = {
        {{{0, 1, 2}, 0, 0, 0, 0}, {{0}, 1, 63, 0, 0}, {{1}, 1, 63, 0, 0}, {{2}, 1, 63, 0, 0}},
        {{{0}, 0, 0, 0, 0},
         {{0}, 1, 63, 0, 0},
         {{2}, 0, 0, 0, 0},
         {{2}, 1, 63, 0, 0},
         {{1}, 0, 0, 0, 0},
         {{1}, 1, 63, 0, 0}},
        {{{0, 2}, 0, 0, 0, 2},
         {{1}, 0, 0, 0, 0},
         {{2}, 1, 63, 0, 0},
         {{0, 2}, 0, 0, 2, 1},
         {{0}, 0, 0, 1, 0},
         {{0}, 1, 20, 0, 2},
         {{2}, 0, 0, 1, 0},
         {{1}, 1, 63, 0, 3},
         {{0}, 21, 63, 0, 0},
         {{1}, 1, 63, 3, 2},
         {{0}, 1, 20, 2, 1},
         {{0}, 1, 20, 1, 0},
         {{1}, 1, 63, 2, 1},
         {{1}, 1, 63, 1, 0}},
    };
    for (uint64_t seed = 1; seed <= 8; ++seed) scripts.push_back(randomScript(3, seed));
    return scripts;
}

}  // namespace support

#endif
