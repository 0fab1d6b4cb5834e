#include "outline/Outline.h"

#include <algorithm>

namespace quillery {

std::size_t Outline::add(std::size_t depth, std::string text, std::optional<std::string> url,
                         std::optional<OutlinePicture> picture) {
    const std::size_t deepest = m_notes.empty() ? 0 : m_notes.back().depth + 1;
    depth = std::min(depth, deepest);
    m_notes.push_back({depth, std::move(text), std::move(url), std::move(picture)});
    return depth;
}

} // namespace quillery
