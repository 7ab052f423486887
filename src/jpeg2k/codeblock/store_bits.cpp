#include <algorithm>
#include <cstring>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "jpeg2k/codeblock/encoder_state.h"

namespace q3 {

void beginPass(VekEncodeState_JPEG2K* pState)
{
    pState->passBytes = 0;
    pState->symbolsLeft =
        pState->passCurrent < pState->passCount ? pState->passes[static_cast<size_t>(pState->passCurrent)].symbols : 0;
    if (pState->resetsContexts)
        pState->contexts = initialContexts;
}

namespace {

using State = VekEncodeState_JPEG2K;

// What is left of the caller's buffer.
struct Room {
    uint8_t* p;
    int left;

    void take(State* pState, int bytes)
    {
        p += bytes;
        left -= bytes;
        pState->passBytes += bytes;
    }
};

// Bytes of the queue go out as far as there is room.
void deliver(State* pState, Room& room)
{
    ByteQueue& queue = pState->queue;
    if (queue.skipsFirst && queue.read < queue.write) {
        ++queue.read;
        queue.skipsFirst = false;
    }
    const int n = std::min(room.left, queue.write - queue.read);
    std::memcpy(room.p, queue.bytes.data() + queue.read, static_cast<size_t>(n));
    queue.read += n;
    room.take(pState, n);
}

// Lets the coder write into the empty queue.
template <class Write>
void refillQueue(State* pState, const Write& write)
{
    uint8_t* out = pState->queue.bytes.data();
    write(out);
    pState->queue.read = 0;
    pState->queue.write = static_cast<int32_t>(out - pState->queue.bytes.data());
}

// Symbols whose bytes surely fit, three for each, past the queue.
void encodeIntoRoom(State* pState, Room& room)
{
    constexpr int mostBytes = 3;
    MqEncoder mq = pState->mq;  // a copy, which lies in registers
    const uint8_t* symbol = pState->pNextSymbol;
    const uint8_t* const last = symbol + pState->symbolsLeft;
    uint8_t* out = room.p;
    const uint8_t* const end = out + room.left - mostBytes;
    while (symbol < last && out < end) mq.encode(*symbol++, pState->contexts, out);
    pState->mq = mq;
    pState->symbolsLeft = static_cast<int32_t>(last - symbol);
    pState->pNextSymbol = symbol;
    room.take(pState, static_cast<int>(out - room.p));
}

// Returns whether all symbols of the pass are coded; bytes may be left in the queue.
bool encodeMq(State* pState, Room& room)
{
    constexpr int fastRoom = 4;
    deliver(pState, room);
    while (room.left > 0 && pState->symbolsLeft > 0) {
        pState->mqCoded = true;
        if (room.left >= fastRoom && !pState->queue.skipsFirst) {
            encodeIntoRoom(pState, room);
            continue;
        }
        refillQueue(pState, [&](uint8_t*& out) { pState->mq.encode(*pState->pNextSymbol, pState->contexts, out); });
        ++pState->pNextSymbol;
        --pState->symbolsLeft;
        deliver(pState, room);
    }
    return pState->symbolsLeft == 0;
}

// Returns whether the segment has gone out. What the coder brings forth in the end waits in the queue for the next
// call.
bool terminateMq(State* pState, Room& room)
{
    if (room.left == 0)
        return false;
    if (pState->mqCoded) {
        refillQueue(pState, [&](uint8_t*& out) { pState->mq.flush(pState->termMode, out); });
        pState->mqCoded = false;
        Room none = {room.p, 0};
        deliver(pState, none);
    }
    if (pState->queue.read < pState->queue.write)
        return false;
    pState->mq = {};
    pState->queue = {};
    return true;
}

// Returns whether all symbols of the pass are written; bits may be pending.
bool encodeRaw(State* pState, Room& room)
{
    uint8_t* out = room.p;
    const uint8_t* const end = out + room.left;
    while (out < end && pState->symbolsLeft > 0) {
        pState->raw.put(*pState->pNextSymbol++, out);
        --pState->symbolsLeft;
    }
    room.take(pState, static_cast<int>(out - room.p));
    return pState->symbolsLeft == 0;
}

bool terminateRaw(State* pState, Room& room)
{
    if (room.left == 0)
        return false;
    room.take(pState, pState->raw.flush(room.p));
    return true;
}

// Bytes that a decoder wants for the passes so far beyond those that have gone out; none behind a segment's end.
int bytesToCome(const State* pState, bool isRaw)
{
    if (isRaw)
        return pState->raw.isPending() ? 1 : 0;
    return pState->mqCoded ? pState->mq.paddingBytes() : 0;
}

void endPass(State* pState)
{
    const auto i = static_cast<size_t>(pState->passCurrent);
    auto& passes = pState->passes;
    pState->bytesTotal += pState->passBytes;
    const int padding = bytesToCome(pState, passes[i].isRaw);
    passes[i].rate = pState->bytesTotal + padding;
    passes[i].length = pState->passBytes;
    if (padding == 0) {  // an exact rate bounds the estimates before it
        for (size_t k = i; k > 0 && passes[k].rate < passes[k - 1].rate; --k) passes[k - 1].rate = passes[k].rate;
    }
    ++pState->passCurrent;
    beginPass(pState);
}

// Codes what there is room for. A pass ends when its symbols are coded, or if a segment ends with it, when that has
// gone out.
void encodePasses(State* pState, Room& room)
{
    while (pState->passCurrent < pState->passCount && room.left > 0) {
        const bool isRaw = pState->passes[static_cast<size_t>(pState->passCurrent)].isRaw;
        if (!(isRaw ? encodeRaw(pState, room) : encodeMq(pState, room)))
            continue;
        if (!isLastOfSegment(pState, pState->passCurrent) ||
            (isRaw ? terminateRaw(pState, room) : terminateMq(pState, room)))
            endPass(pState);
    }
}

// No data end on 0xFF. Looks at the bytes of this call only.
void correctRates(State* pState, const uint8_t* pDst, int written)
{
    const int total = pState->bytesTotal + pState->passBytes;
    const int before = total - written;
    for (int i = 0; i < pState->passCurrent; ++i) {
        int32_t& rate = pState->passes[static_cast<size_t>(i)].rate;
        if (rate > before && rate <= total && pDst[rate - before - 1] == 0xFF)
            --rate;
    }
}

}  // namespace

VekStatus vekiEncodeStoreBits_JPEG2K_1u(uint8_t* pDst, int* pLen, VekEncodeState_JPEG2K* pState, int* pIsNotFinish)
{
    VEK_CHECK_POINTER(pState);
    VEK_CHECK(pState->idCtx == encoderMagic, vekStsContextMismatch);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pLen);
    VEK_CHECK_POINTER(pIsNotFinish);
    VEK_CHECK_LENGTH(*pLen);
    Room room = {pDst, *pLen};
    encodePasses(pState, room);
    *pLen = static_cast<int>(room.p - pDst);
    correctRates(pState, pDst, *pLen);
    *pIsNotFinish = pState->passCurrent != pState->passCount ? 1 : 0;
    return vekStsOk;
}

}  // namespace q3
