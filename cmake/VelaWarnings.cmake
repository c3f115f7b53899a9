# Warnings are errors in our own build; nobody who builds the library as a dependency inherits them.
add_library(vela_warnings INTERFACE)
target_compile_options(vela_warnings INTERFACE
  -Werror -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
  -Woverloaded-virtual -Wold-style-cast -Wcast-align -Wformat=2 -Wdouble-promotion)
# VProp is polymorphic and has no virtual destructor, on purpose: its table of virtual operations is fixed. g++ says
# nothing where the standard library destroys one, clang does, and cannot be silenced there.
target_compile_options(vela_warnings INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wno-delete-non-abstract-non-virtual-dtor>)
