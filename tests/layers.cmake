# cmake -DSOURCES=root -DSCRATCH=folder -P layers.cmake: fails unless CheckLayers refuses an include
# of every kind that it is there for, and takes the sources as they are.

set(check ${SOURCES}/cmake/CheckLayers.cmake)
file(REMOVE_RECURSE ${SCRATCH})
foreach(module CommandLine Composition DeviceHelper DeviceKit DiskServices HashKit OffloadKit
        PlatformKit TextKit Translations Updates ZephrimarkOffload ZephrimarkUI)
  file(COPY ${SOURCES}/${module} DESTINATION ${SCRATCH}
       FILES_MATCHING PATTERN "*.h" PATTERN "*.cpp")
endforeach()

function(expect outcome text)
  execute_process(COMMAND ${CMAKE_COMMAND} -DROOT=${SCRATCH} -P ${check}
                  RESULT_VARIABLE status ERROR_VARIABLE told)
  string(REGEX REPLACE "[ \n]+" " " told "${told}")
  string(FIND "${told}" "${text}" place)
  if(outcome STREQUAL "taken" AND NOT status EQUAL 0)
    message(SEND_ERROR "Refused as it is: ${told}")
  elseif(outcome STREQUAL "refused" AND (status EQUAL 0 OR place EQUAL -1))
    message(SEND_ERROR "Not refused with \"${text}\": ${told}")
  endif()
endfunction()

function(refuses source include text)
  file(READ ${SCRATCH}/${source} before)
  file(WRITE ${SCRATCH}/${source} "#include ${include}\n${before}")
  expect(refused "${text}")
  file(WRITE ${SCRATCH}/${source} "${before}")
endfunction()

expect(taken "")
refuses(OffloadKit/Records/Version.cpp "\"OffloadKit/Run/Preflight.h\"" "is not below")
refuses(OffloadKit/Transfer/WholeFile.cpp "\"OffloadKit/Records/OffloadPlan.h\"" "is not below")
refuses(HashKit/XXH64.cpp "\"TextKit/Unicode.h\"" "is not below")
refuses(ZephrimarkOffload/Model/Notice.cpp "\"ZephrimarkOffload/Screens/Text.h\"" "is not below")
refuses(ZephrimarkOffload/Screens/Text.cpp "\"OffloadKit/Copying/Lane.h\"" "is internal to")
refuses(CommandLine/Table.cpp "\"PlatformKit/Linux/LinuxDisks.h\"" "is internal to")
refuses(OffloadKit/Proof/C4.cpp "\"PlatformKit/Testing/TempFolder.h\"" "is for tests")
refuses(ZephrimarkOffload/Model/Notice.cpp "<unistd.h>" "belongs into PlatformKit")
