/// An open descriptor of the test's own.
#pragma once

#include <VelaFile/handle.h>

#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace vela_test {

/// Closes its descriptor at the end, and is not copied.
class Descriptor
{
public:
    explicit Descriptor(int open_descriptor) : number(open_descriptor)
    {
        if (number < 0)
            throw std::runtime_error("no descriptor");
    }
    Descriptor(const std::string& path, int flags) : Descriptor(::open(path.c_str(), flags | O_CLOEXEC)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    void close()
    {
        if (number >= 0)
            ::close(number);
        number = -1;
    }

    int get() const { return number; }
    void* handle() const { return vela_handle_from_descriptor(number); }

private:
    int number;
};

inline bool is_open_descriptor(int number)
{
    return ::fcntl(number, F_GETFD) != -1;
}

} // namespace vela_test
