// The BLAS under an address-space limit.
#pragma once

namespace engine {

// Each thread of the BLAS takes a buffer of kBlasBufferBytes of address space when it starts, and under a limit
// that has no room for it retries for ever: the program would hang, at the latest in the BLAS's shutdown at
// exit. Where a buffer per core would take more than a quarter of the limit, this keeps the kernels to one
// thread and returns true when the BLAS must be told so too (OPENBLAS_NUM_THREADS is not yet 1; the BLAS reads
// it only when it is loaded). Called by StartWithBlasSettings (blas_setup.h).
bool FitBlasToAddressSpace();

}  // namespace engine
