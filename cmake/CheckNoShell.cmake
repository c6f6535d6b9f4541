# cmake -P CheckNoShell.cmake: fails when a source of the product starts a shell, or starts programs
# anywhere but where the device helper is started, whose arguments are a fixed list. What a card or
# a drive is called must never be read as a command.

cmake_minimum_required(VERSION 3.25)
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/.. ABSOLUTE)

set(calls "(^|[^A-Za-z0-9_])(system|popen|wordexp|v?fork|exec(l|lp|le|v|vp|ve|vpe)|fexecve)[ ]*\\(")
set(names "\"(/bin/|/usr/bin/)?(env|(ba|da|k|z)?sh)\"|\"-c\"|QProcess|<stdlib\\.h>")
set(shell "${calls}|${names}")
set(spawn "posix_spawn|clone3? *\\(|\"pkexec\"")
set(spawns_allowed "^(PlatformKit/Posix/HelperOpener|Composition/Machine)\\.(h|cpp)$")

# A pattern that finds nothing would never complain.
foreach(sample "  std::system(command.c_str());" "popen(\"ls\", \"r\")" "x = ::fork();"
        "execl(\"/bin/ls\"" "execvp (name, list);" "run({\"sh\", \"-c\"})" "QProcess process;")
  if(NOT sample MATCHES "${shell}")
    message(SEND_ERROR "The pattern does not find: ${sample}")
  endif()
endforeach()
foreach(sample "PlatformKit::System system_(all);" "execute(plan)" "engine_.execute()"
        "filesystem(x)")
  if(sample MATCHES "${shell}")
    message(SEND_ERROR "The pattern finds: ${sample}")
  endif()
endforeach()

set(count 0)
foreach(module PlatformKit TextKit HashKit DeviceKit OffloadKit DiskServices Composition
        DeviceHelper Translations Updates ZephrimarkUI ZephrimarkOffload CommandLine)
  file(GLOB_RECURSE sources RELATIVE ${root} ${root}/${module}/*.h ${root}/${module}/*.cpp
       ${root}/${module}/*.qml)
  foreach(source IN LISTS sources)
    math(EXPR count "${count} + 1")
    file(STRINGS ${root}/${source} lines REGEX "${shell}")
    foreach(line IN LISTS lines)
      message(SEND_ERROR "${source} may start a shell: ${line}")
    endforeach()
    file(STRINGS ${root}/${source} lines REGEX "${spawn}")
    if(lines AND NOT source MATCHES "${spawns_allowed}")
      message(SEND_ERROR "${source} starts programs: ${lines}")
    endif()
  endforeach()
endforeach()
if(count LESS 100)
  message(SEND_ERROR "Only ${count} sources were found; correct the list of modules.")
endif()
