#pragma once

#include <marlet/foundation/Export.h>

#include <mutex>

namespace kytl::thread
{

class MARLET_EXPORT KyLockTypeBase
{
public:
    virtual ~KyLockTypeBase();
    virtual void Lock() = 0;
    virtual void Unlock() = 0;
};

/// The library's only lock. The thread that holds it can enter it again.
class MARLET_EXPORT KyCriticalSection : public KyLockTypeBase
{
public:
    KyCriticalSection() = default;
    KyCriticalSection(const KyCriticalSection &) = delete;
    KyCriticalSection &operator=(const KyCriticalSection &) = delete;
    ~KyCriticalSection() override;

    void Lock() override { mutex_.lock(); }
    void Unlock() override { mutex_.unlock(); }

private:
    std::recursive_mutex mutex_;
};

/// Holds a lock from its construction to the end of its scope.
class KyScopedLock
{
public:
    explicit KyScopedLock(KyLockTypeBase &lock) : lock_(lock) { lock_.Lock(); }
    KyScopedLock(const KyScopedLock &) = delete;
    KyScopedLock &operator=(const KyScopedLock &) = delete;
    ~KyScopedLock() { lock_.Unlock(); }

private:
    KyLockTypeBase &lock_;
};

} // namespace kytl::thread
