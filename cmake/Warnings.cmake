# One target that every module of ours links privately. The presets for development make a warning
# an error; with a compiler or a library that nobody here has seen, it is none.
add_library(ZephrimarkWarnings INTERFACE)
target_compile_options(ZephrimarkWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wunused-result)
# GCC 12 sees overlapping copies in plain string concatenation (its bug 105329).
target_compile_options(ZephrimarkWarnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
