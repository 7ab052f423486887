// Coding of code-blocks, symbol by symbol and byte by byte (ISO/IEC 15444-1, Annexes C and D).
#ifndef VEK_TESTS_REFERENCE_JPEG2K_CODE_BLOCK_ENCODER_H
#define VEK_TESTS_REFERENCE_JPEG2K_CODE_BLOCK_ENCODER_H

#include <cstdint>
#include <deque>
#include <vector>

#include "reference/jpeg2k/block_samples.h"
#include "reference/jpeg2k/mq_tables.h"

namespace model {

struct CodedSymbol {
    int decision, context;
};
struct CodedPass {
    bool isRaw;
    std::vector<CodedSymbol> symbols;
    int32_t distortion;
    int exponent;
    int length = 0, rate = 0;
};

class MqEncoder {
public:
    void reset();  // all but the contexts
    void code(const CodedSymbol& symbol);
    void flush(int termMode);
    int paddingBytes() const;

    MqContextStates contexts;
    std::deque<uint8_t> queue;
    bool skipFirst = true;

private:
    void queueByte();
    void byteOut();
    void shiftOut();
    void nearShortest();

    uint32_t a_ = 0x8000, c_ = 0, ct_ = 12, b_ = 0;
    int bytesOut_ = 0;
};

class CodeBlockEncoder {
public:
    CodeBlockEncoder(const std::vector<uint32_t>& samples, int width, int height, int subband, int magnBits,
                     int termMode, int style);

    int sfBits = 0;
    std::vector<CodedPass> passes;
    int segments() const;
    int segmentLength(int n) const;
    double distortion(int pass) const;

    // One call for `room` bytes.
    struct Stored {
        std::vector<uint8_t> bytes;
        int isNotFinished;
    };
    Stored store(int room);

private:
    bool endsSegment(size_t pass) const;
    bool encodeMq(std::vector<uint8_t>& out, int& left);
    bool terminateMq(std::vector<uint8_t>& out, int& left);
    bool encodeRaw(std::vector<uint8_t>& out, int& left);
    bool terminateRaw(std::vector<uint8_t>& out, int& left);
    void deliver(std::vector<uint8_t>& out, int& left);
    void endPass();

    int style_, termMode_;
    size_t current_ = 0, symbol_ = 0;
    int passBytes_ = 0, bytesTotal_ = 0;
    MqEncoder mq_;
    bool mqCoded_ = false;
    int rawByte_ = 0, rawBit_ = 7;
    bool rawPrevFF_ = false;
};

}  // namespace model

#endif
