# Installs the build, moves the installed copy elsewhere, and builds and runs the consumer project against it.
# Variables: BUILD, SOURCE, WORK, COMPILER, BUILD_TYPE, FLAGS, STANDALONE

function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY "${WORK}" RESULT_VARIABLE Result OUTPUT_VARIABLE Output ERROR_VARIABLE Output)
  if(NOT Result EQUAL 0)
    list(JOIN ARGN " " Command)
    message(FATAL_ERROR "${Command}\n${Output}")
  endif()
  set(Output "${Output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}")
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/installed")
file(RENAME "${WORK}/installed" "${WORK}/moved")

run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${WORK}/build" -G Ninja "-DCMAKE_PREFIX_PATH=${WORK}/moved"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}" "-DCMAKE_CXX_FLAGS=${FLAGS}"
    "-DWITH_STANDALONE=${STANDALONE}")
run("${CMAKE_COMMAND}" --build "${WORK}/build")

file(GLOB Programs "${WORK}/build/bin/*")
if(NOT Programs)
  message(FATAL_ERROR "The consumer project built no program.")
endif()
if(EXISTS "${WORK}/moved/bin/velkrund")
  list(APPEND Programs "${WORK}/moved/bin/velkrund")
endif()
foreach(Program IN LISTS Programs)
  cmake_path(GET Program FILENAME Name)
  if(Name STREQUAL "velkrund")
    run("${Program}" --version)
  else()
    run("${Program}")
  endif()
  message("${Name}: ${Output}")
endforeach()
