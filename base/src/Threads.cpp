#include "Threads.h"

namespace tkThreads {

ILockable::~ILockable() = default;

void CLockableBase::SetTimeOut(std::int32_t milliseconds) {
    timeOutMilliseconds_ = milliseconds < 1 ? NoTimeOut : milliseconds;
}

std::int32_t CLockableBase::GetTimeOut() const {
    return timeOutMilliseconds_;
}

std::int32_t CCriticalSection::Lock() {
    mutex_.lock();
    return 0;
}

void CCriticalSection::Unlock() {
    mutex_.unlock();
}

bool CCriticalSection::TryLock() {
    return mutex_.try_lock();
}

} // namespace tkThreads
