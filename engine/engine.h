// The engine: Vantrel's numerics and training algorithms on plain arrays and counts. It includes no Qt and
// nothing of the window (platform/, workspace/, shell/); the window, the session runner, the benchmarks, the
// tests and the Python module link it.
//
// Modules, each with its contract in its own header:
//   network.h   the algorithms by name, the packed parameter layout, views of a network and its patterns,
//               packing, output, error measure, worst pattern, a new unit
//   kernels.h   the fast kernels: blocked accumulation of gradient and quasi-Hessian, the forward pass, the
//               damped solve (Cholesky from the kept triangle, the blocked LU where that fails), the cores
//               and BLAS threads they use
//   matrix.h    the decomposition's rules: the TINY pivot and the singular-matrix exception
//   draw.h      the draw of a new network from a random source passed in
//   trainee.h   the network under training as the runs drive it (an interface)
//   policy.h    the one network policy over a store of arrays and a pattern source: packing, the damped
//               solve, reset, a unit at the worst pattern, the draw
//   patternsource.h  what the policy needs of the patterns (sums, the worst pattern, a few rows), and the
//               patterns of this process
//   buffers.h   the engine's own store and patterns in vectors, and its trainee over them
//   settings.h  what a run reads (settings) and what it reports (progress sink)
//   cancel.h    the cancel token: a stop at the next iteration, or an abandon of the work under way
//   runs.h      the runs of the five algorithms and their steps
//   memory.h    how much memory the process may still take
//
// Ownership: arrays in views belong to the caller; a trainee owns its blocks; a run owns only its own series.
#pragma once

#include "engine/buffers.h"
#include "engine/cancel.h"
#include "engine/runs.h"
