/// DBL files byte by byte, without the library.
#pragma once

#include <VelaBinaryIO/vela_dbl.h>

#include "support/descriptor.h"
#include "support/temporary_folder.h"
#include "support/vbf_bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

#include <sys/wait.h>

namespace vela_test {

typedef std::array<int, 4> Dims;
typedef std::array<float, 4> Lengths;
typedef std::vector<double> Doubles;
typedef std::vector<float> Singles;

/// Larger than any system of these tests would give.
constexpr Dims too_many = {32767, 65535, 1, 1};

/// The header as the page of the format has it.
inline Bytes dbl_header(const Dims& dims, const Lengths& lengths, unsigned char flag)
{
    Bytes bytes;
    for (const std::size_t d : {2U, 1U, 0U, 3U})
    {
        bytes.push_back(static_cast<unsigned char>(dims[d] >> 8));
        bytes.push_back(static_cast<unsigned char>(dims[d]));
    }
    for (const std::size_t d : {2U, 1U, 0U, 3U})
        append_u32(bytes, std::bit_cast<std::uint32_t>(lengths[d]));
    bytes.push_back(flag);
    bytes.resize(128, 0xCC);
    return bytes;
}

template <class T>
Bytes bytes_of(const std::vector<T>& values)
{
    Bytes bytes(values.size() * sizeof(T));
    if (!bytes.empty())
        std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

template <class T>
std::vector<T> values_at(const void* bytes, std::size_t count)
{
    std::vector<T> values(count);
    if (count != 0)
        std::memcpy(values.data(), bytes, count * sizeof(T));
    return values;
}

inline void* mode_word(std::uintptr_t mode)
{
    return reinterpret_cast<void*>(mode);
}

/// What `vela_dbl_read` gave with a mode that has no buffer of the caller.
struct DblContent
{
    DblContent(const std::string& path, std::uintptr_t mode) : buffer(mode_word(mode))
    {
        result = vela_dbl_read(path.c_str(), dims.data(), lengths.data(), &buffer);
        is_allocated = buffer != mode_word(mode);
    }
    DblContent(const DblContent&) = delete;
    DblContent& operator=(const DblContent&) = delete;
    ~DblContent()
    {
        if (is_allocated)
            std::free(buffer);
    }

    Dims dims = {-7, -7, -7, -7};
    Lengths lengths = {-7, -7, -7, -7};
    void* buffer;
    int result = -7;
    bool is_allocated = false;
};

/// The descriptor that the next open gets.
inline int next_descriptor()
{
    const int number = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(number);
    return number;
}

/// Runs `work` in another process and gives its result, which is below 128.
inline int in_another_process(const std::function<int()>& work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = -1;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

class DblTest : public FolderTest
{
protected:
    /// Makes a file of these samples.
    template <class T>
    std::string make(const Dims& dims, const std::vector<T>& samples, unsigned char flag)
    {
        Bytes bytes = dbl_header(dims, {1, 2, 3, 4}, flag);
        append_bytes(bytes, bytes_of(samples));
        put_bytes(path("a.dbl"), bytes);
        return path("a.dbl");
    }
    std::string make_doubles(const Dims& dims, const Doubles& samples) { return make(dims, samples, 0); }
    std::string make_singles(const Dims& dims, const Singles& samples) { return make(dims, samples, 1); }
};

} // namespace vela_test
