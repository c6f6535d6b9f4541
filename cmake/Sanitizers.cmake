# Sanitizers must be in every object of the program, so they are set for the whole build.
if(ZEPHRIMARK_SANITIZE)
  add_compile_options(-fsanitize=${ZEPHRIMARK_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  # With instrumentation in the way, GCC 12 suspects the standard library's own code.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  # It warns of the fences in Qt's headers, which ThreadSanitizer does not see.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-tsan>)
  add_link_options(-fsanitize=${ZEPHRIMARK_SANITIZE})
endif()
