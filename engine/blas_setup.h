// What the BLAS is told before it loads: the one place where its environment is settled.
#pragma once

namespace engine {

// Call first in main. The BLAS reads its settings from the environment once, when the program loads it, so
// where one of them is to change the program starts itself once more with the environment completed:
//   OPENBLAS_THREAD_TIMEOUT  the shortest spin of idle BLAS threads;
//   OPENBLAS_CORETYPE        the best kernel family the processor's features allow, only where the BLAS has
//                            fallen back to an older family than that by itself (a processor newer than the
//                            BLAS build);
//   OPENBLAS_NUM_THREADS     1, under an address-space limit that has no room for a buffer per core.
// A variable the user has set is left as it is. Returns (and the program runs as it is) when nothing is to
// change or the system refuses the restart.
void StartWithBlasSettings(char** argv);

// The kernel family the processor's features allow at best ("SkylakeX", "Haswell", "Sandybridge",
// "Nehalem"), or null when it has none of them.
const char* BestKernelFamily();

// The family to ask for in place of `current` (what the BLAS chose by itself), or null where the BLAS chose
// as well as the processor allows, or chose a family not known here.
const char* BetterKernelFamily(const char* current, const char* best);

}  // namespace engine
