// AddressSanitizer ends the program where somebody asks for more memory than it can give. In a program with this file it
// answers as the system does.

extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();

const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
