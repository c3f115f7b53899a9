#include <VelaBase/VCriticalSection.h>

#include "sources/platform/platform.h"

VCriticalSection::VCriticalSection() : section(Vela::platform::make_mutex()) {}

VCriticalSection::~VCriticalSection()
{
    Vela::platform::free_mutex(section);
}

void VCriticalSection::lock()
{
    Vela::platform::lock_mutex(section);
}

void VCriticalSection::unlock()
{
    Vela::platform::unlock_mutex(section);
}
