# What others get: the libraries' public headers, and, when it is installed, the libraries, what find_package() and
# pkg-config read, the program, and the resource bundle.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(TAVLO_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/tavlo)
set(TAVLO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Tavlo)
set_property(GLOBAL PROPERTY TAVLO_COMPONENTS "")

# tavlo_public_headers(header...): makes these, and all that they include, public. In the copy that others get they name
# each other relative to where they are, so that no header of the consumer's with the same name can come between.
function(tavlo_public_headers)
  get_property(done GLOBAL PROPERTY TAVLO_PUBLISHED)
  set(open ${ARGN})
  while(open)
    list(POP_FRONT open header)
    if(header IN_LIST done)
      continue()
    endif()
    list(APPEND done ${header})
    set(original ${PROJECT_SOURCE_DIR}/${header})
    if(EXISTS ${TAVLO_GENERATED}/${header})
      set(original ${TAVLO_GENERATED}/${header})
    endif()
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${original})
    file(READ ${original} content)
    cmake_path(GET header PARENT_PATH folder)
    string(REGEX MATCHALL "\n#include \"[^\"\n]+\"" includes "${content}")
    foreach(include ${includes})
      string(REGEX REPLACE ".*\"(.*)\"" "\\1" included "${include}")
      list(APPEND open ${included})
      cmake_path(RELATIVE_PATH included BASE_DIRECTORY "${folder}" OUTPUT_VARIABLE relative)
      string(REPLACE "#include \"${included}\"" "#include \"${relative}\"" content "${content}")
    endforeach()
    set(copy ${TAVLO_PUBLIC_HEADERS}/${header})
    file(WRITE ${PROJECT_BINARY_DIR}/header.new "${content}")
    cmake_path(GET copy PARENT_PATH parent)
    file(MAKE_DIRECTORY ${parent})
    file(COPY_FILE ${PROJECT_BINARY_DIR}/header.new ${copy} ONLY_IF_DIFFERENT)
    if(TAVLO_INSTALL)
      install(FILES ${copy} DESTINATION ${TAVLO_INCLUDE_DIR}/${folder} COMPONENT dev)
    endif()
  endwhile()
  set_property(GLOBAL PROPERTY TAVLO_PUBLISHED ${done})
endfunction()

# tavlo_install_library(component DESCRIPTION text HEADERS header... [NEEDS component...] [LIBS flag...]): the library
# tavlo_COMPONENT as Tavlo::COMPONENT and as tavlo-COMPONENT.pc, where "_" is "-" and the flags follow the library.
function(tavlo_install_library component)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESCRIPTION" "HEADERS;NEEDS;LIBS")
  set(target tavlo_${component})
  tavlo_public_headers(${arg_HEADERS})
  if(NOT TAVLO_INSTALL)
    return()
  endif()
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${component})
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${TAVLO_INCLUDE_DIR}>)
  install(TARGETS ${target} EXPORT Tavlo_${component}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
  install(EXPORT Tavlo_${component} NAMESPACE Tavlo:: FILE Tavlo_${component}.cmake
    DESTINATION ${TAVLO_CMAKE_DIR} COMPONENT dev)
  set_property(GLOBAL APPEND PROPERTY TAVLO_COMPONENTS ${component})

  # A static library leaves it to the consumer to link what it uses.
  get_target_property(type ${target} TYPE)
  get_target_property(uses ${target} TAVLO_USES)
  set(finds "")
  set(requires ${arg_NEEDS})
  list(TRANSFORM requires PREPEND tavlo-)
  set(private)
  if(uses)
    list(REMOVE_DUPLICATES uses)
    foreach(name ${uses})
      get_property(find GLOBAL PROPERTY TAVLO_FIND_${name})
      get_property(modules GLOBAL PROPERTY TAVLO_PKG_CONFIG_${name})
      if(type STREQUAL STATIC_LIBRARY)
        string(APPEND finds "  ${find}\n")
        list(APPEND requires ${modules})
      else()
        list(APPEND private ${modules})
      endif()
    endforeach()
  endif()
  if(arg_NEEDS)
    set_property(GLOBAL PROPERTY TAVLO_NEEDS_${component} ${arg_NEEDS})
  endif()
  set_property(GLOBAL PROPERTY TAVLO_FINDS_${component} "${finds}")

  list(JOIN requires ", " TAVLO_PC_REQUIRES)
  list(JOIN private ", " TAVLO_PC_REQUIRES_PRIVATE)
  string(REPLACE "_" "-" TAVLO_PC_NAME tavlo-${component})
  set(TAVLO_PC_DESCRIPTION ${arg_DESCRIPTION})
  get_target_property(options ${target} INTERFACE_LINK_OPTIONS)
  get_target_property(name ${target} OUTPUT_NAME)
  if(NOT name)
    set(name ${target})
  endif()
  list(JOIN arg_LIBS " " libraries)
  string(STRIP "-l${name} ${libraries}" TAVLO_PC_LIBS)
  if(options)
    string(REPLACE "LINKER:" "-Wl," options "${options}")
    string(PREPEND TAVLO_PC_LIBS "${options} ")
  endif()
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
    OUTPUT_VARIABLE TAVLO_PC_PREFIX)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/tavlo.pc.in ${PROJECT_BINARY_DIR}/${TAVLO_PC_NAME}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${TAVLO_PC_NAME}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endfunction()

# tavlo_install_package(): what find_package(Tavlo) reads. To be called when all libraries have been.
function(tavlo_install_package)
  get_property(TAVLO_COMPONENTS GLOBAL PROPERTY TAVLO_COMPONENTS)
  set(TAVLO_FINDS "")
  foreach(component ${TAVLO_COMPONENTS})
    get_property(needs GLOBAL PROPERTY TAVLO_NEEDS_${component})
    get_property(finds GLOBAL PROPERTY TAVLO_FINDS_${component})
    string(APPEND TAVLO_FINDS "set(_tavlo_needs_${component} ${needs})\n"
      "macro(_tavlo_find_libraries_of_${component})\n${finds}endmacro()\n")
  endforeach()
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TavloConfig.cmake.in ${PROJECT_BINARY_DIR}/TavloConfig.cmake
    INSTALL_DESTINATION ${TAVLO_CMAKE_DIR} NO_CHECK_REQUIRED_COMPONENTS_MACRO NO_SET_AND_CHECK_MACRO)
  # Before 1.0 a new minor version may break its users.
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/TavloConfigVersion.cmake COMPATIBILITY SameMinorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/TavloConfig.cmake ${PROJECT_BINARY_DIR}/TavloConfigVersion.cmake
    DESTINATION ${TAVLO_CMAKE_DIR} COMPONENT dev)
endfunction()

tavlo_install_library(utility DESCRIPTION "Requests, media cache and services of a video-advertising SDK"
  LIBS -lm HEADERS TavloUtility.h TavloVersion.h common/Logger.h common/TavloException.h platform/Platform.h request/Contracts.h
    request/DataBaseHandler.h request/TavloPackage.h request/TavloUniqueUserHandler.h)
if(TAVLO_BUILD_LINUX)
  tavlo_install_library(linux DESCRIPTION "The services of tavlo-utility on Linux" NEEDS utility
    HEADERS platform/linux/LinuxPlatform.h)
endif()
if(TAVLO_BUILD_HOST)
  tavlo_install_library(host DESCRIPTION "What an app brings to tavlo-utility: records, counters, log" NEEDS utility
    HEADERS host/CachedLists.h host/ExceptionReporter.h host/FixedPosition.h host/LogFileWriter.h
      host/SessionRecord.h host/TableGeocoder.h)
  if(TAVLO_HOST_DATABASE)
    tavlo_public_headers(host/Host.h)
  endif()
endif()
if(TARGET tavlo_c)
  # The shared library has all of ours in it, unless what it is made of is shared itself.
  set(needs)
  if(BUILD_SHARED_LIBS)
    set(needs NEEDS utility linux host)
  endif()
  tavlo_install_library(c DESCRIPTION "tavlo-utility for C" ${needs})
  tavlo_install_library(c_static DESCRIPTION "tavlo-utility for C, to link statically" NEEDS utility linux host
    LIBS -lstdc++)  # which a linker for C++ adds by itself
endif()
if(NOT TAVLO_INSTALL)
  return()
endif()
tavlo_install_package()

# The program, where it finds the images that a container lacks, and what is to be read about it. What the system's own
# package manager puts under /usr needs no hint where its libraries are.
if(TARGET tavlo)
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(tavlo PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    set(zsh zsh/site-functions)
  else()
    set(zsh zsh/vendor-completions)
  endif()
  set(data ${CMAKE_INSTALL_DATADIR})
  install(TARGETS tavlo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/TavloSDKResource.bundle
    DESTINATION ${data}/tavlo/Resources COMPONENT program)
  install(FILES ${TAVLO_DOCUMENTS}/tavlo.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
  install(FILES ${TAVLO_DOCUMENTS}/tavlo DESTINATION ${data}/bash-completion/completions COMPONENT program)
  install(FILES ${TAVLO_DOCUMENTS}/_tavlo DESTINATION ${data}/${zsh} COMPONENT program)
  install(FILES ${TAVLO_DOCUMENTS}/tavlo.fish DESTINATION ${data}/fish/vendor_completions.d COMPONENT program)
  install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${data}/doc/tavlo RENAME changelog COMPONENT program)
  install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${data}/doc/tavlo COMPONENT program)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${data}/doc/tavlo COMPONENT program)
endif()
if(BUILD_SHARED_LIBS)
  include(TavloPackages)
endif()
