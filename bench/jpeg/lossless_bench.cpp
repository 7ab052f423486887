// The lossless coder: prediction rows beside memcpy of as many bytes moved, or where each sample waits for the one
// before, beside a chain of additions, of one cycle each; the Huffman row coders by value.
#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <random>
#include <vector>

#include "support/plane.h"
#include "vekj.h"

namespace {

using support::AlignedArray;

// Samples in a row: in the first-level cache, in the second, beyond.
void widths(benchmark::internal::Benchmark* b) { b->ArgName("width")->Arg(1024)->Arg(8192)->Arg(1 << 16); }

// Noise of 12 bits, or of 16 so that sums wrap.
struct PredictionRows {
    explicit PredictionRows(const benchmark::State& state, int bits = 12)
        : width(static_cast<int>(state.range(0))),
          src(static_cast<size_t>(width), 1),
          above(static_cast<size_t>(width), 2),
          dst(static_cast<size_t>(width), 3)
    {
        for (size_t i = 0; i < src.size(); ++i) {
            src[i] = static_cast<int16_t>(src[i] & ((1 << bits) - 1));
            above[i] = static_cast<int16_t>(above[i] & ((1 << bits) - 1));
        }
    }
    int width;
    AlignedArray<int16_t> src, above, dst;
};

constexpr bool readsRowAbove(int predictor) { return predictor != 1; }

void countSamples(benchmark::State& state, int bytesOfSample)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * state.range(0) * bytesOfSample);
}

template <int predictor>
void BM_vekiDiffPredRow_JPEG_16s_C1(benchmark::State& state)
{
    PredictionRows rows(state);
    for (auto _ : state) {
        vekiDiffPredRow_JPEG_16s_C1(rows.src.data(), rows.above.data(), rows.dst.data(), rows.width, predictor);
        benchmark::ClobberMemory();
    }
    countSamples(state, readsRowAbove(predictor) ? 6 : 4);
}

template <int predictor, int bits = 12>
void BM_vekiReconstructPredRow_JPEG_16s_C1(benchmark::State& state)
{
    PredictionRows rows(state, bits);
    vekiDiffPredRow_JPEG_16s_C1(rows.src.data(), rows.above.data(), rows.src.data(), rows.width, predictor);
    for (auto _ : state) {
        vekiReconstructPredRow_JPEG_16s_C1(rows.src.data(), rows.above.data(), rows.dst.data(), rows.width, predictor);
        benchmark::ClobberMemory();
    }
    countSamples(state, readsRowAbove(predictor) ? 6 : 4);
}

#define VEK_BENCH_PREDICTOR(n)                                   \
    BENCHMARK(BM_vekiDiffPredRow_JPEG_16s_C1<n>)->Apply(widths); \
    BENCHMARK(BM_vekiReconstructPredRow_JPEG_16s_C1<n>)->Apply(widths)
VEK_BENCH_PREDICTOR(1);
VEK_BENCH_PREDICTOR(2);
VEK_BENCH_PREDICTOR(3);
VEK_BENCH_PREDICTOR(4);
VEK_BENCH_PREDICTOR(5);
VEK_BENCH_PREDICTOR(6);
VEK_BENCH_PREDICTOR(7);
#undef VEK_BENCH_PREDICTOR
BENCHMARK(BM_vekiReconstructPredRow_JPEG_16s_C1<6, 16>)->Apply(widths);
BENCHMARK(BM_vekiReconstructPredRow_JPEG_16s_C1<7, 16>)->Apply(widths);

template <VekStatus (*function)(const int16_t*, int16_t*, int, int, int)>
void firstRow(benchmark::State& state)
{
    PredictionRows rows(state);
    for (auto _ : state) {
        function(rows.src.data(), rows.dst.data(), rows.width, 16, 0);
        benchmark::ClobberMemory();
    }
    countSamples(state, 4);
}
BENCHMARK(firstRow<vekiDiffPredFirstRow_JPEG_16s_C1>)->Name("BM_vekiDiffPredFirstRow_JPEG_16s_C1")->Apply(widths);
BENCHMARK(firstRow<vekiReconstructPredFirstRow_JPEG_16s_C1>)
    ->Name("BM_vekiReconstructPredFirstRow_JPEG_16s_C1")
    ->Apply(widths);

// Of each sample two bytes are read and two written, or of every two samples six and six: as many bytes as prediction
// from the left, and from the row above, move.
template <int bytesOfSample>
void copyOfBytesMoved(benchmark::State& state)
{
    const size_t bytes = static_cast<size_t>(state.range(0)) * bytesOfSample / 2;
    AlignedArray<uint8_t> src(bytes);
    AlignedArray<uint8_t> dst(bytes);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), bytes);
        benchmark::ClobberMemory();
    }
    countSamples(state, bytesOfSample);
}
BENCHMARK(copyOfBytesMoved<4>)->Name("BM_peer_memcpy_of_rows_from_left")->Apply(widths);
BENCHMARK(copyOfBytesMoved<6>)->Name("BM_peer_memcpy_of_rows_from_above")->Apply(widths);

void BM_peer_one_cycle_each_sample(benchmark::State& state)
{
    for (auto _ : state) {
        int64_t sum = 0;
        for (int64_t i = 0; i < state.range(0); ++i) {
            sum += i;
            asm volatile("" : "+r"(sum));
        }
    }
    countSamples(state, 0);
}
BENCHMARK(BM_peer_one_cycle_each_sample)->Apply(widths);

// Normally distributed differences, their optimal table, and the stream that they make.
class CodedRows {
public:
    CodedRows(int numRows, double deviation) : numRows_(numRows)
    {
        std::mt19937 engine(1);
        std::normal_distribution<double> noise(0, deviation);
        std::array<int, 256> counts{};
        for (int c = 0; c < numRows; ++c) {
            rows_.emplace_back(width);
            for (int16_t& v : rows_.back()) {
                v = static_cast<int16_t>(noise(engine));
                vekiGetHuffmanStatisticsOne_JPEG_16s_C1(&v, counts.data());
            }
        }
        for (size_t category = 0; category <= 16; ++category) counts[category] += 1;
        std::array<uint8_t, 16> bits{};
        std::array<uint8_t, 256> values{};
        vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits.data(), values.data());
        vekiEncodeHuffmanSpecInit_JPEG_8u(bits.data(), values.data(), codes());
        vekiDecodeHuffmanSpecInit_JPEG_8u(bits.data(), values.data(), table());
        for (int c = 0; c < numRows; ++c) {
            pointers_.push_back(rows_[static_cast<size_t>(c)].data());
            sources_.push_back(pointers_.back());
            codesOfRows_.push_back(codes());
            tablesOfRows_.push_back(table());
        }
        out_.resize(static_cast<size_t>(width * numRows) * 8);
        stream_.assign(out_.begin(), out_.begin() + encode());
        stream_.insert(stream_.end(), {0xFF, 0xD9});
    }

    static constexpr int width = 8192;

    int encode()
    {
        auto* const state = reinterpret_cast<VekEncodeHuffmanState*>(encoderState_.data());
        vekiEncodeHuffmanStateInit_JPEG_8u(state);
        int position = 0;
        const auto room = static_cast<int>(out_.size());
        vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(sources_.data(), width, numRows_, out_.data(), room, &position,
                                             codesOfRows_.data(), state, 0);
        vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(nullptr, 0, 0, out_.data(), room, &position, nullptr, state, 1);
        return position;
    }
    VekStatus decode()
    {
        auto* const state = reinterpret_cast<VekDecodeHuffmanState*>(decoderState_.data());
        vekiDecodeHuffmanStateInit_JPEG_8u(state);
        int position = 0;
        int marker = 0;
        return vekiDecodeHuffmanRow_JPEG_1u16s_C1P4(stream_.data(), static_cast<int>(stream_.size()), &position,
                                                    pointers_.data(), width, numRows_, &marker, tablesOfRows_.data(),
                                                    state);
    }

private:
    VekEncodeHuffmanSpec* codes() { return reinterpret_cast<VekEncodeHuffmanSpec*>(encodeSpec_.data()); }
    VekDecodeHuffmanSpec* table() { return reinterpret_cast<VekDecodeHuffmanSpec*>(decodeSpec_.data()); }

    int numRows_;
    std::vector<std::vector<int16_t>> rows_;
    std::vector<int16_t*> pointers_;
    std::vector<const int16_t*> sources_;
    std::vector<const VekEncodeHuffmanSpec*> codesOfRows_;
    std::vector<const VekDecodeHuffmanSpec*> tablesOfRows_;
    AlignedArray<uint64_t> encodeSpec_{128}, decodeSpec_{206}, encoderState_{131}, decoderState_{3};
    std::vector<uint8_t> stream_, out_;
};

void coders(benchmark::internal::Benchmark* b)
{
    b->ArgNames({"rows", "deviation"})->Args({1, 4})->Args({3, 4})->Args({4, 4})->Args({1, 100})->Args({3, 100});
}

void BM_vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(benchmark::State& state)
{
    CodedRows coded(static_cast<int>(state.range(0)), static_cast<double>(state.range(1)));
    for (auto _ : state) benchmark::DoNotOptimize(coded.encode());
    state.SetItemsProcessed(state.iterations() * CodedRows::width * state.range(0));
}
BENCHMARK(BM_vekiEncodeHuffmanRow_JPEG_16s1u_P4C1)->Apply(coders);

void BM_vekiDecodeHuffmanRow_JPEG_1u16s_C1P4(benchmark::State& state)
{
    CodedRows coded(static_cast<int>(state.range(0)), static_cast<double>(state.range(1)));
    for (auto _ : state) {
        if (coded.decode() != vekStsOk)
            state.SkipWithError("the stream does not decode");
    }
    state.SetItemsProcessed(state.iterations() * CodedRows::width * state.range(0));
}
BENCHMARK(BM_vekiDecodeHuffmanRow_JPEG_1u16s_C1P4)->Apply(coders);

}  // namespace
