# What `cmake --install` puts in place, headers apart: those are installed with the library that gathers their folders.

include(CMakePackageConfigHelpers)
set(PackageDirectory "${CMAKE_INSTALL_LIBDIR}/cmake/Velkrund")

install(TARGETS velkrund EXPORT VelkrundTargets)
install(EXPORT VelkrundTargets NAMESPACE Velkrund:: DESTINATION "${PackageDirectory}")

set(VELKRUND_STANDALONE_FINDS)
if(TARGET velkrund-standalone)
  velkrund_layer_finds(VELKRUND_STANDALONE_FINDS standalone)
  list(JOIN VELKRUND_STANDALONE_FINDS " " VELKRUND_STANDALONE_FINDS)
  install(TARGETS velkrund-standalone EXPORT VelkrundStandaloneTargets)
  # As a shared library it finds libvelkrund beside itself.
  set_target_properties(velkrund-standalone PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(EXPORT VelkrundStandaloneTargets NAMESPACE Velkrund:: DESTINATION "${PackageDirectory}")
endif()

if(TARGET hosts-cli)
  install(TARGETS hosts-cli)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY "${CMAKE_INSTALL_FULL_BINDIR}"
             OUTPUT_VARIABLE LibrariesFromPrograms)
  set_target_properties(hosts-cli PROPERTIES INSTALL_RPATH "$ORIGIN/${LibrariesFromPrograms}")
endif()
if(EXISTS "${PROJECT_SOURCE_DIR}/texts")
  install(DIRECTORY texts/ DESTINATION "${CMAKE_INSTALL_DATADIR}/velkrund/texts")
endif()

configure_package_config_file(cmake/VelkrundConfig.cmake.in "${PROJECT_BINARY_DIR}/VelkrundConfig.cmake"
                              INSTALL_DESTINATION "${PackageDirectory}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/VelkrundConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/VelkrundConfig.cmake" "${PROJECT_BINARY_DIR}/VelkrundConfigVersion.cmake"
        DESTINATION "${PackageDirectory}")
