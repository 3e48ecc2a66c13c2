# libvelkrund-c: everything in one shared library, of which only the C functions of velkrund/module/Velkrund.h are seen.
# Made of the objects of the folders that hosts/c reaches, so that it depends on nothing of ours, however the other libraries are
# built.

if(NOT VELKRUND_BUILD_STANDALONE)
  return()
endif()

velkrund_layer_reach(Reached hosts/c)
velkrund_compiled_layers(Compiled ${Reached})
set(Exports "${PROJECT_SOURCE_DIR}/cmake/velkrund-c.map")
add_library(velkrund-c SHARED)
velkrund_gather(velkrund-c ${Compiled})
set_target_properties(velkrund-c PROPERTIES LINK_DEPENDS "${Exports}")
target_link_options(velkrund-c PRIVATE "LINKER:--version-script=${Exports}")
target_include_directories(velkrund-c INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
                           "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
set_target_properties(velkrund-c PROPERTIES EXPORT_NAME c)
add_library(Velkrund::c ALIAS velkrund-c)

# Relative, so that an installed copy can be moved.
set(Prefix "${CMAKE_INSTALL_PREFIX}")
cmake_path(RELATIVE_PATH Prefix BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
           OUTPUT_VARIABLE VELKRUND_PREFIX_FROM_PC)
configure_file(cmake/velkrund-c.pc.in velkrund-c.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/velkrund-c.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# The examples in C, which the tests run.
if(NOT VELKRUND_BUILD_TESTS)
  return()
endif()
file(GLOB Examples CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/examples/*.c")
foreach(Example IN LISTS Examples)
  cmake_path(GET Example STEM Name)
  add_executable(example-${Name} "${Example}")
  set_target_properties(example-${Name} PROPERTIES OUTPUT_NAME ${Name} C_STANDARD 99 C_STANDARD_REQUIRED ON
                        C_EXTENSIONS OFF RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/examples")
  target_compile_options(example-${Name} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                         $<$<BOOL:${VELKRUND_WERROR}>:-Werror>)
  target_link_libraries(example-${Name} PRIVATE velkrund-c)
  if(VELKRUND_SANITIZE)
    # The library's checks of C++ need a part of the runtime that is linked into C++ programs alone.
    set_target_properties(example-${Name} PROPERTIES LINKER_LANGUAGE CXX)
  endif()
endforeach()
