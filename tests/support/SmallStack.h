#pragma once

#include <cstddef>
#include <functional>

namespace quillery::testing_support {

// Sanitized frames are several times larger and every step several times slower, so under the
// sanitizers deep-tree tests use a larger stack and a shallower tree; a recursion over the tree
// still overflows it.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr std::size_t kSmallStack = 1 << 20;
inline constexpr std::size_t kDeepChain = 200'000;
#else
inline constexpr std::size_t kSmallStack = 256 << 10;
inline constexpr std::size_t kDeepChain = 1'000'000;
#endif

// Runs the task to its end on a thread with a stack of kSmallStack bytes, which a recursion as
// deep as kDeepChain overflows.
void runOnSmallStack(const std::function<void()>& task);

} // namespace quillery::testing_support
