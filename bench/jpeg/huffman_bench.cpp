// The sequential Huffman coder on a drawn picture's quantised blocks: its encoder beside the packaged JPEG library's
// kernel, its decoder beside that library's reading of the same file's coefficients. And what makes its tables.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <span>
#include <tuple>
#include <vector>

#include "jpeg/drawn_file.h"
#include "peers/turbo_kernels.h"
#include "support/plane.h"
#include "vekj.h"

namespace {

using drawn::blockCount;
using drawn::blockRows;
using drawn::blocksPerRow;
using drawn::greyFile;
using support::AlignedArray;

// The lists of a file's table for luminance, DC or AC: of each length the number of codes, and the symbols.
struct Lists {
    std::array<uint8_t, 16> bits{};
    std::array<uint8_t, 256> values{};

    explicit Lists(const JHUFF_TBL& table)
    {
        std::copy_n(table.bits + 1, 16, bits.begin());
        std::copy_n(table.huffval, 256, values.begin());
    }
};

// What a file holds: its blocks in order, its entropy-coded segment, and its tables for our coder.
struct Coded {
    std::vector<uint8_t> file;
    AlignedArray<int16_t> blocks{64 * blockCount};
    std::vector<uint8_t> segment;
    AlignedArray<uint64_t> encodeDc{128}, encodeAc{128}, decodeDc{206}, decodeAc{206};

    std::vector<Lists> lists;  // DC, AC

    explicit Coded(int quality) : file(greyFile(quality))
    {
        jpeg_decompress_struct d;
        jpeg_error_mgr errors;
        d.err = jpeg_std_error(&errors);
        jpeg_create_decompress(&d);
        jpeg_mem_src(&d, file.data(), file.size());
        jpeg_read_header(&d, TRUE);
        for (auto [table, encode, decode] : {std::tuple(d.dc_huff_tbl_ptrs[0], encodeDc.data(), decodeDc.data()),
                                             std::tuple(d.ac_huff_tbl_ptrs[0], encodeAc.data(), decodeAc.data())}) {
            lists.emplace_back(*table);
            vekiEncodeHuffmanSpecInit_JPEG_8u(table->bits + 1, table->huffval,
                                              reinterpret_cast<VekEncodeHuffmanSpec*>(encode));
            vekiDecodeHuffmanSpecInit_JPEG_8u(table->bits + 1, table->huffval,
                                              reinterpret_cast<VekDecodeHuffmanSpec*>(decode));
        }
        jvirt_barray_ptr* const arrays = jpeg_read_coefficients(&d);
        for (int y = 0; y < blockRows; ++y) {
            JBLOCKARRAY row = d.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&d), arrays[0],
                                                        static_cast<JDIMENSION>(y), 1, FALSE);
            for (int x = 0; x < blocksPerRow; ++x)
                for (int i = 0; i < 64; ++i)
                    blocks[static_cast<size_t>((y * blocksPerRow + x) * 64 + i)] = row[0][x][i];
        }
        jpeg_finish_decompress(&d);
        jpeg_destroy_decompress(&d);
        segment.resize(1U << 20);
        segment.resize(static_cast<size_t>(encode(segment)));
        segment.insert(segment.end(), {0xFF, 0xD9});
    }
    const VekEncodeHuffmanSpec* dcCodes() { return reinterpret_cast<VekEncodeHuffmanSpec*>(encodeDc.data()); }
    const VekEncodeHuffmanSpec* acCodes() { return reinterpret_cast<VekEncodeHuffmanSpec*>(encodeAc.data()); }
    const VekDecodeHuffmanSpec* dcTable() { return reinterpret_cast<VekDecodeHuffmanSpec*>(decodeDc.data()); }
    const VekDecodeHuffmanSpec* acTable() { return reinterpret_cast<VekDecodeHuffmanSpec*>(decodeAc.data()); }

    int encode(std::vector<uint8_t>& dst)
    {
        AlignedArray<uint64_t> memory(131);
        auto* const state = reinterpret_cast<VekEncodeHuffmanState*>(memory.data());
        vekiEncodeHuffmanStateInit_JPEG_8u(state);
        int position = 0;
        int16_t dc = 0;
        const int room = static_cast<int>(dst.size());
        for (size_t i = 0; i < blockCount; ++i)
            vekiEncodeHuffman8x8_JPEG_16s1u_C1(blocks.data() + 64 * i, dst.data(), room, &position, &dc, dcCodes(),
                                               acCodes(), state, 0);
        vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst.data(), room, &position, nullptr, nullptr, nullptr, state, 1);
        return position;
    }
};

void BM_vekiEncodeHuffman8x8_JPEG_16s1u_C1(benchmark::State& state)
{
    Coded coded(static_cast<int>(state.range(0)));
    std::vector<uint8_t> dst(coded.segment.size() + 64);
    for (auto _ : state) benchmark::DoNotOptimize(coded.encode(dst));
    state.SetItemsProcessed(state.iterations() * blockCount);
}
BENCHMARK(BM_vekiEncodeHuffman8x8_JPEG_16s1u_C1)->ArgName("quality")->Arg(50)->Arg(75)->Arg(90);

turbo::HuffmanTable codesOf(const VekEncodeHuffmanSpec* table)
{
    const std::span entries(reinterpret_cast<const uint32_t*>(table), 256);
    turbo::HuffmanTable codes;
    for (size_t symbol = 0; symbol < 256; ++symbol) {
        codes.code[symbol] = entries[symbol] & 0xFFFF;
        codes.length[symbol] = static_cast<char>(entries[symbol] >> 16);
    }
    return codes;
}

// Without the test of the room that is left and the flush at the end, which that library's caller makes.
void BM_peer_huff_encode_one_block(benchmark::State& state)
{
    Coded coded(static_cast<int>(state.range(0)));
    const turbo::HuffmanTable dcCodes = codesOf(coded.dcCodes());
    const turbo::HuffmanTable acCodes = codesOf(coded.acCodes());
    constexpr size_t longestBlock = 512;
    std::vector<uint8_t> dst(coded.segment.size() + longestBlock);
    uint8_t* end = nullptr;
    for (auto _ : state) {
        turbo::HuffmanState encoder{};
        end = dst.data();
        int lastDc = 0;
        for (size_t i = 0; i < blockCount; ++i) {
            const int16_t* const block = coded.blocks.data() + 64 * i;
            end = turbo::jsimd_huff_encode_one_block_sse2(&encoder, end, block, lastDc, &dcCodes, &acCodes);
            lastDc = block[0];
        }
        benchmark::DoNotOptimize(end);
    }
    if (!std::equal(dst.data(), end, coded.segment.begin()) || end - dst.data() + 10 < std::ssize(coded.segment))
        state.SkipWithError("the peer writes other bytes");  // the last few are still in the encoder
    state.SetItemsProcessed(state.iterations() * blockCount);
}
BENCHMARK(BM_peer_huff_encode_one_block)->ArgName("quality")->Arg(50)->Arg(75)->Arg(90);

void BM_vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(benchmark::State& state)
{
    Coded coded(static_cast<int>(state.range(0)));
    std::vector<uint8_t> dst(coded.segment.size() + 64);
    for (auto _ : state) {
        int bits = 0;
        int16_t dc = 0;
        for (size_t i = 0; i < blockCount; ++i)
            vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(coded.blocks.data() + 64 * i, dst.data(), &bits, &dc,
                                                      coded.dcCodes(), coded.acCodes());
        benchmark::DoNotOptimize(bits);
    }
    state.SetItemsProcessed(state.iterations() * blockCount);
}
BENCHMARK(BM_vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1)->ArgName("quality")->Arg(50)->Arg(75)->Arg(90);

void BM_vekiGetHuffmanStatistics8x8_JPEG_16s_C1(benchmark::State& state)
{
    Coded coded(static_cast<int>(state.range(0)));
    std::array<int, 256> dcCounts{};
    std::array<int, 256> acCounts{};
    int16_t dc = 0;
    for (auto _ : state)
        for (size_t i = 0; i < blockCount; ++i)
            benchmark::DoNotOptimize(vekiGetHuffmanStatistics8x8_JPEG_16s_C1(coded.blocks.data() + 64 * i,
                                                                             dcCounts.data(), acCounts.data(), &dc));
    state.SetItemsProcessed(state.iterations() * blockCount);
}
BENCHMARK(BM_vekiGetHuffmanStatistics8x8_JPEG_16s_C1)->ArgName("quality")->Arg(50)->Arg(75)->Arg(90);

// What tables cost: of the file's AC symbols, the longest lists.
void BM_vekiEncodeHuffmanSpecInit_JPEG_8u(benchmark::State& state)
{
    Coded coded(75);
    const Lists& ac = coded.lists[1];
    for (auto _ : state) {
        vekiEncodeHuffmanSpecInit_JPEG_8u(ac.bits.data(), ac.values.data(),
                                          reinterpret_cast<VekEncodeHuffmanSpec*>(coded.encodeAc.data()));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_vekiEncodeHuffmanSpecInit_JPEG_8u);

void BM_vekiDecodeHuffmanSpecInit_JPEG_8u(benchmark::State& state)
{
    Coded coded(75);
    const Lists& ac = coded.lists[1];
    for (auto _ : state) {
        vekiDecodeHuffmanSpecInit_JPEG_8u(ac.bits.data(), ac.values.data(),
                                          reinterpret_cast<VekDecodeHuffmanSpec*>(coded.decodeAc.data()));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_vekiDecodeHuffmanSpecInit_JPEG_8u);

void BM_vekiEncodeHuffmanRawTableInit_JPEG_8u(benchmark::State& state)
{
    Coded coded(static_cast<int>(state.range(0)));
    std::array<int, 256> dcCounts{};
    std::array<int, 256> acCounts{};
    int16_t dc = 0;
    for (size_t i = 0; i < blockCount; ++i)
        vekiGetHuffmanStatistics8x8_JPEG_16s_C1(coded.blocks.data() + 64 * i, dcCounts.data(), acCounts.data(), &dc);
    std::array<uint8_t, 16> bits{};
    std::array<uint8_t, 256> values{};
    for (auto _ : state) {
        vekiEncodeHuffmanRawTableInit_JPEG_8u(acCounts.data(), bits.data(), values.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_vekiEncodeHuffmanRawTableInit_JPEG_8u)->ArgName("quality")->Arg(50)->Arg(75)->Arg(90);

void BM_vekiDecodeHuffman8x8_JPEG_1u16s_C1(benchmark::State& state)
{
    Coded coded(static_cast<int>(state.range(0)));
    AlignedArray<int16_t> blocks(64 * blockCount);
    AlignedArray<uint64_t> memory(3);
    auto* const reader = reinterpret_cast<VekDecodeHuffmanState*>(memory.data());
    for (auto _ : state) {
        vekiDecodeHuffmanStateInit_JPEG_8u(reader);
        int position = 0;
        int marker = 0;
        int16_t dc = 0;
        for (size_t i = 0; i < blockCount; ++i)
            vekiDecodeHuffman8x8_JPEG_1u16s_C1(coded.segment.data(), static_cast<int>(coded.segment.size()), &position,
                                               blocks.data() + 64 * i, &dc, &marker, coded.dcTable(), coded.acTable(),
                                               reader);
        benchmark::DoNotOptimize(position);
    }
    state.SetItemsProcessed(state.iterations() * blockCount);
}
BENCHMARK(BM_vekiDecodeHuffman8x8_JPEG_1u16s_C1)->ArgName("quality")->Arg(50)->Arg(75)->Arg(90);

void BM_vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(benchmark::State& state)
{
    Coded coded(static_cast<int>(state.range(0)));
    AlignedArray<int16_t> blocks(64 * blockCount);
    for (auto _ : state) {
        int bits = 0;
        int marker = 0;
        int16_t dc = 0;
        uint32_t prefetched = 0;
        int numPrefetched = 0;
        for (size_t i = 0; i < blockCount; ++i)
            vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(coded.segment.data(), &bits, blocks.data() + 64 * i, &dc, &marker,
                                                      &prefetched, &numPrefetched, coded.dcTable(), coded.acTable());
        benchmark::DoNotOptimize(bits);
    }
    state.SetItemsProcessed(state.iterations() * blockCount);
}
BENCHMARK(BM_vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1)->ArgName("quality")->Arg(50)->Arg(75)->Arg(90);

// The whole file, headers included, to coefficients.
void BM_peer_read_coefficients(benchmark::State& state)
{
    const std::vector<uint8_t> file = greyFile(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        jpeg_decompress_struct d;
        jpeg_error_mgr errors;
        d.err = jpeg_std_error(&errors);
        jpeg_create_decompress(&d);
        jpeg_mem_src(&d, file.data(), file.size());
        jpeg_read_header(&d, TRUE);
        benchmark::DoNotOptimize(jpeg_read_coefficients(&d));
        jpeg_destroy_decompress(&d);
    }
    state.SetItemsProcessed(state.iterations() * blockCount);
}
BENCHMARK(BM_peer_read_coefficients)->ArgName("quality")->Arg(50)->Arg(75)->Arg(90);

}  // namespace
