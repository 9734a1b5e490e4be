// The BLAS under an address-space limit.
#pragma once

namespace engine {

// Call in main right after kernels::StartWithQuietBlasThreads. Each thread of the BLAS takes a buffer of
// kBlasBufferBytes of address space when it starts, and under a limit that has no room for it retries for ever:
// the program would hang, at the latest in the BLAS's shutdown at exit. Where a buffer per core would take more
// than a quarter of the limit, the kernels keep to one thread, and unless the BLAS has one thread already the
// program starts itself once more with OPENBLAS_NUM_THREADS=1 (the BLAS reads it only when it is loaded). Returns
// (and the program runs as it is) when there is no such limit or the system refuses the restart.
void FitBlasToAddressSpace(char** argv);

}  // namespace engine
