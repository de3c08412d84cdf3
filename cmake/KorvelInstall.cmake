include(CMakePackageConfigHelpers)

install(TARGETS KorvelAccessLibrary Logger EXPORT KorvelAccessLibraryTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# Installed, the headers lie side by side, so the public one names the others without the folder they have here.
foreach(header model/KorvelAccessLibrary.h foundation/KException.h foundation/KExport.h foundation/KLimits.h
        foundation/KStatus.h)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS src/${header})
    file(READ src/${header} text)
    string(REPLACE "#include \"../foundation/" "#include \"" text "${text}")
    cmake_path(GET header FILENAME name)
    file(CONFIGURE OUTPUT include/korvel/${name} CONTENT "${text}" @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/include/korvel/${name} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/korvel)
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/src/KVersion.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/korvel)
# A folder of its own: who calls the library does not want the logging library's header on the path.
install(FILES logger/Logger.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/korvel-logger)

if(KORVEL_BUILD_TOOLS)
    install(TARGETS korvelctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
if(KORVEL_BUILD_SIMULATOR)
    install(TARGETS korvel-simulator RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    if(NOT WIN32)
        install(PROGRAMS simulator/with-simulator DESTINATION ${CMAKE_INSTALL_BINDIR})
        install(FILES simulator/with-simulator.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    endif()
endif()

set(KORVEL_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KorvelAccessLibrary)
install(EXPORT KorvelAccessLibraryTargets NAMESPACE Korvel:: DESTINATION ${KORVEL_PACKAGE_DIR})
configure_package_config_file(cmake/KorvelAccessLibraryConfig.cmake.in KorvelAccessLibraryConfig.cmake
    INSTALL_DESTINATION ${KORVEL_PACKAGE_DIR})
write_basic_package_version_file(KorvelAccessLibraryConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KorvelAccessLibraryConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/KorvelAccessLibraryConfigVersion.cmake DESTINATION ${KORVEL_PACKAGE_DIR})

# The prefix is told from where the file lies, so that an installed tree can be moved.
file(RELATIVE_PATH KORVEL_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" KORVEL_PREFIX_FROM_PKGCONFIG "${KORVEL_PREFIX_FROM_PKGCONFIG}")
configure_file(cmake/korvel-access-library.pc.in korvel-access-library.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/korvel-access-library.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(WIN32)
    install(FILES README.md CHANGELOG.md SECURITY.md packaging/korvel-sample.reg DESTINATION .)
    install(DIRECTORY docs examples DESTINATION .)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-windows-x64)
    if(MSVC)
        string(APPEND CPACK_PACKAGE_FILE_NAME -msvc)
    endif()
    set(CPACK_STRIP_FILES ON)
    include(CPack)
else()
    install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
    install(FILES README.md CHANGELOG.md SECURITY.md packaging/korvel-sample.reg DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
