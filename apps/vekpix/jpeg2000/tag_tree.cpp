#include "jpeg2000/tag_tree.h"

#include <algorithm>
#include <array>

namespace vekpix::jpeg2000 {

TagTree::TagTree(int columns, int rows)
{
    for (int first = 0; columns * rows > 0;) {
        const int above = first + columns * rows;
        const bool isRoot = columns * rows == 1;
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < columns; ++x)
                nodes_.push_back({isRoot ? -1 : above + y / 2 * ((columns + 1) / 2) + x / 2, INT_MAX, 0, false});
        if (isRoot)
            break;
        first = above;
        columns = (columns + 1) / 2;
        rows = (rows + 1) / 2;
    }
}

template <class Step>
void TagTree::walkDown(int cell, const Step& step)
{
    std::array<int, 32> path;
    size_t depth = 0;
    for (int node = cell; node >= 0; node = nodes_[static_cast<size_t>(node)].parent) path[depth++] = node;
    int low = 0;
    while (depth > 0) {
        Node& node = nodes_[static_cast<size_t>(path[--depth])];
        node.low = std::max(node.low, low);
        step(node);
        low = node.low;
    }
}

bool TagTree::readBelow(HeaderBitReader& bits, int cell, int threshold)
{
    walkDown(cell, [&](Node& node) {
        while (node.low < threshold && node.value == INT_MAX) {
            if (bits.bit() != 0)
                node.value = node.low;
            else
                ++node.low;
        }
    });
    return value(cell) < threshold;
}

void TagTree::setValue(int cell, int value)
{
    for (int node = cell; node >= 0; node = nodes_[static_cast<size_t>(node)].parent)
        nodes_[static_cast<size_t>(node)].value = std::min(nodes_[static_cast<size_t>(node)].value, value);
}

void TagTree::writeBelow(HeaderBitWriter& bits, int cell, int threshold)
{
    walkDown(cell, [&](Node& node) {
        while (node.low < threshold && !node.told) {
            if (node.value > node.low) {
                bits.bit(0);
                ++node.low;
            } else {
                bits.bit(1);
                node.told = true;
            }
        }
    });
}

}  // namespace vekpix::jpeg2000
