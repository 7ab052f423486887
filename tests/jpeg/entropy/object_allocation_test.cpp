// Tables and states that the library allocates, with core services of the test's own behind it.
#include <gtest/gtest.h>

#include "frame/recorded_core.h"
#include "huffman_fixtures.h"

namespace {

class ObjectAllocation : public testing::Test {
protected:
    void SetUp() override { recorded::mallocCalls = recorded::freeCalls = 0; }
    void TearDown() override { recorded::mallocFails = false; }

    template <typename T>
    void expectOneOf(int32_t size, T* object)
    {
        EXPECT_NE(nullptr, object);
        EXPECT_EQ(1, recorded::mallocCalls);
        EXPECT_EQ(size, recorded::lastMallocLength);
        recorded::mallocCalls = 0;
    }
    void expectFreed(const void* object)
    {
        EXPECT_EQ(1, recorded::freeCalls);
        EXPECT_EQ(object, recorded::lastFreed);
        recorded::freeCalls = 0;
    }

    const model::HuffmanLists good = huffman::luminanceAc();
    const model::HuffmanLists bad = huffman::lists({255, 255}, {});
};

TEST_F(ObjectAllocation, TablesAreBuiltAsInACallersObject)
{
    VekDecodeHuffmanSpec* decode = nullptr;
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(good.bits.data(), good.vals.data(), &decode));
    expectOneOf(1644, decode);
    VekEncodeHuffmanSpec* encode = nullptr;
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(good.bits.data(), good.vals.data(), &encode));
    expectOneOf(1024, encode);
    const huffman::Tables tables(good, good);
    EXPECT_EQ(0, std::memcmp(tables.decodeAc.lookup, decode->lookup, sizeof decode->lookup));
    EXPECT_EQ(0, std::memcmp(tables.decodeAc.maxCode, decode->maxCode, sizeof decode->maxCode));
    EXPECT_EQ(0, std::memcmp(tables.encodeAc.codes, encode->codes, sizeof encode->codes));
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecFree_JPEG_8u(decode));
    expectFreed(decode);
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanSpecFree_JPEG_8u(encode));
    expectFreed(encode);
}

TEST_F(ObjectAllocation, BadListsDeliverATableForTheCallerToFree)
{
    VekDecodeHuffmanSpec* decode = nullptr;
    EXPECT_EQ(vekStsJpegHuffmanTable,
              vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(bad.bits.data(), bad.vals.data(), &decode));
    expectOneOf(1644, decode);
    VekEncodeHuffmanSpec* encode = nullptr;
    EXPECT_EQ(vekStsJpegHuffmanTable,
              vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(bad.bits.data(), bad.vals.data(), &encode));
    expectOneOf(1024, encode);
    EXPECT_EQ(0, recorded::freeCalls);
    vekiDecodeHuffmanSpecFree_JPEG_8u(decode);
    vekiEncodeHuffmanSpecFree_JPEG_8u(encode);
}

TEST_F(ObjectAllocation, StatesAreInitialised)
{
    VekDecodeHuffmanState* decode = nullptr;
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanStateInitAlloc_JPEG_8u(&decode));
    expectOneOf(24, decode);
    EXPECT_EQ(0U, decode->bitBuffer);
    EXPECT_EQ(0, decode->numBits + decode->eobRun + decode->endOfBlockPos);
    VekEncodeHuffmanState* encode = nullptr;
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanStateInitAlloc_JPEG_8u(&encode));
    expectOneOf(1048, encode);
    EXPECT_EQ(0U, encode->bitBuffer);
    EXPECT_EQ(0, encode->numBits + encode->eobRun + encode->numCorrectionBits);
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanStateFree_JPEG_8u(decode));
    expectFreed(decode);
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanStateFree_JPEG_8u(encode));
    expectFreed(encode);
}

TEST_F(ObjectAllocation, WithoutMemoryTheCallersPointerIsLeftAlone)
{
    recorded::mallocFails = true;
    auto* const before = reinterpret_cast<uint64_t*>(64);
    const auto expectUntouched = [&](const auto& init) {
        void* object = before;
        EXPECT_EQ(vekStsNullPointer, init(object));
        EXPECT_EQ(before, object);
    };
    expectUntouched([&](void*& p) {
        return vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(good.bits.data(), good.vals.data(),
                                                      reinterpret_cast<VekDecodeHuffmanSpec**>(&p));
    });
    expectUntouched([&](void*& p) {
        return vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(good.bits.data(), good.vals.data(),
                                                      reinterpret_cast<VekEncodeHuffmanSpec**>(&p));
    });
    expectUntouched([&](void*& p) {
        return vekiDecodeHuffmanStateInitAlloc_JPEG_8u(reinterpret_cast<VekDecodeHuffmanState**>(&p));
    });
    expectUntouched([&](void*& p) {
        return vekiEncodeHuffmanStateInitAlloc_JPEG_8u(reinterpret_cast<VekEncodeHuffmanState**>(&p));
    });
    EXPECT_EQ(4, recorded::mallocCalls);
}

}  // namespace
