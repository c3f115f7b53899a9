/// What the tests attach to values: the library only carries the pointer.
#pragma once

#include <VelaProps/VProp.h>

#include <boost/shared_ptr.hpp>

struct VPropInfo
{
    int number;
};

namespace prop_test {

inline boost::shared_ptr<VPropInfo> attachment(int number)
{
    return boost::shared_ptr<VPropInfo>(new VPropInfo{number});
}

/// The number of the attachment, 0 without one.
inline int number_of(const VProp& value)
{
    return value.get_info() ? value.get_info()->number : 0;
}

}
