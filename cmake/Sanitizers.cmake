# VELKRUND_SANITIZE and VELKRUND_FUZZ apply to everything in the tree: half-instrumented programs report nonsense.

set(VELKRUND_SANITIZE_FLAGS)

if(VELKRUND_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "VELKRUND_FUZZ needs clang++ (the preset 'fuzz' selects it); this is ${CMAKE_CXX_COMPILER_ID}.")
  endif()
  if(NOT VELKRUND_SANITIZE)
    set(VELKRUND_SANITIZE "address,undefined")
  endif()
  # Coverage for the fuzzing engine; its main function is linked by the fuzz targets alone.
  add_compile_options(-fsanitize=fuzzer-no-link)
  add_link_options(-fsanitize=fuzzer-no-link)
endif()

if(VELKRUND_SANITIZE)
  set(VELKRUND_SANITIZE_FLAGS "-fsanitize=${VELKRUND_SANITIZE}" -fno-omit-frame-pointer)
  if(VELKRUND_SANITIZE MATCHES "undefined")
    list(APPEND VELKRUND_SANITIZE_FLAGS -fno-sanitize-recover=all)
  endif()
  add_compile_options(${VELKRUND_SANITIZE_FLAGS})
  add_link_options(${VELKRUND_SANITIZE_FLAGS})
endif()
