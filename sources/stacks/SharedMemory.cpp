#include <VelaStacks/SharedMemory.h>

#include "sources/platform/platform.h"

#include <boost/interprocess/exceptions.hpp>
#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/shared_memory_object.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace ipc = boost::interprocess;

/// What the system keeps of a segment.
class Vela::SharedSegment
{
public:
    void create(std::uint64_t size_bytes);
    void attach(const std::string& id);
    void map(std::uint64_t size_bytes);
    ~SharedSegment();

    ipc::shared_memory_object object;
    bool owner = false;
    std::uint32_t creator = 0; ///< the process that made the segment
    ipc::mapped_region region;
};

// The region goes first, then the name; the members' own destructors come last and close the object. A process that was
// forked off has a copy of the object, but the name is not its own.
Vela::SharedSegment::~SharedSegment()
{
    ipc::mapped_region().swap(region);
    if (owner && platform::process_id() == creator)
        ipc::shared_memory_object::remove(object.get_name());
}

void Vela::SharedSegment::create(std::uint64_t size_bytes)
{
    const std::string name = boost::uuids::to_string(boost::uuids::random_generator()());
    ipc::shared_memory_object(ipc::create_only, name.c_str(), ipc::read_write, ipc::permissions()).swap(object);
    owner = true;
    creator = platform::process_id();
    // A size above the signed range turns negative, which the system refuses.
    object.truncate(static_cast<ipc::offset_t>(size_bytes));
    if (const int error =
            platform::reserve(platform::handle_of_descriptor(object.get_mapping_handle().handle), size_bytes))
        throw ipc::interprocess_exception(ipc::error_info(error));
    map(size_bytes);
}

void Vela::SharedSegment::attach(const std::string& id)
{
    // The system would open what stands before a NUL.
    if (id.find('\0') != std::string::npos)
        throw ipc::interprocess_exception(ipc::error_info(ipc::not_found_error));
    ipc::shared_memory_object(ipc::open_only, id.c_str(), ipc::read_write).swap(object);
    ipc::offset_t size_bytes = 0;
    if (!object.get_size(size_bytes))
        throw ipc::interprocess_exception(ipc::error_info(ipc::system_error_code()));
    map(static_cast<std::uint64_t>(size_bytes));
}

void Vela::SharedSegment::map(std::uint64_t size_bytes)
{
    if (size_bytes != 0) // the system maps nothing of no size
        ipc::mapped_region(object, ipc::read_write).swap(region);
}

Vela::SharedMemory::SharedMemory(std::uint64_t size_bytes) : segment(std::make_unique<SharedSegment>())
{
    segment->create(size_bytes);
}

Vela::SharedMemory::SharedMemory(const std::string& id) : segment(std::make_unique<SharedSegment>())
{
    segment->attach(id);
}

Vela::SharedMemory::~SharedMemory() = default;

const char* Vela::SharedMemory::id() const
{
    return segment->object.get_name();
}

std::uint64_t Vela::SharedMemory::size() const
{
    return segment->region.get_size();
}

void* Vela::SharedMemory::data()
{
    return segment->region.get_address();
}
