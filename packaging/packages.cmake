# The packages: cpack -G DEB, or ./dev package.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME formwork)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Formwork authors")
set(CPACK_PACKAGE_CONTACT "The Formwork authors <formwork@lists.formwork.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "reads, fills and edits the forms of PDF files")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL runtime library development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME formwork)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION text)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "formwork lists, fills, resets, exports, edits and draws the forms of PDF files,\none by one or thousands at once from a table.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libformwork0)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS OFF)  # see library_package.cmake.in
configure_file(library_package.cmake.in library_package.cmake @ONLY)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_BINARY_DIR}/library_package.cmake)
configure_file(debian/shlibs.in shlibs @ONLY)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/shlibs ${CMAKE_CURRENT_SOURCE_DIR}/debian/triggers)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "The shared library with a C interface, for programs in C, C++ and every\nlanguage that calls C. It reads, fills and edits fields, and saves what changed\nbehind the bytes of the file.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libformwork-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libformwork0 (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "The headers for C and C++, and what pkg-config and CMake need to link programs\nwith the library: formwork.pc, and Formwork::formwork of find_package.")

# These are loaded when they are needed: to repair damaged files, to shape text in fonts of the machine, to write archives.
set(loaded "libqpdf29, libharfbuzz0b, libharfbuzz-subset0, fontconfig-config")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "${loaded}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "${loaded}, libarchive13")
if(FORMWORK_STATIC_LIBRARY)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "libtinyxml-dev, zlib1g-dev, nettle-dev, libdeflate-dev, libfontconfig-dev, \
libfreetype-dev, libfribidi-dev, libmujs-dev")
endif()

# What Debian wants in every package, but nobody in /usr/local.
option(FORMWORK_DEBIAN "Install what Debian packages need: copyright, changelog, overrides" OFF)
if(FORMWORK_DEBIAN)
    string(TIMESTAMP BUILD_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
    configure_file(debian/changelog.in changelog @ONLY)
    add_custom_command(OUTPUT changelog.gz COMMAND ${GZIP_PROGRAM} -9nc changelog > changelog.gz DEPENDS changelog)
    add_custom_target(formwork_changelog ALL DEPENDS changelog.gz)
    foreach(component IN ITEMS runtime library development)
        string(TOUPPER ${component} COMPONENT)
        set(package ${CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME})
        install(FILES debian/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz DESTINATION ${docs}/${package}
            COMPONENT ${component})
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/${package}.lintian-overrides)
            install(FILES debian/${package}.lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
                RENAME ${package} COMPONENT ${component})
        endif()
    endforeach()
endif()

include(CPack)
