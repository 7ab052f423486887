// Every exported symbol jumps through its slot, and every slot holds its implementation.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "frame/implementations.h"

#define VEK_EXPORT(name) extern "C" decltype(::name)* const name##_arraddr;
#include "frame/exports.def"
#undef VEK_EXPORT

namespace {

struct Entry {
    const char* name;
    const void* stub;
    const void* slot;
    const void* target;
    const void* implementation;
};

template <typename Function>
const void* address(Function* function)
{
    return reinterpret_cast<const void*>(function);
}

const Entry entries[] = {
#define VEK_EXPORT(name) {#name, address(&::name), &name##_arraddr, address(name##_arraddr), address(&q3::name)},
#include "frame/exports.def"
#undef VEK_EXPORT
};

TEST(Slots, HoldTheImplementationOfTheirName)
{
    for (const Entry& entry : entries) EXPECT_EQ(entry.implementation, entry.target) << entry.name;
}

TEST(Slots, AreReachedByOneIndirectJump)
{
    constexpr uint8_t landingPad[] = {0xF3, 0x0F, 0x1E, 0xFA};
    for (const Entry& entry : entries) {
        const auto* code = static_cast<const uint8_t*>(entry.stub);
        if (std::memcmp(code, landingPad, sizeof landingPad) == 0)
            code += sizeof landingPad;
        ASSERT_EQ(0xFF, code[0]) << entry.name;  // jmp [rip + displacement]
        ASSERT_EQ(0x25, code[1]) << entry.name;
        int32_t displacement;
        std::memcpy(&displacement, code + 2, sizeof displacement);
        EXPECT_EQ(entry.slot, code + 6 + displacement) << entry.name;
    }
}

TEST(Slots, StubsDifferFromImplementations)
{
    for (const Entry& entry : entries) EXPECT_NE(entry.implementation, entry.stub) << entry.name;
}

TEST(Slots, ACallThroughTheStubReturnsWhatTheImplementationReturns)
{
    EXPECT_EQ(q3::vekjGetLibVersion(), ::vekjGetLibVersion());
}

}  // namespace
