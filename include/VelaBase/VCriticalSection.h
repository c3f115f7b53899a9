/// A lock for callers; no class of the library uses it.
#pragma once

#include <VelaBase/export.h>

/// A recursive mutex to derive from. The thread that holds it may lock it again and has to unlock
/// it as often. Neither copied nor moved.
class VELA_API VCriticalSection
{
public:
    /// @throws std::bad_alloc
    VCriticalSection();
    VCriticalSection(const VCriticalSection&) = delete;
    VCriticalSection& operator=(const VCriticalSection&) = delete;
    virtual ~VCriticalSection();

protected:
    void lock();
    void unlock();

private:
    void* section;
};
