// Tag trees (ISO/IEC 15444-1, B.10.2): the values of a grid's cells, told threshold by threshold, with the minimum of
// each group of up to four before the group.
#ifndef VEKPIX_JPEG2000_TAG_TREE_H
#define VEKPIX_JPEG2000_TAG_TREE_H

#include <climits>
#include <cstdint>
#include <vector>

#include "jpeg2000/header_bits.h"

namespace vekpix::jpeg2000 {

class TagTree {
public:
    TagTree(int columns, int rows);

    // Reads until it is known whether the value of a cell is below `threshold`, and tells it.
    bool readBelow(HeaderBitReader& bits, int cell, int threshold);
    // The value of a cell that is known to be below a threshold.
    int value(int cell) const { return nodes_[static_cast<size_t>(cell)].value; }

    // To write: a cell that had none has a value now. It is no less than any threshold that has been written.
    void setValue(int cell, int value);
    // Writes what a reader needs to know whether the value of a cell is below `threshold`.
    void writeBelow(HeaderBitWriter& bits, int cell, int threshold);

private:
    struct Node {
        int parent = -1;
        int value = INT_MAX;  // unknown yet, to a reader
        int low = 0;          // told so far: the value is no less
        bool told = false;    // that low is the value
    };

    // From the root to the cell, calls step(node, low of the node above).
    template <class Step>
    void walkDown(int cell, const Step& step);

    std::vector<Node> nodes_;  // the cells first
};

}  // namespace vekpix::jpeg2000

#endif
