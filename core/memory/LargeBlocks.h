#pragma once

#include <cstddef>
#include <cstdint>

// Memory for large images. Each block has pages of its own, so that it never leaves a gap in the heap.
//
// Fresh pages are expensive: the system clears each when it is first used. So blocks are kept for a short time after
// use, for the next image of about the same size. How much is kept is limited, and what nobody wants for two seconds
// goes back to the system. The functions may be called on any thread.

/// Whether a block of that size is large enough for pages of its own.
bool isLargeBlock(std::size_t bytes);

/// A block that starts at a page. Its content is undefined unless it is to be cleared. Null if there is no memory.
std::uint8_t* takeLargeBlock(std::size_t bytes, bool cleared);

/// Takes a block back. Returns false, and does nothing, if the memory is not such a block.
bool giveLargeBlockBack(std::uint8_t* block);

/// Gives all blocks that are kept back to the system, for when memory is short. False if there were none.
bool releaseKeptBlocks();
