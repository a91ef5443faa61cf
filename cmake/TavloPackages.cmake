# Debian packages of what is installed under /usr (`cmake --preset packages`, then `cpack --preset packages`):
#
#   libtavloMAJOR.MINOR   the shared libraries; another version of them can be installed beside it
#   libtavlo-dev          headers, and what find_package() and pkg-config read
#   tavlo                 the program, its manual page, the completions of shells, documentation and examples
set(library libtavlo${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(same "${library} (= ${PROJECT_VERSION})")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavlo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Tavlo <tavlo@example.invalid>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL runtime dev program)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/CompressDocuments.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/platform/linux ${PROJECT_BINARY_DIR}/host
  ${PROJECT_BINARY_DIR}/c)

# tavlo_package(component name section TEXT text [DEPENDS requirement])
function(tavlo_package component name section)
  cmake_parse_arguments(PARSE_ARGV 3 arg "" "TEXT;DEPENDS" "")
  string(TOUPPER ${component} COMPONENT)
  set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${COMPONENT}_DESCRIPTION "${arg_TEXT}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_DEPENDS "${arg_DEPENDS}" PARENT_SCOPE)
endfunction()

tavlo_package(runtime ${library} libs
  TEXT "Shared libraries. The component builds what the SDK tells its ad server, keeps\nidentifiers and a media cache, and fetches position and address.")
tavlo_package(dev libtavlo-dev libdevel DEPENDS "${same}"
  TEXT "Development files: headers for C++20 and C, and what CMake's find_package()\nand pkg-config read.")
tavlo_package(program tavlo utils DEPENDS "${same}"
  TEXT "The program that shows and checks what the component does: requests,\nidentifiers, tracker records, media cache, position, images and log.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS_POLICY "=")

include(CPack)
