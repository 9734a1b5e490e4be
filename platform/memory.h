// The memory check under the names the window's code calls it by; the engine owns the check itself.
#pragma once

#include "engine/memory.h"

inline unsigned long long AfxUsableMemory() { return engine::UsableMemory(); }
inline bool AfxMemoryFits(double bytes) { return engine::MemoryFits(bytes); }
inline bool AfxDoublesFit(double count) { return engine::DoublesFit(count); }
