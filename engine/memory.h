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
// now: its resident memory within the machine's or its control group's, and under an address-space limit its
// whole address space within that. Blocks that replace others count whole: the new ones are taken before the
// old ones go.
bool MemoryFits(double bytes);

// The same for a number of doubles.
inline bool DoublesFit(double count) { return MemoryFits(count * sizeof(double)); }

// The process's address-space limit in bytes; 0 when it has none.
unsigned long long AddressSpaceLimit();

// Address space that one buffer of the BLAS takes: each of its own threads holds one, and so does each thread
// of ours while it runs a BLAS product. Once mapped, a buffer stays with the process for the next product.
constexpr double kBlasBufferBytes = 128.0 * 1024 * 1024 + 64 * 1024;

// True when the BLAS can have a buffer for each of `callers` threads that run its products at once, counting
// those it has had room for before. Under an address-space limit a buffer the BLAS can't get is not a failure
// it reports: it retries for ever, and the run could never be stopped. So the products are refused first.
bool BlasBuffersFit(int callers);

}  // namespace engine
