// DBL files where there is no memory: 16 GiB are asked for in a process that may not have them.
#include "binary_io/dbl_file_test.h"
#include "support/address_sanitizer.h"

#include <VelaBase/VelaError.h>
#include <VelaFile/VFile.h>

#include <sys/resource.h>

// AddressSanitizer takes more address space than any limit leaves it, and has one of its own.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();

const char* __asan_default_options()
{
    return "allocator_may_return_null=1:max_allocation_size_mb=1024";
}

using namespace vela_test;

namespace {

class DblMemory : public DblTest
{
};

void limit_memory()
{
    const rlimit limit = {rlim_t{2} << 30, rlim_t{2} << 30};
    if (!has_address_sanitizer)
        setrlimit(RLIMIT_AS, &limit);
}

/// Runs `work` in a process with little memory: `EXPECT_EQ(..., 0)` of the number of the first check that fails.
int with_little_memory(const std::function<int()>& work)
{
    return in_another_process(
        [&]
        {
            limit_memory();
            return work();
        });
}

TEST_F(DblMemory, SinglesThatFindNoMemoryLeaveTheFileOpenAndLocked)
{
    const std::string file = path("a.dbl");
    const Lengths lengths = {1, 1, 1, 1};
    const double one = 1;
    const auto work = [&]
    {
        const int descriptor = next_descriptor();
        if (vela_dbl_write(file.c_str(), too_many.data(), lengths.data(), &one, 1) != 0)
            return 1;
        if (!is_open_descriptor(descriptor))
            return 2;
        try
        {
            VFile other(file_name(file), VFile::read_mode);
            return 3;
        }
        catch (const VelaError&)
        {
            return 0;
        }
    };
    EXPECT_EQ(with_little_memory(work), 0);
    EXPECT_EQ(get_bytes(file).size(), 0U);
}

TEST_F(DblMemory, SamplesThatFindNoMemoryAreARefusal)
{
    for (const unsigned char flag : Bytes{0, 1})
    {
        SCOPED_TRACE(int{flag});
        const std::string file = make(too_many, Doubles{1, 2, 3}, flag);
        for (const std::uintptr_t mode : {0U, 0xAEU, 0xAFU})
        {
            SCOPED_TRACE(mode);
            const auto work = [&]
            {
                const int descriptor = next_descriptor();
                const DblContent content(file, mode);
                if (content.result != 0)
                    return 1;
                if (content.is_allocated)
                    return 2;
                if (content.dims != too_many || content.lengths != Lengths{1, 2, 3, 4})
                    return 3;
                return is_open_descriptor(descriptor) ? 4 : 0;
            };
            EXPECT_EQ(with_little_memory(work), 0);
        }
    }
}

TEST_F(DblMemory, HeaderOfAnImpossibleFileCanBeRead)
{
    const std::string file = make(too_many, Doubles(), 0);
    EXPECT_EQ(with_little_memory([&] { return DblContent(file, 0xA0).result; }), 1);
}

}
