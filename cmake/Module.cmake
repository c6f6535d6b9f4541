# zephrimark_module(NAME LAYER n SOURCES ... [MODULES ...] [LIBRARIES ...])
#
# Declares one module: a static library whose folder, name and namespace are the same. MODULES are
# modules of ours; each must lie in a lower layer, or the configuration stops. LIBRARIES are
# foreign.
function(zephrimark_module name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LAYER" "SOURCES;MODULES;LIBRARIES")
  add_library(${name} STATIC ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES ZEPHRIMARK_LAYER ${arg_LAYER})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  zephrimark_link(${name} ${arg_LAYER} "${arg_MODULES}")
  target_link_libraries(${name} PUBLIC ${arg_LIBRARIES} PRIVATE ZephrimarkWarnings)
endfunction()

# zephrimark_program(TARGET OUTPUT LAYER n SOURCES ... MODULES ... LIBRARIES ...): the same for an
# executable, which is the top of the picture.
function(zephrimark_program name output)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "LAYER" "SOURCES;MODULES;LIBRARIES")
  add_executable(${name} ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME ${output}
                        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  zephrimark_link(${name} ${arg_LAYER} "${arg_MODULES}")
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} ZephrimarkWarnings)
endfunction()

function(zephrimark_link name layer modules)
  foreach(module IN LISTS modules)
    get_target_property(below ${module} ZEPHRIMARK_LAYER)
    if(NOT below LESS layer)
      message(FATAL_ERROR "${name} (layer ${layer}) may not use ${module} (layer ${below}).")
    endif()
    get_target_property(type ${name} TYPE)
    if(type STREQUAL "EXECUTABLE")
      target_link_libraries(${name} PRIVATE ${module})
    else()
      target_link_libraries(${name} PUBLIC ${module})
    endif()
  endforeach()
endfunction()

# zephrimark_quiet_qml(TARGET): after qt_add_qml_module, takes the warnings off the code that Qt's
# tools generated for TARGET. It must be called in the folder that declares the target.
function(zephrimark_quiet_qml name)
  get_target_property(sources ${name} SOURCES)
  list(FILTER sources INCLUDE REGEX "/qmlcache/|_qmltyperegistrations\\.cpp|_qml_loader\\.cpp")
  set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS -w)
endfunction()
