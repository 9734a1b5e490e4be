// How much memory the process may use, asked before a block sized by a user's count is taken.
//
// The system grants address space it may not have: a block far beyond the machine's memory is handed out,
// and the process is killed only when it fills it. So a count that can't fit has to be refused before its
// blocks are taken, never through an allocation that fails.
#pragma once

namespace engine {

// Bytes the process may use in all: the machine's memory, or less where its control group or its address
// space limit says so.
unsigned long long UsableMemory();

// True when bytes more (a double, so that products of counts never wrap) fit beside what the process holds
// now. Blocks that replace others count whole: the new ones are taken before the old ones go.
bool MemoryFits(double bytes);

// The same for a number of doubles.
inline bool DoublesFit(double count) { return MemoryFits(count * sizeof(double)); }

}  // namespace engine
