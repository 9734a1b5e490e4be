#include "platform/clock.h"

#include <chrono>

DWORD GetTickCount() {
    using namespace std::chrono;
    const auto ms = duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    return static_cast<DWORD>(static_cast<unsigned long long>(ms));
}

CTime CTime::GetTickCount() { return CTime(std::time(nullptr)); }

struct tm* CTime::GetLocalTm(struct tm* ptm) const {
    struct tm* target = ptm != nullptr ? ptm : &m_tm;
    localtime_r(&m_time, target);
    return target;
}
