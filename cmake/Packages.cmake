# What only the packages need: Debian packages on Linux, a zip for Windows. scripts/package.sh builds them,
# and adds the example programs, which are CMake projects of their own, as a part of the component "tools".
#
# The maintainer of the Debian packages is taken from DEBFULLNAME and DEBEMAIL, as Debian's tools do.
set(files "${CMAKE_CURRENT_LIST_DIR}/packages")
set(made "${CMAKE_CURRENT_BINARY_DIR}/packages")
string(TIMESTAMP year %Y UTC)

set(CPACK_PACKAGE_NAME VORNUtility)
set(CPACK_PACKAGE_VENDOR Vantorel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_COMPONENTS_TOOLS tools) # the components of the projects that are packed as "tools"
if(VORNUTILITY_QT_MAJOR EQUAL 5)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_STRIP_FILES ON)
    set(CPACK_PACKAGE_FILE_NAME VORNUtility-${PROJECT_VERSION}-windows-x86_64)

    # The DLLs that the programs load, beside them.
    foreach(module IN ITEMS Core Xml Network)
        install(FILES $<TARGET_FILE:${vorn_qt}::${module}> DESTINATION bin COMPONENT tools)
    endforeach()
    file(MAKE_DIRECTORY "${made}")
    foreach(library IN ITEMS libgcc_s_seh-1 libstdc++-6 libwinpthread-1)
        execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${library}.dll
            OUTPUT_VARIABLE dll OUTPUT_STRIP_TRAILING_WHITESPACE)
        # Most of the file would be debug symbols.
        execute_process(COMMAND "${CMAKE_STRIP}" "${dll}" -o "${made}/${library}.dll" COMMAND_ERROR_IS_FATAL ANY)
        install(FILES "${made}/${library}.dll" DESTINATION bin COMPONENT tools)
    endforeach()

    # The Debian packages that they come from.
    function(package_version package variable)
        execute_process(COMMAND dpkg-query -W -f \${Version} ${package} OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
        set(${variable} "${version}" PARENT_SCOPE)
    endfunction()
    package_version(qtbase5-dev qt_version)
    package_version(gcc-mingw-w64-x86-64-posix-runtime gcc_version)
    package_version(mingw-w64-x86-64-dev mingw_version)

    # Their licenses: from the folder of Qt and from the Debian packages that the DLLs were built with.
    set(licenses /usr/share/common-licenses)
    set(documents /usr/share/doc)
    set(qt_licenses "${VORNUTILITY_QT_WINDOWS}")
    install(FILES "${qt_licenses}/LICENSE.LGPL3" "${qt_licenses}/LICENSE.GPL3" "${documents}/libqt5core5a/copyright"
        DESTINATION licenses/Qt COMPONENT tools)
    install(FILES "${documents}/gcc-mingw-w64-x86-64-posix-runtime/copyright" "${licenses}/GPL-3"
        DESTINATION licenses/GCC COMPONENT tools)
    install(FILES "${documents}/mingw-w64-x86-64-dev/copyright"
        DESTINATION licenses/mingw-w64 COMPONENT tools)
    foreach(license IN ITEMS Apache-2.0 GFDL-1.3 GPL-2 GPL-3 LGPL-2 LGPL-2.1 LGPL-3)
        install(FILES "${licenses}/${license}" DESTINATION licenses/common COMPONENT tools)
    endforeach()
    configure_file("${files}/licenses.txt.in" "${made}/README.txt" @ONLY NEWLINE_STYLE CRLF)
    install(FILES "${made}/README.txt" DESTINATION licenses COMPONENT tools)
    install(FILES README.md CHANGELOG.md DESTINATION . COMPONENT runtime)
    include(CPack)
    return()
endif()

# Names such as libvornutility24 and libvornutility-qt6-24.
set(runtime lib${vorn_folder}${PROJECT_VERSION_MAJOR})
if(VORNUTILITY_QT_MAJOR EQUAL 5)
    set(qt_development qtbase5-dev)
else()
    set(runtime lib${vorn_folder}-${PROJECT_VERSION_MAJOR})
    set(qt_development qt6-base-dev)
endif()
set(development lib${vorn_folder}-dev)
set(tools lib${vorn_folder}-tools)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_CURRENT_BINARY_DIR}/Utility")
set(maintainer "VORNUtility developers")
set(address vornutility@example.com)
if(DEFINED ENV{DEBFULLNAME} AND DEFINED ENV{DEBEMAIL})
    set(maintainer "$ENV{DEBFULLNAME}")
    set(address "$ENV{DEBEMAIL}")
endif()
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${maintainer} <${address}>")
set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # the first line of each description is its summary
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "7zip | p7zip-full")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${files}/triggers")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "general services of the VORN programs - shared library
Log files, a queue of tasks, child processes, 7-Zip archives, settings, and
information on the machine and its cluster, for programs that use Qt.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${development})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} (= ${version}), ${qt_development}")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "general services of the VORN programs - development files
The headers, the CMake package and the description for pkg-config that are
needed to build programs with the library.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ${tools})
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime} (>= ${version})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "7zip | p7zip-full")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS slurm-client)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "general services of the VORN programs - tools and examples
The cluster tool for Slurm, and programs that show the use of the library:
they pack folders and run parameter studies, among other things.")

# pack(SOURCE FILE): compresses a file as Debian requires it.
function(pack source file)
    execute_process(COMMAND gzip -9nc "${source}" OUTPUT_FILE "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file("${files}/copyright.in" "${made}/copyright" @ONLY)
configure_file("${files}/changelog.in" "${made}/changelog" @ONLY)
pack("${made}/changelog" "${made}/changelog.Debian.gz")
pack("${CMAKE_CURRENT_SOURCE_DIR}/CHANGELOG.md" "${made}/changelog.gz")
# The manual pages of the programs, which package.sh writes.
install(DIRECTORY "${made}/man1" DESTINATION "${CMAKE_INSTALL_MANDIR}" COMPONENT tools OPTIONAL)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    install(FILES "${made}/copyright" "${made}/changelog.Debian.gz" "${made}/changelog.gz"
        DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${${component}}" COMPONENT ${component})
endforeach()

include(CPack)
