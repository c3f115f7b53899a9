#include <VelaFile/handle.h>

#include "sources/platform/platform.h"

void* vela_handle_from_descriptor(int descriptor)
{
    return Vela::platform::handle_of_descriptor(descriptor);
}

int vela_descriptor_from_handle(void* handle)
{
    return Vela::platform::descriptor_of_handle(handle);
}
