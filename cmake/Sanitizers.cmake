# Sanitizers must be in every object of the program, so they are set for the whole build.
if(ZEPHRIMARK_SANITIZE)
  add_compile_options(-fsanitize=${ZEPHRIMARK_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZEPHRIMARK_SANITIZE})
endif()
