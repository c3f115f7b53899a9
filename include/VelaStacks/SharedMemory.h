/// A named block of memory that several processes see.
#pragma once

#include <VelaBase/export.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Vela {
VELA_ABI_NAMESPACE_BEGIN

class SharedSegment;

/// A segment of shared memory: one object creates it and owns its name, any number of others, in this process or in
/// another one, attach to it by that name. The segment holds the caller's bytes and nothing else; how many they are
/// is known to the system. Nobody counts who is attached.
///
/// No lock and no order: what one side writes the other sees through its own mapping, and when is settled between the
/// callers.
///
/// What the system refuses is a `boost::interprocess::interprocess_exception`, with the cause in its `get_error_code()`.
/// Besides there are `std::bad_alloc` and, where the system has no random numbers for a name,
/// `boost::uuids::entropy_error`. No failure leaves anything behind, no name either.
class VELA_API SharedMemory
{
public:
    /// Makes a new segment of `size_bytes` bytes, all 0, under a name of its own. Its pages are reserved here, so that
    /// memory that is not there is a failure now and no signal at the first write.
    ///
    /// A segment of 0 bytes has a name that can be attached to, and no mapping.
    explicit SharedMemory(std::uint64_t size_bytes);

    /// Attaches to the segment that `id` names, to read and to write. Fails where there is none, or none any more.
    explicit SharedMemory(const std::string& id);

    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    /// Unmaps the segment. The creator also removes its name: nobody can attach any more, and those who have done so
    /// keep their bytes. A process that ends without this leaves the name and the memory behind. In a process that was
    /// forked off from that of the creator, the copy of this object unmaps the segment and leaves the name.
    ~SharedMemory();

    /// The name: the creator makes it a random UUID, 36 lower-case characters. The text belongs to this object.
    const char* id() const;

    /// The size of the whole segment, as its creator gave it.
    std::uint64_t size() const;

    /// The bytes, aligned to a page. Null exactly when there are none.
    void* data();

private:
    std::unique_ptr<SharedSegment> segment;
};

VELA_ABI_NAMESPACE_END
}
