// An order of numbered elements in which inserting at an index, and finding an element's index, both cost about the
// square root of the number of elements: the elements stand in blocks of bounded size.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

class RowOrder {
public:
    // Room for elements 0 to elementCount - 1, each at most once in the order.
    explicit RowOrder(std::size_t elementCount);

    std::size_t Count() const { return m_count; }
    // Inserts an element that is not in the order so that it stands at `index`, which is at most Count().
    void Insert(std::size_t index, std::size_t element);
    // Takes an element out that is in the order; returns the index at which it stood.
    std::size_t Remove(std::size_t element);
    // All elements, first to last.
    std::vector<std::size_t> Elements() const;

private:
    using Block = std::vector<std::size_t>;

    void SplitIfFull(std::size_t blockIndex);

    std::vector<std::unique_ptr<Block>> m_blocks;
    std::vector<const Block*> m_blockOf;
    std::size_t m_count = 0;
};
