// What errors do when memory runs out: this program lets any one request fail.

#include <VelaBase/VelaError.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace {

/// Counts down with each request while armed; the one that reaches 0 fails.
long requests_to_failure = -1;

void* allocate(std::size_t size)
{
    if (requests_to_failure > 0 && --requests_to_failure == 0)
    {
        requests_to_failure = -1;
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

} // namespace

__attribute__((visibility("default"))) void* operator new(std::size_t size)
{
    return allocate(size);
}

__attribute__((visibility("default"))) void operator delete(void* memory) noexcept
{
    std::free(memory);
}

__attribute__((visibility("default"))) void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

constexpr long more_than_are_made = 30;

/// Runs `action` once for each request that may fail, and tells whether any run failed.
template <class Action>
bool fail_each_request(Action action)
{
    bool failed = false;
    for (long request = 1; request <= more_than_are_made; ++request)
    {
        requests_to_failure = request;
        try
        {
            action();
        }
        catch (const std::bad_alloc&)
        {
            failed = true;
        }
        failed = failed || requests_to_failure == -1;
        requests_to_failure = -1;
    }
    return failed;
}

const char* const long_text = "a message that is much too long to be stored within the string object itself";

VelaError an_error()
{
    return VelaError(std::string(long_text), "a_function", "a_file.cpp", 7);
}

TEST(VelaErrorMemory, WhatFallsBackToTheBareMessage)
{
    const VelaError error = an_error();
    const std::string report = error.what();
    bool fell_back = false;
    const bool failed = fail_each_request(
        [&]
        {
            const char* const text = error.what();
            fell_back = fell_back || std::string_view(text) == long_text;
            EXPECT_TRUE(std::string_view(text) == long_text || std::string_view(text) == report);
        });
    EXPECT_TRUE(failed);
    EXPECT_TRUE(fell_back);
    EXPECT_EQ(error.what(), report);
}

TEST(VelaErrorMemory, ACloneThatFailsLeavesNothingBehind)
{
    const VelaError error = an_error();
    const bool failed = fail_each_request([&] { const std::unique_ptr<VelaError> copy(error.clone()); });
    EXPECT_TRUE(failed); // a leak is the sanitizer's to see
}

TEST(VelaErrorMemory, AnAssignmentThatFailsKeepsValidPointers)
{
    const std::unique_ptr<VelaError> source(
        VelaError("text", "a_function_with_a_name_longer_than_a_small_string", "a/file/with/a/long/path.cpp", 7)
            .clone());
    const bool failed = fail_each_request(
        [&]
        {
            VelaError target("own_function", "own_file.cpp", 3);
            try
            {
                target = *source;
            }
            catch (const std::bad_alloc&)
            {
                EXPECT_NE(target.get_file(), source->get_file());
                EXPECT_NE(target.get_func(), source->get_func());
                throw;
            }
        });
    EXPECT_TRUE(failed);
}

TEST(VelaErrorMemory, AnArmedErrorIsDestroyedQuietly)
{
    testing::internal::CaptureStderr();
    const bool failed = fail_each_request([&] { an_error().do_process(); });
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(failed);
}

} // namespace
