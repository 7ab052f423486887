// The progressive Huffman coder on a drawn picture's quantised blocks. By itself each function has no peer; whole
// scripts are beside the packaged JPEG library's reading and writing of the same picture's coefficients in the same
// scans.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <vector>

#include "jpeg/drawn_file.h"
#include "support/plane.h"
#include "vekj.h"

namespace {

using drawn::blockCount;
using support::AlignedArray;

struct Scan {
    int ss, se, ah, al;  // ah 0: the first scan of the band
};
using Script = std::vector<Scan>;

// Each band at once; or by two bits less and twice refined, as the packaged library does by default with grey.
const Script scripts[] = {
    {{0, 0, 0, 0}, {1, 5, 0, 0}, {6, 63, 0, 0}},
    {{0, 0, 0, 1}, {1, 5, 0, 2}, {6, 63, 0, 2}, {1, 63, 2, 1}, {0, 0, 1, 0}, {1, 63, 1, 0}},
};
const char* const scriptNames[] = {"first", "refined"};

std::vector<jpeg_scan_info> scanInfo(const Script& script)
{
    std::vector<jpeg_scan_info> result;
    for (const Scan& scan : script) result.push_back({1, {0, 0, 0, 0}, scan.ss, scan.se, scan.ah, scan.al});
    return result;
}

// A picture's file, open for reading its coefficients.
class CoefficientFile {
public:
    explicit CoefficientFile(const std::vector<uint8_t>& file)
    {
        d_.err = jpeg_std_error(&errors_);
        jpeg_create_decompress(&d_);
        jpeg_mem_src(&d_, file.data(), file.size());
        jpeg_read_header(&d_, TRUE);
        arrays_ = jpeg_read_coefficients(&d_);
    }
    ~CoefficientFile() { jpeg_destroy_decompress(&d_); }
    CoefficientFile(const CoefficientFile&) = delete;
    CoefficientFile& operator=(const CoefficientFile&) = delete;

    void blocks(int16_t* dst)
    {
        for (int y = 0; y < drawn::blockRows; ++y) {
            JBLOCKARRAY row = d_.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&d_), arrays_[0],
                                                         static_cast<JDIMENSION>(y), 1, FALSE);
            for (int x = 0; x < drawn::blocksPerRow; ++x) dst = std::copy(row[0][x], row[0][x] + 64, dst);
        }
    }
    unsigned long write(const std::vector<jpeg_scan_info>& scans, std::vector<uint8_t>& dst)
    {
        jpeg_compress_struct c;
        jpeg_error_mgr errors;
        c.err = jpeg_std_error(&errors);
        jpeg_create_compress(&c);
        jpeg_copy_critical_parameters(&d_, &c);
        c.scan_info = scans.data();
        c.num_scans = static_cast<int>(scans.size());
        unsigned char* bytes = dst.data();
        unsigned long size = dst.size();
        jpeg_mem_dest(&c, &bytes, &size);
        jpeg_write_coefficients(&c, arrays_);
        jpeg_finish_compress(&c);
        jpeg_destroy_compress(&c);
        return size;
    }

private:
    jpeg_decompress_struct d_{};
    jpeg_error_mgr errors_{};
    jvirt_barray_ptr* arrays_ = nullptr;
};

class CodedScan {
public:
    explicit CodedScan(const Scan& scan) : scan_(scan), bytes_(1U << 20) {}

    // Counts the symbols, makes the tables, writes the stream.
    void encode(const int16_t* blocks)
    {
        if (scan_.ss > 0 || scan_.ah == 0) {
            count(blocks);
            std::array<uint8_t, 16> bits{};
            std::array<uint8_t, 256> vals{};
            vekiEncodeHuffmanRawTableInit_JPEG_8u(counts_.data(), bits.data(), vals.data());
            vekiEncodeHuffmanSpecInit_JPEG_8u(bits.data(), vals.data(), codes());
            vekiDecodeHuffmanSpecInit_JPEG_8u(bits.data(), vals.data(), table());
        }
        write(blocks);
    }
    void count(const int16_t* blocks)
    {
        counts_.fill(0);
        vekiEncodeHuffmanStateInit_JPEG_8u(writer());
        int16_t dc = 0;
        if (scan_.ss == 0) {
            for (int i = 0; i < blockCount; ++i)
                vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(blocks + 64 * i, counts_.data(), &dc, scan_.al);
            return;
        }
        const auto function = scan_.ah == 0 ? vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1
                                            : vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1;
        for (int i = 0; i < blockCount; ++i)
            function(blocks + 64 * i, counts_.data(), scan_.ss, scan_.se, scan_.al, writer(), 0);
        function(nullptr, counts_.data(), scan_.ss, scan_.se, scan_.al, writer(), 1);
    }
    void write(const int16_t* blocks)
    {
        vekiEncodeHuffmanStateInit_JPEG_8u(writer());
        uint8_t* const dst = bytes_.data();
        const int room = static_cast<int>(bytes_.size());
        length_ = 0;
        int16_t dc = 0;
        if (scan_.ss == 0 && scan_.ah == 0) {
            for (int i = 0; i < blockCount; ++i)
                vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blocks + 64 * i, dst, room, &length_, &dc, scan_.al, codes(),
                                                           writer(), 0);
            vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(nullptr, dst, room, &length_, &dc, scan_.al, codes(), writer(),
                                                       1);
            return;
        }
        if (scan_.ss == 0) {
            for (int i = 0; i < blockCount; ++i)
                vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(blocks + 64 * i, dst, room, &length_, scan_.al, writer(),
                                                            0);
            vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(nullptr, dst, room, &length_, scan_.al, writer(), 1);
            return;
        }
        const auto function =
            scan_.ah == 0 ? vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1 : vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1;
        for (int i = 0; i < blockCount; ++i)
            function(blocks + 64 * i, dst, room, &length_, scan_.ss, scan_.se, scan_.al, codes(), writer(), 0);
        function(nullptr, dst, room, &length_, scan_.ss, scan_.se, scan_.al, codes(), writer(), 1);
    }
    VekStatus decode(int16_t* blocks)
    {
        vekiDecodeHuffmanStateInit_JPEG_8u(reader());
        const uint8_t* const src = bytes_.data();
        int position = 0;
        int marker = 0;
        int16_t dc = 0;
        VekStatus status = vekStsOk;
        if (scan_.ss == 0 && scan_.ah == 0) {
            for (int i = 0; i < blockCount; ++i)
                status |= vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(src, length_, &position, blocks + 64 * i, &dc,
                                                                     &marker, scan_.al, table(), reader());
            return status;
        }
        if (scan_.ss == 0) {
            for (int i = 0; i < blockCount; ++i)
                status |= vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(src, length_, &position, blocks + 64 * i, &marker,
                                                                      scan_.al, reader());
            return status;
        }
        const auto function =
            scan_.ah == 0 ? vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1 : vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1;
        for (int i = 0; i < blockCount; ++i)
            status |= function(src, length_, &position, blocks + 64 * i, &marker, scan_.ss, scan_.se, scan_.al, table(),
                               reader());
        return status;
    }
    int length() const { return length_; }

private:
    VekEncodeHuffmanSpec* codes() { return reinterpret_cast<VekEncodeHuffmanSpec*>(codes_.data()); }
    VekDecodeHuffmanSpec* table() { return reinterpret_cast<VekDecodeHuffmanSpec*>(table_.data()); }
    VekEncodeHuffmanState* writer() { return reinterpret_cast<VekEncodeHuffmanState*>(writer_.data()); }
    VekDecodeHuffmanState* reader() { return reinterpret_cast<VekDecodeHuffmanState*>(reader_.data()); }

    Scan scan_;
    std::array<int, 256> counts_{};
    AlignedArray<uint64_t> codes_{128}, table_{206}, writer_{131}, reader_{3};
    std::vector<uint8_t> bytes_;
    int length_ = 0;
};

AlignedArray<int16_t> blocksOf(int quality)
{
    AlignedArray<int16_t> blocks(64 * blockCount);
    CoefficientFile(drawn::greyFile(quality)).blocks(blocks.data());
    return blocks;
}

void setItems(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * blockCount); }

void encodeScan(benchmark::State& state, const Scan& scan)
{
    auto blocks = blocksOf(static_cast<int>(state.range(0)));
    CodedScan coded(scan);
    coded.encode(blocks.data());
    for (auto _ : state) {
        coded.write(blocks.data());
        benchmark::DoNotOptimize(coded.length());
    }
    setItems(state);
}

void countScan(benchmark::State& state, const Scan& scan)
{
    auto blocks = blocksOf(static_cast<int>(state.range(0)));
    CodedScan coded(scan);
    for (auto _ : state) {
        coded.count(blocks.data());
        benchmark::ClobberMemory();
    }
    setItems(state);
}

// A refinement of AC coefficients wants its blocks as they were before it; the others do the same each time.
void decodeScan(benchmark::State& state, const Scan& scan)
{
    auto blocks = blocksOf(static_cast<int>(state.range(0)));
    CodedScan coded(scan);
    coded.encode(blocks.data());
    AlignedArray<int16_t> before(64 * blockCount);
    const int low = scan.ah;
    for (size_t i = 0; i < size_t{64} * blockCount; ++i) {
        const int magnitude = std::abs(int{blocks[i]}) >> low << low;
        before[i] = static_cast<int16_t>(low == 0 ? 0 : blocks[i] < 0 ? -magnitude : magnitude);
    }
    AlignedArray<int16_t> store(64 * blockCount);
    std::copy(before.data(), before.data() + 64 * blockCount, store.data());
    for (auto _ : state) {
        if (scan.ss > 0 && scan.ah > 0) {
            state.PauseTiming();
            std::copy(before.data(), before.data() + 64 * blockCount, store.data());
            state.ResumeTiming();
        }
        if (coded.decode(store.data()) != vekStsOk)
            state.SkipWithError("the scan cannot be read");
    }
    setItems(state);
}

#define VEK_BENCH_SCAN(kind, function, ...)                                     \
    void BM_##function(benchmark::State& state) { kind(state, {__VA_ARGS__}); } \
    BENCHMARK(BM_##function)->ArgName("quality")->Arg(75)->Arg(90)

VEK_BENCH_SCAN(encodeScan, vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1, 0, 0, 0, 1);
VEK_BENCH_SCAN(encodeScan, vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1, 0, 0, 1, 0);
VEK_BENCH_SCAN(encodeScan, vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1, 1, 63, 0, 1);
VEK_BENCH_SCAN(encodeScan, vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1, 1, 63, 1, 0);
VEK_BENCH_SCAN(countScan, vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1, 0, 0, 0, 1);
VEK_BENCH_SCAN(countScan, vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1, 1, 63, 0, 1);
VEK_BENCH_SCAN(countScan, vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1, 1, 63, 1, 0);
VEK_BENCH_SCAN(decodeScan, vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1, 0, 0, 0, 1);
VEK_BENCH_SCAN(decodeScan, vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1, 0, 0, 1, 0);
VEK_BENCH_SCAN(decodeScan, vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1, 1, 63, 0, 1);
VEK_BENCH_SCAN(decodeScan, vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1, 1, 63, 1, 0);

const Script& scriptOf(benchmark::State& state)
{
    const auto script = static_cast<size_t>(state.range(1));
    state.SetLabel(scriptNames[script]);
    return scripts[script];
}

void qualitiesAndScripts(benchmark::internal::Benchmark* b)
{
    b->ArgNames({"quality", "script"})->ArgsProduct({{75, 90}, {0, 1}});
}

// All scans, with their symbols counted and their tables made.
void BM_progressive_encode(benchmark::State& state)
{
    auto blocks = blocksOf(static_cast<int>(state.range(0)));
    std::vector<CodedScan> scans(scriptOf(state).begin(), scriptOf(state).end());
    for (auto _ : state)
        for (CodedScan& scan : scans) scan.encode(blocks.data());
    setItems(state);
}
BENCHMARK(BM_progressive_encode)->Apply(qualitiesAndScripts);

void BM_peer_write_coefficients(benchmark::State& state)
{
    CoefficientFile source(drawn::greyFile(static_cast<int>(state.range(0))));
    const std::vector<jpeg_scan_info> scans = scanInfo(scriptOf(state));
    std::vector<uint8_t> dst(1U << 20);
    for (auto _ : state) benchmark::DoNotOptimize(source.write(scans, dst));
    setItems(state);
}
BENCHMARK(BM_peer_write_coefficients)->Apply(qualitiesAndScripts);

// All scans, into blocks that are cleared before.
void BM_progressive_decode(benchmark::State& state)
{
    auto blocks = blocksOf(static_cast<int>(state.range(0)));
    std::vector<CodedScan> scans(scriptOf(state).begin(), scriptOf(state).end());
    for (CodedScan& scan : scans) scan.encode(blocks.data());
    AlignedArray<int16_t> store(64 * blockCount);
    for (auto _ : state) {
        std::fill(store.data(), store.data() + 64 * blockCount, int16_t{0});
        for (CodedScan& scan : scans) scan.decode(store.data());
        benchmark::ClobberMemory();
    }
    if (!std::equal(blocks.data(), blocks.data() + 64 * blockCount, store.data()))
        state.SkipWithError("the scans do not give back the blocks");
    setItems(state);
}
BENCHMARK(BM_progressive_decode)->Apply(qualitiesAndScripts);

void BM_peer_read_progressive_coefficients(benchmark::State& state)
{
    const std::vector<uint8_t> file = drawn::greyFile(static_cast<int>(state.range(0)), scanInfo(scriptOf(state)));
    for (auto _ : state) {
        CoefficientFile read(file);
        benchmark::DoNotOptimize(read);
    }
    setItems(state);
}
BENCHMARK(BM_peer_read_progressive_coefficients)->Apply(qualitiesAndScripts);

}  // namespace
