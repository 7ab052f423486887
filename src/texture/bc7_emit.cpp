#include "texture/bc7_emit.h"

#include <utility>

namespace q3 {
namespace {

// Sixteen indices side by side.
template <int bits>
uint64_t packedIndices(const Bc7Indices& indices)
{
    constexpr uint64_t mask = 0x0101010101010101 * ((1 << bits) - 1);
    const uint64_t first = _pext_u64(loadScalar<uint64_t>(indices.data()), mask);
    const uint64_t second = _pext_u64(loadScalar<uint64_t>(indices.data() + 8), mask);
    return first | second << (8 * bits);
}

template <size_t mode, int channel>
void putChannel(const Bc7Endpoints& endpoints, BlockBits& block)
{
    constexpr Bc7Mode m = bc7Modes[mode];
    constexpr int bits = m.channelBits(channel);
    uint64_t values = 0;
    for (int p = m.subsets - 1; p >= 0; --p) {
        const Bc7EndpointPair& pair = endpoints[static_cast<size_t>(p)];
        values = (values << bits | pair.b[channel]) << bits | pair.a[channel];
    }
    block.put<bc7LayoutOf(mode).channels[channel], m.endpoints() * bits>(values);
}

template <size_t mode>
BlockBits emitMode(const Bc7Fields& fields)
{
    constexpr Bc7Mode m = bc7Modes[mode];
    constexpr Bc7Layout at = bc7LayoutOf(mode);
    BlockBits block = {0, 0};
    block.put<mode, 1>(1);
    block.put<at.partition, m.partitionBits>(fields.choice.partition);
    block.put<at.rotation, m.rotationBits>(fields.choice.rotation);
    block.put<at.selection, m.selectionBits>(fields.choice.selection);
    putChannel<mode, 0>(fields.endpoints, block);
    putChannel<mode, 1>(fields.endpoints, block);
    putChannel<mode, 2>(fields.endpoints, block);
    putChannel<mode, 3>(fields.endpoints, block);
    uint64_t pBits = 0;
    for (size_t i = 0; i < m.numPBits(); ++i) pBits |= uint64_t{fields.pBits[i]} << i;
    block.put<at.pBits, m.numPBits()>(pBits);
    block.put<at.index, 16 * m.indexBits - m.subsets>(_pext_u64(
        packedIndices<m.indexBits>(fields.indices), indexMasks<m.subsets, m.indexBits>[fields.choice.partition]));
    if constexpr (m.index2Bits != 0)
        block.put<at.index2, 16 * m.index2Bits - 1>(
            _pext_u64(packedIndices<m.index2Bits>(fields.indices2), indexMasks<1, m.index2Bits>[0]));
    return block;
}

}  // namespace

BlockBits emit_block_bc7(size_t mode, const Bc7Fields& fields)
{
    constexpr auto emitters = []<size_t... i>(std::index_sequence<i...>)
    {
        return std::array<BlockBits (*)(const Bc7Fields&), sizeof...(i)>{emitMode<i>...};
    }
    (std::make_index_sequence<bc7Modes.size()>());
    return emitters[mode](fields);
}

}  // namespace q3
