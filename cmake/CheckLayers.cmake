# cmake -P CheckLayers.cmake: fails when a source file includes what its layer may not know. Linking
# is checked at configuration; a header of an upper layer could still be included without linking.

cmake_minimum_required(VERSION 3.25)
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/.. ABSOLUTE)

# Module: the modules whose headers it may include, beside its own.
set(PlatformKit_may "")
set(HashKit_may "")
set(DeviceKit_may PlatformKit)
set(OffloadKit_may HashKit PlatformKit DeviceKit)
set(DiskServices_may PlatformKit)
set(DeviceHelper_may PlatformKit)
set(Translations_may PlatformKit)
set(Updates_may "")
set(ZephrimarkUI_may "")
set(CommandLine_may HashKit PlatformKit DeviceKit OffloadKit DiskServices Translations)
set(modules PlatformKit HashKit DeviceKit OffloadKit DiskServices DeviceHelper Translations Updates ZephrimarkUI
    CommandLine)

# The operating system's own headers belong to the lowest layer's implementations.
set(system_headers "<(unistd|fcntl|dirent|poll|pthread|sched|signal|termios|langinfo|locale)\\.h>|<sys/|<linux/|<csignal>")
set(system_folders "^(PlatformKit/(Posix|Linux|Testing)|DiskServices|DeviceHelper)/")

foreach(module IN LISTS modules)
  file(GLOB_RECURSE sources RELATIVE ${root} ${root}/${module}/*.h ${root}/${module}/*.cpp)
  if(NOT sources)
    message(SEND_ERROR "${module} has no sources; correct the list of modules.")
  endif()
  foreach(source IN LISTS sources)
    file(STRINGS ${root}/${source} includes REGEX "^#include")
    foreach(include IN LISTS includes)
      if(include MATCHES "${system_headers}" AND NOT source MATCHES "${system_folders}")
        message(SEND_ERROR "${source}: ${include} belongs into PlatformKit/Posix or Linux.")
      endif()
      if(include MATCHES "\"(ZephrimarkOffload/[A-Za-z]+|[A-Za-z]+)/"
         AND NOT CMAKE_MATCH_1 STREQUAL module AND NOT CMAKE_MATCH_1 IN_LIST ${module}_may)
        message(SEND_ERROR "${source}: ${include} is not below ${module}.")
      endif()
    endforeach()
  endforeach()
endforeach()
