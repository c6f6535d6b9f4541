# cmake -P CheckLayers.cmake [-DROOT=folder]: fails when a source file includes what its layer may
# not know. Linking is checked at configuration; a header could still be included without linking.
#
# Three rules:
#   1. A module includes headers of the modules in its list and its own; a folder of a module that
#      is listed as a floor includes only floors below it.
#   2. What lies in an internal folder of a module is included by that module alone.
#   3. Headers of the operating system belong to the lowest layer's implementations, and what is
#      made for tests belongs to tests.

cmake_minimum_required(VERSION 3.25)
if(NOT ROOT)
  get_filename_component(ROOT ${CMAKE_CURRENT_LIST_DIR}/.. ABSOLUTE)
endif()

set(engine "HashKit PlatformKit TextKit DeviceKit OffloadKit")
set(below_engine "HashKit PlatformKit TextKit DeviceKit")
set(floors "OffloadKit/Records OffloadKit/Card OffloadKit/Wording OffloadKit/Transfer")
set(window "ZephrimarkOffload ZephrimarkOffload/Model ZephrimarkOffload/Screens ZephrimarkUI")
# Folder: what it may include, beside its own headers. The most exact folder of a file counts.
set(rules
  "PlatformKit:"
  "TextKit:"
  "HashKit:"
  "DeviceKit:PlatformKit TextKit"
  "DiskServices:PlatformKit"
  "Composition:PlatformKit DeviceKit DiskServices"
  "DeviceHelper:PlatformKit"
  "Translations:TextKit"
  "Updates:"
  "ZephrimarkUI:"
  "OffloadKit/Records:HashKit PlatformKit TextKit DeviceKit"
  "OffloadKit/Card:PlatformKit TextKit OffloadKit/Records"
  "OffloadKit/Wording:HashKit PlatformKit TextKit OffloadKit/Records"
  "OffloadKit/Transfer:HashKit PlatformKit TextKit"
  "OffloadKit/Copying:${below_engine} OffloadKit/Records OffloadKit/Transfer"
  "OffloadKit/Proof:${below_engine} OffloadKit/Records OffloadKit/Transfer OffloadKit/Wording"
  "OffloadKit/Run:${below_engine} ${floors} OffloadKit/Copying OffloadKit/Proof"
  "OffloadKit:${engine}"
  "ZephrimarkOffload/Model:${engine}"
  "ZephrimarkOffload/Desktop:PlatformKit TextKit ZephrimarkOffload/Model"
  "ZephrimarkOffload/Screens:${engine} ZephrimarkUI ZephrimarkOffload/Model"
  "ZephrimarkOffload/Demo:${engine} Translations ${window}"
  "ZephrimarkOffload:${engine} Composition Translations Updates ZephrimarkUI"
  "CommandLine:${engine} Composition Translations")
# Folders whose headers are their module's own. Composition puts the system's implementations
# together, so it alone names those of PlatformKit.
set(internal PlatformKit/Linux OffloadKit/Transfer OffloadKit/Copying
    OffloadKit/Proof OffloadKit/Run)
set(composition_root Composition)

set(system_headers "unistd|fcntl|dirent|poll|pthread|sched|signal|termios|langinfo|locale")
set(system_headers "<(${system_headers})\\.h>|<sys/|<linux/|<csignal>")
set(system_folders "^(PlatformKit/(Posix|Linux|Testing)|DiskServices|DeviceHelper)/")

# The longest of the folders (in `folders`) that hold `file`, in `answer`; empty without one.
function(folder_of file folders answer)
  set(longest "")
  string(LENGTH "${longest}" most)
  foreach(folder IN LISTS folders)
    string(LENGTH "${folder}" length)
    string(FIND "${file}" "${folder}/" place)
    if(place EQUAL 0 AND length GREATER most)
      set(longest "${folder}")
      set(most ${length})
    endif()
  endforeach()
  set(${answer} "${longest}" PARENT_SCOPE)
endfunction()

set(folders "")
foreach(rule IN LISTS rules)
  string(REGEX MATCH "^([^:]*):(.*)$" ignored "${rule}")
  set(folder ${CMAKE_MATCH_1})
  string(REPLACE " " ";" may_${folder} "${CMAKE_MATCH_2}")
  list(APPEND folders ${folder})
endforeach()

foreach(folder IN LISTS folders)
  string(REGEX REPLACE "/.*" "" module ${folder})
  file(GLOB_RECURSE sources RELATIVE ${ROOT} ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  if(NOT sources)
    message(SEND_ERROR "${folder} has no sources; correct the list of folders.")
  endif()
  foreach(source IN LISTS sources)
    folder_of(${source} "${folders}" own)
    if(NOT own STREQUAL folder)
      continue()
    endif()
    file(STRINGS ${ROOT}/${source} includes REGEX "^#include")
    foreach(include IN LISTS includes)
      if(include MATCHES "${system_headers}" AND NOT source MATCHES "${system_folders}")
        message(SEND_ERROR "${source}: ${include} belongs into PlatformKit/Posix or Linux.")
      endif()
      if(NOT include MATCHES "\"([^\"]+)\"")
        continue()
      endif()
      set(header ${CMAKE_MATCH_1})
      if(header MATCHES "/Testing/" AND NOT source MATCHES "/Testing/")
        message(SEND_ERROR "${source}: ${include} is for tests.")
      endif()
      folder_of(${header} "${folders}" target)
      string(REGEX REPLACE "/.*" "" target_module "${target}")
      if(target AND NOT target STREQUAL folder AND NOT target IN_LIST may_${folder}
         AND NOT (target_module IN_LIST may_${folder} AND NOT target_module STREQUAL module)
         AND NOT (folder STREQUAL module AND target_module STREQUAL module))
        message(SEND_ERROR "${source}: ${include} is not below ${folder}.")
      endif()
      folder_of(${header} "${internal}" hidden)
      string(REGEX REPLACE "/.*" "" hidden_module "${hidden}")
      set(may_compose FALSE)
      if(hidden_module STREQUAL "PlatformKit" AND module STREQUAL composition_root)
        set(may_compose TRUE)
      endif()
      if(hidden AND NOT hidden_module STREQUAL module AND NOT may_compose)
        message(SEND_ERROR "${source}: ${include} is internal to ${hidden_module}.")
      endif()
    endforeach()
  endforeach()
endforeach()
