/// Handles of `VFile::attach` and `VFile::detach` from and to POSIX file descriptors.
///
///     void* handle = vela_handle_from_descriptor(descriptor);
///     VFile file;
///     file.attach(handle, VFile::read_mode);
///     ...
///     close(vela_descriptor_from_handle(file.detach()));
#pragma once

#include <VelaBase/export.h>

extern "C" {

/// The handle of an open descriptor, which stays the caller's. Null for a negative number.
VELA_API void* vela_handle_from_descriptor(int descriptor);

/// The descriptor of a handle, -1 for null.
VELA_API int vela_descriptor_from_handle(void* handle);
}
