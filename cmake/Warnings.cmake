# One target that every module of ours links privately; a warning is an error.
add_library(ZephrimarkWarnings INTERFACE)
target_compile_options(ZephrimarkWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wunused-result -Werror)
# GCC 12 sees overlapping copies in plain string concatenation (its bug 105329).
target_compile_options(ZephrimarkWarnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
