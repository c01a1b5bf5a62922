#include "dialog/RowOrder.h"

#include <algorithm>

namespace {
constexpr std::size_t largestBlock = 256;
}

RowOrder::RowOrder(std::size_t elementCount) : m_blockOf(elementCount) {
    m_blocks.push_back(std::make_unique<Block>());
}

void RowOrder::Insert(std::size_t index, std::size_t element) {
    // Appending is the common case; it starts from the last block.
    std::size_t at = m_blocks.size() - 1;
    std::size_t offset = m_blocks[at]->size();
    if (index < m_count) {
        at = 0;
        offset = index;
        while (offset > m_blocks[at]->size()) offset -= m_blocks[at++]->size();
    }
    Block& block = *m_blocks[at];
    block.insert(block.begin() + static_cast<std::ptrdiff_t>(offset), element);
    m_blockOf[element] = &block;
    ++m_count;
    SplitIfFull(at);
}

std::size_t RowOrder::Remove(std::size_t element) {
    std::size_t index = 0;
    auto block = m_blocks.begin();
    while (block->get() != m_blockOf[element]) index += (*block++)->size();
    const auto place = std::find((*block)->begin(), (*block)->end(), element);
    index += static_cast<std::size_t>(place - (*block)->begin());
    (*block)->erase(place);
    if ((*block)->empty() && m_blocks.size() > 1) m_blocks.erase(block);
    m_blockOf[element] = nullptr;
    --m_count;
    return index;
}

std::vector<std::size_t> RowOrder::Elements() const {
    std::vector<std::size_t> elements;
    elements.reserve(m_count);
    for (const auto& block : m_blocks) elements.insert(elements.end(), block->begin(), block->end());
    return elements;
}

void RowOrder::SplitIfFull(std::size_t blockIndex) {
    Block& full = *m_blocks[blockIndex];
    if (full.size() < largestBlock) return;
    // A full last block is most likely being appended to; it stays nearly whole, so that appending fills blocks.
    const bool last = blockIndex + 1 == m_blocks.size();
    const auto middle = full.begin() + static_cast<std::ptrdiff_t>(last ? largestBlock - 1 : largestBlock / 2);
    auto tail = std::make_unique<Block>(middle, full.end());
    full.erase(middle, full.end());
    for (const std::size_t element : *tail) m_blockOf[element] = tail.get();
    m_blocks.insert(m_blocks.begin() + static_cast<std::ptrdiff_t>(blockIndex) + 1, std::move(tail));
}
