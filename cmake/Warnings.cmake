# One target that every module of ours links privately; a warning is an error.
add_library(ZephrimarkWarnings INTERFACE)
target_compile_options(ZephrimarkWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wunused-result -Werror)
