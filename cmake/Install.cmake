# What `cmake --install` puts in place.

include(CMakePackageConfigHelpers)

# The headers that programs include, and what these include, found out when it is installed. Drivers, and whatever else only
# our own sources include, is nobody's business.
set(PublicHeaders "velkrund/*.h")
if(VELKRUND_BUILD_STANDALONE)
  list(APPEND PublicHeaders "jobs/*.h" "standalone/databases/*.h" "standalone/windows/*Windows.h")
endif()
install(CODE "
  set(Source \"${PROJECT_SOURCE_DIR}\")
  set(Public \"${PublicHeaders}\")
  set(Private \"^velkrund/module/C\")  # what is behind the C functions
  set(Destination \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_INCLUDEDIR}\")
  include(\"${PROJECT_SOURCE_DIR}/cmake/InstallHeaders.cmake\")")

# What there is to read. Links from one to another hold.
set(TextDirectory "${CMAKE_INSTALL_DATAROOTDIR}/doc/velkrund")
file(GLOB Documents CONFIGURE_DEPENDS docs/*.md)
file(GLOB Examples CONFIGURE_DEPENDS examples/*)
install(FILES README.md CHANGELOG.md LICENSE DESTINATION "${TextDirectory}")
install(FILES ${Documents} DESTINATION "${TextDirectory}/docs")
install(FILES ${Examples} DESTINATION "${TextDirectory}/examples")
set(PackageDirectory "${CMAKE_INSTALL_LIBDIR}/cmake/Velkrund")

install(TARGETS velkrund EXPORT VelkrundTargets)
install(EXPORT VelkrundTargets NAMESPACE Velkrund:: DESTINATION "${PackageDirectory}")

# A component of the package: the library velkrund-<name>, and what it has to find: the packages of the folders of <name>/ that
# it gathers.
function(velkrund_install_component Name)
  set(Finds)
  if(TARGET velkrund-${Name})
    velkrund_layer_finds(Finds ${Name})
    install(TARGETS velkrund-${Name} EXPORT Velkrund-${Name}-Targets)
    # As a shared library it finds those that it stands on beside itself.
    set_target_properties(velkrund-${Name} PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(EXPORT Velkrund-${Name}-Targets NAMESPACE Velkrund:: DESTINATION "${PackageDirectory}")
  endif()
  list(JOIN Finds " " Finds)
  set(VELKRUND_${Name}_FINDS "${Finds}" PARENT_SCOPE)
endfunction()
velkrund_install_component(standalone)
velkrund_install_component(jobs)
velkrund_install_component(c)

if(TARGET hosts-cli)
  install(TARGETS hosts-cli)

  # What the command tells about itself: its manual page, and the scripts that make shells complete its lines.
  set(CommandTexts)
  function(velkrund_command_text Options Folder Name)
    set(Output "${PROJECT_BINARY_DIR}/share/${Folder}/${Name}")
    cmake_path(GET Output PARENT_PATH Directory)
    file(MAKE_DIRECTORY "${Directory}")
    add_custom_command(OUTPUT "${Output}" COMMAND hosts-cli ${Options} > "${Output}" DEPENDS hosts-cli
                       COMMENT "Writing ${Name}")
    install(FILES "${Output}" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/${Folder}")
    set(CommandTexts ${CommandTexts} "${Output}" PARENT_SCOPE)
  endfunction()
  velkrund_command_text("--manual" man/man1 velkrund.1)
  velkrund_command_text("--completion;bash" bash-completion/completions velkrund)
  velkrund_command_text("--completion;zsh" zsh/site-functions _velkrund)
  velkrund_command_text("--completion;fish" fish/vendor_completions.d velkrund.fish)
  add_custom_target(command-texts ALL DEPENDS ${CommandTexts})
endif()
install(FILES texts/velkrund.eif DESTINATION "${CMAKE_INSTALL_DATADIR}/velkrund/texts")

configure_package_config_file(cmake/VelkrundConfig.cmake.in "${PROJECT_BINARY_DIR}/VelkrundConfig.cmake"
                              INSTALL_DESTINATION "${PackageDirectory}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/VelkrundConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/VelkrundConfig.cmake" "${PROJECT_BINARY_DIR}/VelkrundConfigVersion.cmake"
        DESTINATION "${PackageDirectory}")
