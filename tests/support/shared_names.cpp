#include "support/shared_names.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>

namespace {

std::set<std::string>& names()
{
    static std::set<std::string> list;
    return list;
}

class NoNamesLeft : public testing::Environment
{
public:
    void TearDown() override { EXPECT_EQ(names(), std::set<std::string>()); }
};

const testing::Environment* const no_names_left = testing::AddGlobalTestEnvironment(new NoNamesLeft);

template <class Function>
Function* next_definition(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// Visible, so that the library finds these instead of those of the system.
extern "C" __attribute__((visibility("default"))) int shm_open(const char* name, int flags, mode_t mode)
{
    static const auto next = next_definition<int(const char*, int, mode_t)>("shm_open");
    const int descriptor = next(name, flags, mode);
    if (descriptor >= 0 && (flags & O_CREAT) != 0)
        names().insert(name);
    return descriptor;
}

extern "C" __attribute__((visibility("default"))) int shm_unlink(const char* name)
{
    static const auto next = next_definition<int(const char*)>("shm_unlink");
    const int result = next(name);
    if (result == 0)
        names().erase(name);
    return result;
}

const std::set<std::string>& vela_test::shared_names_left()
{
    return names();
}
