#include <VelaStacks/VStack.h>

#include <VelaStacks/SharedMemory.h>

#include "sources/stacks/SampleBlock.h"

#include <boost/make_shared.hpp>
#include <cstring>
#include <stdexcept>

VStackData::VStackData() : local(boost::make_shared<Vela::SampleBlock>()) {}

VStackData::VStackData(const std::string& id) : shared(boost::make_shared<Vela::SharedMemory>(id)) {}

VStackData::VStackData(const VStackData& other) = default;

VStackData::~VStackData() = default;

std::uint64_t VStackData::size() const
{
    return local ? local->size() : shared->size();
}

const unsigned char* VStackData::data() const
{
    return local ? local->data() : static_cast<const unsigned char*>(shared->data());
}

unsigned char* VStackData::data()
{
    return local ? local->data() : static_cast<unsigned char*>(shared->data());
}

void VStackData::clear()
{
    if (local)
    {
        local->clear();
        return;
    }
    local = boost::make_shared<Vela::SampleBlock>();
    shared.reset();
}

void VStackData::resize(std::uint64_t size_bytes)
{
    if (shared)
        throw std::runtime_error("Cannot resize shared data");
    local->resize(size_bytes);
}

const char* VStackData::share()
{
    if (local)
    {
        shared = boost::make_shared<Vela::SharedMemory>(local->size());
        local->set_the_rest(); // a copy may be under way
        if (local->size() != 0)
            std::memcpy(shared->data(), local->data(), local->size());
        local.reset();
    }
    return shared->id();
}
