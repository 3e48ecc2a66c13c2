# VELKRUND_COMPILE_TOGETHER compiles the sources of each target several at a time, in a fraction of the time: most of it goes
# to headers. The presets dev and release compile each for itself, and show what one has by way of its neighbours alone.

# These name something of their own like another source of their folder does; so do those with tables of properties.
set(VELKRUND_COMPILED_ALONE
    jobs/files/SectionRemoval.cpp
    jobs/files/SectionRepair.cpp
    jobs/files/Spool.cpp
    jobs/files/WatchedFiles.cpp
    standalone/dictionary/CatalogueProcedures.cpp
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

function(velkrund_compile_together Target)
  if(NOT VELKRUND_COMPILE_TOGETHER)
    return()
  endif()
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
