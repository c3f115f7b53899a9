# Warnings are errors in our own build; nobody who builds the library as a dependency inherits them.
add_library(vela_warnings INTERFACE)
target_compile_options(vela_warnings INTERFACE
  -Werror -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
  -Woverloaded-virtual -Wold-style-cast -Wcast-align -Wformat=2 -Wdouble-promotion)
# VProp has virtual functions and, on purpose, no virtual destructor; clang shows what std::vector does with it.
target_compile_options(vela_warnings INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wno-delete-non-abstract-non-virtual-dtor>)
