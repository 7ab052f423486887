// The four decoders of progressive scans over any table, stream, state and blocks. Each equals its model, block by
// block; none leaves its memory or its block, whatever its state holds.
#include <array>
#include <cstring>
#include <vector>

#include "huffman_input.h"
#include "jpeg/entropy/decoder_state.h"
#include "reference/jpeg/progressive.h"

namespace {

using fuzz::Bytes;
using fuzz::require;
using fuzz::Table;
using Block = std::array<int16_t, 64>;

constexpr int mostBlocks = 64;

enum class Kind { DcFirst, DcRefine, AcFirst, AcRefine };

struct Scan {
    Kind kind;
    model::Band band;
    Table table;
};

struct Reader {
    int position = 0;
    int marker = 0;
    int16_t dc = 0;
    VekDecodeHuffmanState state{};

    VekStatus decode(const Scan& scan, const std::vector<uint8_t>& stream, Block& block)
    {
        const int length = static_cast<int>(stream.size());
        const auto [ss, se, al] = scan.band;
        const VekDecodeHuffmanSpec* const table = &scan.table.object;
        switch (scan.kind) {
            case Kind::DcFirst:
                return vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(stream.data(), length, &position, block.data(), &dc,
                                                                  &marker, al, table, &state);
            case Kind::DcRefine:
                return vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(stream.data(), length, &position, block.data(),
                                                                   &marker, al, &state);
            case Kind::AcFirst:
                return vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(stream.data(), length, &position, block.data(),
                                                                  &marker, ss, se, al, table, &state);
            default:
                return vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(stream.data(), length, &position, block.data(),
                                                                   &marker, ss, se, al, table, &state);
        }
    }
};

// The bits in hand are kept in one way by the DC scans and in another by the AC scans.
struct Expected {
    model::Input in;
    int16_t dc = 0;
    model::DecoderState ofDc;
    model::BandDecoderState ofAc;

    VekStatus decode(const Scan& scan, Block& block)
    {
        switch (scan.kind) {
            case Kind::DcFirst:
                return model::decodeDcFirst(in, block, dc, scan.band.al, scan.table.expected, ofDc);
            case Kind::DcRefine:
                return model::decodeDcRefine(in, block, scan.band.al, ofDc);
            case Kind::AcFirst:
                return model::decodeAcFirst(in, block, scan.band, scan.table.expected, ofAc);
            default:
                return model::decodeAcRefine(in, block, scan.band, scan.table.expected, ofAc);
        }
    }
};

// Blocks that a few bytes tell: what is known of a picture before the scan.
Block nextBlock(Bytes& bytes)
{
    Block block{};
    uint64_t places = bytes.next64();
    for (size_t i = 0; places != 0; ++i, places >>= 1)
        if ((places & 1) != 0)
            block[i] = static_cast<int16_t>(bytes.next() << 8 | bytes.next());
    return block;
}

void compareWithModel(const Scan& scan, const std::vector<uint8_t>& stream, uint64_t bits, int numBits, int eobRun,
                      const std::array<Block, 4>& blocks)
{
    const bool isDc = scan.kind == Kind::DcFirst || scan.kind == Kind::DcRefine;
    Reader reader;
    reader.state.numBits = isDc ? numBits % 33 : numBits;
    reader.state.bitBuffer = bits & ((uint64_t{1} << reader.state.numBits) - 1);
    reader.state.eobRun = isDc ? 0 : eobRun;
    Expected expected;
    expected.in = {stream.data(), static_cast<int>(stream.size())};
    expected.ofDc = {reader.state.bitBuffer, reader.state.numBits, 0};
    expected.ofAc = {reader.state.bitBuffer, reader.state.numBits, eobRun};
    for (int i = 0; i < mostBlocks; ++i) {
        Block want = blocks[static_cast<size_t>(i) % blocks.size()];
        Block got = want;
        const VekStatus status = expected.decode(scan, want);
        require(status == reader.decode(scan, stream, got));
        require(want == got && expected.dc == reader.dc);
        require(expected.in.position == reader.position && expected.in.marker == reader.marker);
        const int count = isDc ? expected.ofDc.numBits : expected.ofAc.numBits;
        require(count == reader.state.numBits);
        if (count > 0) {
            const uint64_t buffer = isDc ? expected.ofDc.buffer : expected.ofAc.buffer;
            require((buffer ^ reader.state.bitBuffer) << (64 - count) == 0);
        }
        require(isDc || expected.ofAc.eobRun == reader.state.eobRun);
        if (status != vekStsOk)
            return;
    }
}

void survive(const Scan& scan, const std::vector<uint8_t>& stream, Bytes& bytes, const std::array<Block, 4>& blocks)
{
    const int size = static_cast<int>(stream.size());
    Reader reader;
    reader.state.bitBuffer = bytes.next64();
    reader.state.numBits = static_cast<int32_t>(bytes.next64());
    reader.state.eobRun = static_cast<int32_t>(bytes.next64());
    reader.position = bytes.next() % (size + 1);
    reader.marker = bytes.next() & bytes.next();
    for (int i = 0; i < mostBlocks; ++i) {
        Block block = blocks[static_cast<size_t>(i) % blocks.size()];
        reader.decode(scan, stream, block);
        require(reader.position >= 0 && reader.position <= size);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Bytes bytes(data, size);
    Scan scan{};
    scan.kind = static_cast<Kind>(bytes.next() % 4);
    scan.band.ss = 1 + bytes.next() % 63;
    scan.band.se = scan.band.ss + bytes.next() % (64 - scan.band.ss);
    scan.band.al = bytes.next() % 14;
    scan.table = fuzz::readTable(bytes);
    if (!scan.table.valid)
        return 0;
    const int numBits = bytes.next() % 64;
    const uint64_t bits = bytes.next64();
    const int eobRun = bytes.next() % 4 == 0 ? bytes.next() : 0;
    std::array<Block, 4> blocks;
    for (Block& block : blocks) block = nextBlock(bytes);
    Bytes states = bytes;
    std::vector<uint8_t> stream = bytes.rest();
    if (stream.empty())
        return 0;
    stream.shrink_to_fit();  // its end is the end of its memory
    compareWithModel(scan, stream, bits, numBits, eobRun, blocks);
    survive(scan, stream, states, blocks);
    return 0;
}
