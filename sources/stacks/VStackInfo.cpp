#include <VelaStacks/VStackInfo.h>

#include <utility>

VStackInfoInterface::~VStackInfoInterface() = default;

VStackInfo::VStackInfo() : info(new VStackInfoImp) {}

VStackInfo::VStackInfo(boost::shared_ptr<VStackInfoInterface> shared_info) : info(std::move(shared_info)) {}

VStackInfo::VStackInfo(const VStackInfo& other) = default;

VStackInfo& VStackInfo::operator=(const VStackInfo& other) = default;

VStackInfo::~VStackInfo() = default;

VStackInfo::operator VStackInfoInterface*()
{
    return info.get();
}

VStackInfo::operator const VStackInfoInterface*() const
{
    return info.get();
}

VStackInfoInterface* VStackInfo::operator->()
{
    return info.get();
}

const VStackInfoInterface* VStackInfo::operator->() const
{
    return info.get();
}
