#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/vec.h"
#include "jpeg/entropy/bit_writer.h"
#include "jpeg/entropy/fast_block_writer.h"

namespace q3 {
namespace {

constexpr int fastPathRoom = 24;  // bytes that must be left for the fast path

struct Destination {
    uint8_t* p;
    int length;
    int* position;
};

class CarefulWriter {
public:
    CarefulWriter(const Destination& dst, VekEncodeHuffmanState* pState) : dst_(dst), state_(pState) {}

    VekStatus code(uint32_t entry) { return ownjc_write_code_jpeg(entry, dst_.p, dst_.length, dst_.position, state_); }
    VekStatus value(uint32_t entry, int v, int category)
    {
        const VekStatus status = code(entry);
        if (status != vekStsOk || category == 0)
            return status;
        return ownjc_write_bits_jpeg(magnitudeBits(v), category, dst_.p, dst_.length, dst_.position, state_);
    }

private:
    const Destination& dst_;
    VekEncodeHuffmanState* state_;
};

// Apart, so that it costs the fast path no registers.
[[gnu::noinline]] VekStatus encodeCarefully(const int16_t* pSrc, const Destination& dst, int diff,
                                            const VekEncodeHuffmanSpec& dcTable, const VekEncodeHuffmanSpec& acTable,
                                            VekEncodeHuffmanState* pState)
{
    CarefulWriter writer(dst, pState);
    VekStatus status = writer.value(dcTable.codes[categoryOf(diff)], diff, categoryOf(diff));
    int run = 0;
    for (size_t k = 1; k < 64 && status == vekStsOk; ++k) {
        const int v = loadScalar<int16_t>(pSrc + own_jc_izigzag_index[k]);
        if (v == 0) {
            ++run;
            continue;
        }
        for (; run > 15 && status == vekStsOk; run -= 16) status = writer.code(acTable.codes[zeroRunLength]);
        if (status == vekStsOk)
            status = writer.value(acEntry(acTable, static_cast<size_t>((run << 4) + categoryOf(v))), v, categoryOf(v));
        run = 0;
    }
    if (status == vekStsOk && run > 0)
        status = writer.code(acTable.codes[endOfBlock]);
    return status;
}

bool encodeFast(const int16_t* pSrc, const Destination& dst, int diff, const VekEncodeHuffmanSpec& dcTable,
                const VekEncodeHuffmanSpec& acTable, VekEncodeHuffmanState* pState)
{
    FastBitWriter writer(dst.p + *dst.position, dst.p + dst.length, *pState);
    if (!putBlock<MissingCode::Stops>(writer, pSrc, diff, dcTable, acTable) || writer.full())
        return false;
    *dst.position = static_cast<int>(writer.position() - dst.p);
    writer.keep(pState);
    return true;
}

}  // namespace

VekStatus vekiEncodeHuffman8x8_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int dstLenBytes, int* pDstCurrPos,
                                             int16_t* pLastDC, const VekEncodeHuffmanSpec* pDcTable,
                                             const VekEncodeHuffmanSpec* pAcTable, VekEncodeHuffmanState* pEncHuffState,
                                             int bFlushState)
{
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_LENGTH(dstLenBytes);
    VEK_CHECK_POINTER(pDstCurrPos);
    VEK_CHECK_POINTER(pEncHuffState);
    if (bFlushState != 0)
        return ownjc_flush_jpeg(pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pLastDC);
    VEK_CHECK_POINTER(pDcTable);
    VEK_CHECK_POINTER(pAcTable);
    const Destination dst = {pDst, dstLenBytes, pDstCurrPos};
    const auto dc = loadScalar<int16_t>(pSrc);
    const int diff = dc - *pLastDC;
    *pLastDC = dc;
    if (int64_t{dstLenBytes} - *pDstCurrPos >= fastPathRoom && holdsNoWholeByte(*pEncHuffState) &&
        encodeFast(pSrc, dst, diff, *pDcTable, *pAcTable, pEncHuffState))
        return vekStsOk;
    return encodeCarefully(pSrc, dst, diff, *pDcTable, *pAcTable, pEncHuffState);
}

}  // namespace q3
