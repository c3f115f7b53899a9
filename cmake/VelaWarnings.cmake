# Warnings are errors in our own build; nobody who builds the library as a dependency inherits them.
add_library(vela_warnings INTERFACE)
target_compile_options(vela_warnings INTERFACE
  -Werror -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
  -Woverloaded-virtual -Wold-style-cast -Wcast-align -Wformat=2 -Wdouble-promotion)
