#include "jpeg/scan_script.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <numeric>

#include "error.h"

namespace vekpix::jpeg {

namespace {

constexpr int untold = -1;

int blocksInMcu(const std::vector<size_t>& components, const Frame& frame)
{
    int blocks = 0;
    for (const size_t c : components)
        blocks += frame.components[c].horizontalSampling * frame.components[c].verticalSampling;
    return blocks;
}

// One scan of all components, or one of each if an MCU of all is too large.
void addForAll(ScanScript& script, const Frame& frame, const ScanPlan& plan)
{
    std::vector<size_t> all(frame.components.size());
    std::iota(all.begin(), all.end(), size_t{0});
    if (all.size() == 1 || blocksInMcu(all, frame) <= maxBlocksInMcu) {
        script.push_back(plan);
        script.back().components = all;
        return;
    }
    for (const size_t c : all) {
        script.push_back(plan);
        script.back().components = {c};
    }
}

void addForEach(ScanScript& script, const Frame& frame, const ScanPlan& plan)
{
    for (size_t c = 0; c < frame.components.size(); ++c) {
        script.push_back(plan);
        script.back().components = {c};
    }
}

// Walks through a script's text.
class ScriptCursor {
public:
    explicit ScriptCursor(std::string_view text) : text_(text) { skipSpace(); }

    bool atEnd() const { return position_ == text_.size(); }
    bool atNumber() const { return !atEnd() && std::isdigit(static_cast<unsigned char>(text_[position_])) != 0; }
    bool take(char wanted)
    {
        if (atEnd() || text_[position_] != wanted)
            return false;
        ++position_;
        skipSpace();
        return true;
    }
    // A number, and what separates it from another: space, or one character of any kind.
    int number()
    {
        if (!atNumber())
            fail("a number expected");
        int value = 0;
        for (; atNumber(); ++position_) value = std::min(value * 10 + (text_[position_] - '0'), 999);
        skipSpace();
        if (!atEnd() && !atNumber() && text_[position_] != ':' && text_[position_] != ';') {
            ++position_;
            skipSpace();
        }
        return value;
    }
    [[noreturn]] void fail(const std::string& what) const
    {
        const auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(position_), '\n');
        throw Error("scan script, line " + std::to_string(line) + ": " + what);
    }

private:
    void skipSpace()
    {
        bool comment = false;
        for (; !atEnd(); ++position_) {
            const char c = text_[position_];
            comment = c == '#' || (comment && c != '\n');
            if (!comment && std::isspace(static_cast<unsigned char>(c)) == 0)
                break;
        }
    }

    std::string_view text_;
    size_t position_ = 0;
};

ScanPlan parseScan(ScriptCursor& cursor)
{
    ScanPlan plan;
    do plan.components.push_back(static_cast<size_t>(cursor.number()));
    while (cursor.atNumber());
    if (!cursor.take(':'))
        return plan;
    for (int* value : {&plan.spectralBegin, &plan.spectralEnd, &plan.high, &plan.low}) *value = cursor.number();
    return plan;
}

// The lowest bit that has been told of each coefficient.
using Told = std::vector<std::array<int, 64>>;

class ScriptCheck {
public:
    explicit ScriptCheck(const Frame& frame) : frame_(frame), told_(frame.components.size())
    {
        for (auto& component : told_) component.fill(untold);
    }

    void add(const ScanPlan& plan)
    {
        ++scan_;
        checkComponents(plan);
        if (plan.sequential())
            ++sequential_;
        else
            checkCoefficients(plan);
        for (const size_t c : plan.components) addComponent(plan, c);
    }

    bool finish() const
    {
        if (scan_ == 0)
            throw Error("scan script: no scans in it");
        for (size_t c = 0; c < told_.size(); ++c)
            if (told_[c][0] == untold)
                throw Error("scan script: component " + std::to_string(c) + " is missing");
        if (sequential_ != 0 && sequential_ != scan_)
            throw Error("scan script: sequential and progressive scans in one file");
        return sequential_ == 0;
    }

    const Told& told() const { return told_; }

private:
    void checkComponents(const ScanPlan& plan) const
    {
        for (size_t i = 0; i < plan.components.size(); ++i) {
            if (plan.components[i] >= frame_.components.size())
                fail("the picture has no component " + std::to_string(plan.components[i]));
            if (i > 0 && plan.components[i] <= plan.components[i - 1])
                fail("the components must rise");
        }
        if (plan.components.size() > 1 && blocksInMcu(plan.components, frame_) > maxBlocksInMcu)
            fail("too many blocks in an MCU");
    }

    void checkCoefficients(const ScanPlan& plan) const
    {
        const int mostBit = 13;
        if (plan.spectralBegin > plan.spectralEnd || plan.spectralEnd > 63)
            fail("impossible coefficients");
        if (plan.spectralBegin == 0 && plan.spectralEnd != 0)
            fail("DC and some of AC in one scan");
        if (plan.spectralBegin != 0 && plan.components.size() != 1)
            fail("AC coefficients of several components");
        if (plan.low > mostBit || (plan.high != 0 && plan.low != plan.high - 1))
            fail("impossible bits");
    }

    void addComponent(const ScanPlan& plan, size_t component)
    {
        std::array<int, 64>& told = told_[component];
        if (plan.sequential() && (plan.high != 0 || plan.low != 0))
            fail("bits of a sequential scan");
        if (plan.spectralBegin != 0 && told[0] == untold)
            fail("AC before DC");
        for (int k = plan.spectralBegin; k <= plan.spectralEnd; ++k) {
            int& bit = told[static_cast<size_t>(k)];
            if (plan.high == 0 ? bit != untold : bit != plan.high)
                fail("coefficient " + std::to_string(k) + " is not told bit by bit");
            bit = plan.low;
        }
    }

    [[noreturn]] void fail(const std::string& what) const
    {
        throw Error("scan script, scan " + std::to_string(scan_) + ": " + what);
    }

    const Frame& frame_;
    Told told_;
    int scan_ = 0;
    int sequential_ = 0;
};

}  // namespace

ScanScript sequentialScript(const Frame& frame)
{
    ScanScript script;
    addForAll(script, frame, {});
    return script;
}

ScanScript progressiveScript(const Frame& frame, ColourModel colours)
{
    ScanScript script;
    addForAll(script, frame, {{}, 0, 0, 0, 1});
    if (colours == ColourModel::YCbCr) {
        script.push_back({{0}, 1, 5, 0, 2});
        script.push_back({{2}, 1, 63, 0, 1});
        script.push_back({{1}, 1, 63, 0, 1});
        script.push_back({{0}, 6, 63, 0, 2});
        script.push_back({{0}, 1, 63, 2, 1});
        addForAll(script, frame, {{}, 0, 0, 1, 0});
        script.push_back({{2}, 1, 63, 1, 0});
        script.push_back({{1}, 1, 63, 1, 0});
        script.push_back({{0}, 1, 63, 1, 0});
        return script;
    }
    addForEach(script, frame, {{}, 1, 5, 0, 2});
    addForEach(script, frame, {{}, 6, 63, 0, 2});
    addForEach(script, frame, {{}, 1, 63, 2, 1});
    addForAll(script, frame, {{}, 0, 0, 1, 0});
    addForEach(script, frame, {{}, 1, 63, 1, 0});
    return script;
}

ScanScript parseScanScript(std::string_view text)
{
    ScanScript script;
    ScriptCursor cursor(text);
    while (!cursor.atEnd()) {
        script.push_back(parseScan(cursor));
        if (!cursor.atEnd() && !cursor.take(';'))
            cursor.fail("';' expected");
    }
    return script;
}

bool checkScanScript(const ScanScript& script, const Frame& frame)
{
    ScriptCheck check(frame);
    for (const ScanPlan& plan : script) check.add(plan);
    return check.finish();
}

bool isComplete(const ScanScript& script, const Frame& frame)
{
    ScriptCheck check(frame);
    for (const ScanPlan& plan : script) check.add(plan);
    return std::ranges::all_of(check.told(), [](const std::array<int, 64>& component) {
        return std::ranges::all_of(component, [](int bit) { return bit == 0; });
    });
}

}  // namespace vekpix::jpeg
