# VELKRUND_COMPILE_TOGETHER compiles for a whole check, most of which is compilers' time: the sources of each target several
# at a time, as most of it goes to headers; the standard library's headers once, where the compiler is Clang; and without
# optimizing what gains nothing by it. The presets dev and release compile each source for itself, and show what one has by
# way of its neighbours alone.

# These name something of their own like another source of their folder does; so do those with tables of properties.
set(VELKRUND_COMPILED_ALONE
    jobs/files/SectionRemoval.cpp
    jobs/files/SectionRepair.cpp
    jobs/files/Spool.cpp
    jobs/files/WatchedFiles.cpp
    standalone/dictionary/CatalogueProcedures.cpp
    standalone/drivers/QueryText.cpp
    standalone/drivers/postgresql/PostgreSQLSchemaReader.cpp
    standalone/drivers/sqlite/SQLiteExecution.cpp
    standalone/drivers/sqlite/SQLiteTypes.cpp
    velkrund/dsp/DSPStructure.cpp
    velkrund/dsp/NodeNames.cpp
    velkrund/dsp/OldNodeTexts.cpp
    velkrund/module/CGuard.cpp
    velkrund/platform/database/Relations.cpp
    velkrund/platform/dictionary/Dictionary.cpp
    velkrund/resources/SingleLResource.cpp
    tests/operations/NameLengthsTest.cpp
    tests/operations/RecreateContainerTest.cpp
    tests/roundtrip/SQLiteRoundTripTest.cpp
    tests/standalone/RedescriptionTest.cpp)

# Where rows do not pass, and where threads are watched in small tests. But documents are written by a library that calls
# itself for every level: unoptimized that takes too much of the stack under a sanitizer.
function(velkrund_is_optimized Result Folder)
  if((Folder MATCHES "^(jobs|hosts|tests)/" AND NOT Folder STREQUAL "jobs/report") OR VELKRUND_SANITIZE MATCHES "thread")
    set(${Result} OFF PARENT_SCOPE)
  else()
    set(${Result} ON PARENT_SCOPE)
  endif()
endfunction()

# The standard library's headers, from one of the two targets that have them compiled, optimized or not.
function(velkrund_reuse_standard_headers Target Optimized)
  set(Headers velkrund-standard-headers-${Optimized})
  if(NOT TARGET ${Headers})
    file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/${Headers}.cpp" CONTENT "// Has what others reuse compiled.\n")
    add_library(${Headers} OBJECT "${PROJECT_BINARY_DIR}/${Headers}.cpp")
    velkrund_compile_settings(${Headers})
    target_compile_options(${Headers} PRIVATE $<$<NOT:$<BOOL:${Optimized}>>:-O0>)
    target_precompile_headers(${Headers} PRIVATE <algorithm> <array> <chrono> <cstdint> <exception> <filesystem> <functional>
                              <map> <memory> <optional> <set> <span> <string> <string_view> <unordered_map>
                              <unordered_set> <utility> <vector>)
    # The time of the headers would keep ccache from handing it out again.
    target_compile_options(${Headers} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
  endif()
  target_precompile_headers(${Target} REUSE_FROM ${Headers})
endfunction()

function(velkrund_compile_several_at_a_time Target)
  set_target_properties(${Target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10)
  # What a neighbour has in its unnamed namespace is no header's, and may be shadowed.
  target_compile_options(${Target} PRIVATE -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  get_target_property(Sources ${Target} SOURCES)
  foreach(Source IN LISTS Sources)
    cmake_path(ABSOLUTE_PATH Source NORMALIZE OUTPUT_VARIABLE File)
    cmake_path(RELATIVE_PATH File BASE_DIRECTORY "${PROJECT_SOURCE_DIR}" OUTPUT_VARIABLE Name)
    set(Own)
    if(Source MATCHES "\\.cpp$" AND EXISTS "${File}")
      file(STRINGS "${File}" Own REGEX "^using TThis |^constexpr TProperty " LIMIT_COUNT 1)
    endif()
    if(Own OR Name IN_LIST VELKRUND_COMPILED_ALONE)
      set_source_files_properties("${Source}" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  endforeach()
endfunction()

# Folder: where the target's sources are. A library's target is that of its objects.
function(velkrund_compile_together Target Folder)
  if(NOT VELKRUND_COMPILE_TOGETHER)
    return()
  endif()
  velkrund_is_optimized(Optimized "${Folder}")
  target_compile_options(${Target} PRIVATE $<$<NOT:$<BOOL:${Optimized}>>:-O0>)
  get_target_property(Type ${Target} TYPE)
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND Type STREQUAL "OBJECT_LIBRARY")
    velkrund_reuse_standard_headers(${Target} ${Optimized})
  endif()
  velkrund_compile_several_at_a_time(${Target})
endfunction()
