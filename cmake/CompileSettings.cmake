# How our own targets are compiled. Nothing here reaches a consumer of the installed libraries.

set(VELKRUND_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
                      -Woverloaded-virtual)

function(velkrund_compile_settings Target)
  target_compile_features(${Target} PRIVATE cxx_std_20)
  target_include_directories(${Target} PRIVATE "${PROJECT_SOURCE_DIR}")
  set_target_properties(${Target} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${Target} PRIVATE ${VELKRUND_WARNINGS} $<$<BOOL:${VELKRUND_WERROR}>:-Werror>)
  # Plug-ins need position-independent code; without this it would also forbid inlining between our own functions.
  target_compile_options(${Target} PRIVATE -fno-semantic-interposition)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # False alarms: about "text" + std::string in version 12, and about whatever a sanitizer instruments.
    if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      target_compile_options(${Target} PRIVATE -Wno-restrict)
    endif()
    if(VELKRUND_SANITIZE)
      target_compile_options(${Target} PRIVATE -Wno-maybe-uninitialized)
    endif()
  endif()
endfunction()

# For what is shipped or measured, not for tests. Fat objects: the installed archive stays usable for a linker that
# knows nothing of this compiler's plug-in, and tests link the plain half, which takes a fraction of the time.
function(velkrund_link_time_optimization Target)
  if(VELKRUND_LTO_WORKS)
    target_compile_options(${Target} PRIVATE -flto=auto -ffat-lto-objects)
    target_link_options(${Target} PRIVATE -flto=auto)
  endif()
endfunction()

set(VELKRUND_LTO_WORKS OFF)
if(VELKRUND_LTO)
  include(CheckIPOSupported)
  check_ipo_supported(RESULT Supported OUTPUT Reason LANGUAGES CXX)
  if(Supported AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(VELKRUND_LTO_WORKS ON)
  else()
    message(STATUS "Link-time optimization is off: ${CMAKE_CXX_COMPILER_ID} ${Reason}")
  endif()
endif()

if(VELKRUND_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(VELKRUND_CCACHE_PROGRAM ccache)
  if(VELKRUND_CCACHE_PROGRAM)
    # Clones and presets share what they compile alike, which in a few of them is more than the usual size. Precompiled
    # headers ask for the sloppiness.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_MAXSIZE=20G "${VELKRUND_CCACHE_PROGRAM}")
  endif()
endif()
