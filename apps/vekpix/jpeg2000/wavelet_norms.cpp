#include "jpeg2000/wavelet_norms.h"

#include <array>
#include <cmath>
#include <numeric>
#include <vector>

namespace vekpix::jpeg2000 {

namespace {

using Line = std::vector<double>;

// o or e += factor * (both neighbours), at positions of one parity, extended symmetrically.
void lift(Line& line, size_t parity, double factor)
{
    const size_t n = line.size();
    for (size_t i = parity; i < n; i += 2) {
        const size_t before = i > 0 ? i - 1 : 1;
        const size_t behind = i + 1 < n ? i + 1 : n - 2;
        line[i] += factor * (line[before] + line[behind]);
    }
}

Line synthesized(bool reversible, const Line& low, const Line& high)
{
    Line line(2 * low.size());
    const double k = reversible ? 1 : 1.230174105;
    for (size_t i = 0; i < low.size(); ++i) {
        line[2 * i] = low[i] * k;
        line[2 * i + 1] = high[i] / k;
    }
    if (reversible) {
        lift(line, 0, -0.25);
        lift(line, 1, 0.5);
    } else {
        lift(line, 0, -0.443506852);
        lift(line, 1, -0.882911076);
        lift(line, 0, 0.052980118);
        lift(line, 1, 1.586134342);
    }
    return line;
}

double lineNorm(bool reversible, bool isHigh, int level)
{
    constexpr size_t size = 16;
    constexpr int deepest = 8;  // from there on each level makes the same difference
    if (level == 0)
        return 1;
    if (level > deepest)
        return lineNorm(reversible, isHigh, deepest) * std::pow(2.0, 0.5 * (level - deepest));
    Line impulse(size);
    impulse[size / 2] = 1;
    const Line nothing(size);
    Line line = synthesized(reversible, isHigh ? nothing : impulse, isHigh ? impulse : nothing);
    for (int i = 1; i < level; ++i) line = synthesized(reversible, line, Line(line.size()));
    return std::sqrt(std::inner_product(line.begin(), line.end(), line.begin(), 0.0));
}

}  // namespace

double waveletNorm(bool reversible, Orientation orientation, int level)
{
    const bool highAcross = orientation == Orientation::HL || orientation == Orientation::HH;
    const bool highDown = orientation == Orientation::LH || orientation == Orientation::HH;
    return lineNorm(reversible, highAcross, level) * lineNorm(reversible, highDown, level);
}

double componentNorm(bool reversible, int component)
{
    static const std::array<double, 3> rct = {std::sqrt(3.0), std::sqrt(11.0 / 16), std::sqrt(11.0 / 16)};
    static const std::array<double, 3> ict = {std::sqrt(3.0), std::hypot(0.34413, 1.772), std::hypot(1.402, 0.71414)};
    return (reversible ? rct : ict)[static_cast<size_t>(component)];
}

}  // namespace vekpix::jpeg2000
