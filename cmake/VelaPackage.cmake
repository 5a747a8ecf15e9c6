# SPDX-FileCopyrightText: 2026 The Vela authors
# SPDX-License-Identifier: MIT

# The plugin and vela-probe as a Debian package: cpack -G DEB in the build folder of a system build.

set(package nymea-plugin-vela)
set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package})

string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.in changelog.Debian @ONLY)
configure_file(CHANGELOG.md changelog COPYONLY)
execute_process(
  COMMAND ${VELA_GZIP} -9nf changelog changelog.Debian
  WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
  COMMAND_ERROR_IS_FATAL ANY
)
install(
  FILES
    ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
    ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz
    docs/operation.md
    packaging/copyright
  DESTINATION ${doc_dir}
  COMPONENT plugin
)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${package})
set(CPACK_PACKAGE_CONTACT "The Vela authors <maintainers@vela.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL plugin)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_NAME ${package})
set(CPACK_DEBIAN_PLUGIN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/packaging/postinst)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# dpkg-shlibdeps does not find the daemon's library, because that is not part of Debian.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libnymea1)
set(CPACK_COMPONENT_PLUGIN_DESCRIPTION
"This package adds the Tavensolis VELA gateway to the nymea daemon. Every
wallbox that an OCPP backend lists for a group appears in nymea automatically,
with its live values; actions on it become charge limits at the backend.
vela-probe checks a backend before the plugin depends on it.")
include(CPack)
