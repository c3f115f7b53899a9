/// Makes `operator new` fail when a test wants it. A program that uses it has failing_memory.cpp among its sources.
/// For programs of one thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela_test {

/// How many requests succeed from now on before all fail; `SIZE_MAX` ends it.
void allow_requests(std::size_t requests);

/// How many blocks are taken now.
std::size_t blocks_taken();

/// How many requests there have been, those that failed included.
std::size_t requests_made();

/// While it lives, `requests` requests succeed and all others fail.
class MemoryFailsAfter
{
public:
    explicit MemoryFailsAfter(std::size_t requests) { allow_requests(requests); }
    ~MemoryFailsAfter() { allow_requests(SIZE_MAX); }
    MemoryFailsAfter(const MemoryFailsAfter&) = delete;
    MemoryFailsAfter& operator=(const MemoryFailsAfter&) = delete;
};

/// While it lives, the request behind the first `requests` fails, and no other one.
class OneRequestFailsAfter
{
public:
    explicit OneRequestFailsAfter(std::size_t requests);
    ~OneRequestFailsAfter();
    OneRequestFailsAfter(const OneRequestFailsAfter&) = delete;
    OneRequestFailsAfter& operator=(const OneRequestFailsAfter&) = delete;
};

}
