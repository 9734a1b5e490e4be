// Time: the 32-bit millisecond tick and local calendar time.
#pragma once

#include <ctime>

#include "platform/types.h"

// Milliseconds since an arbitrary start, wrapping at 2^32 like the tick it stands for.
DWORD GetTickCount();

class CTime {
public:
    explicit CTime(std::time_t t = 0) : m_time(t) {}
    static CTime GetTickCount();  // the current time, as the framework names it
    // Local time broken down. With no buffer the result lives in storage of this object.
    struct tm* GetLocalTm(struct tm* ptm = nullptr) const;

private:
    std::time_t m_time;
    mutable struct tm m_tm {};
};
