# What all targets of the project share: the language, the warnings, the sanitizers, and the library of the
# rooms, which each room's folder adds its files to.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(TavloLibraries)
find_package(Threads REQUIRED)

set(CMAKE_EXPORT_COMPILE_COMMANDS ${PROJECT_IS_TOP_LEVEL})

add_library(tavlo_options INTERFACE)
target_compile_options(tavlo_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(PROJECT_IS_TOP_LEVEL)
  target_compile_options(tavlo_options INTERFACE -Werror)
endif()
# Files beyond 2 GiB and times beyond 2038, which on 64-bit processors are a matter of course.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_definitions(tavlo_options INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()
if(TAVLO_SANITIZE)
  target_compile_options(tavlo_options INTERFACE -fsanitize=${TAVLO_SANITIZE} -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=all)
  target_link_options(tavlo_options INTERFACE -fsanitize=${TAVLO_SANITIZE})
endif()

# tavlo_library(name sources...): a library of the project. Those who link it see the public headers; our own code sees
# the project's root first, and so all of them. Those that are installed are static or shared, as BUILD_SHARED_LIBS
# says; what the project keeps to itself is always static.
function(tavlo_library name)
  set(kind STATIC)
  if(BUILD_SHARED_LIBS AND name IN_LIST TAVLO_INSTALLED)
    set(kind SHARED)
  endif()
  add_library(${name} ${kind} ${ARGN})
  target_compile_features(${name} PUBLIC cxx_std_20)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON DEFINE_SYMBOL ""
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${TAVLO_GENERATED}
    INTERFACE $<BUILD_INTERFACE:${TAVLO_PUBLIC_HEADERS}>)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:tavlo_options>)
endfunction()

# tavlo_program(name sources...): an executable of the project.
function(tavlo_program name)
  add_executable(${name} ${ARGN})
  target_compile_features(${name} PRIVATE cxx_std_20)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${TAVLO_GENERATED})
  target_link_libraries(${name} PRIVATE tavlo_options)
endfunction()

# tavlo_harden(target...): makes what is a target of these harder to attack, if TAVLO_HARDEN says so. Only what the
# compiler knows is used, and nothing reaches a program that links the libraries. Sanitizers have checks of their own.
function(tavlo_harden)
  if(NOT TAVLO_HARDEN OR TAVLO_SANITIZE)
    return()
  endif()
  set(compile)
  foreach(flag stack-protector-strong stack-clash-protection cf-protection)
    check_cxx_compiler_flag(-f${flag} TAVLO_HAS_${flag})
    if(TAVLO_HAS_${flag})
      list(APPEND compile -f${flag})
    endif()
  endforeach()
  # It checks nothing in a build that is not optimised, and warns of that.
  list(APPEND compile "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  check_linker_flag(CXX LINKER:-z,relro,-z,now,-z,noexecstack TAVLO_HAS_z)
  foreach(target ${ARGN})
    if(NOT TARGET ${target})
      continue()
    endif()
    target_compile_options(${target} PRIVATE ${compile})
    get_target_property(type ${target} TYPE)
    if(type STREQUAL EXECUTABLE)
      set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
      target_link_options(${target} PRIVATE -pie $<$<BOOL:${TAVLO_HAS_z}>:LINKER:-z,relro,-z,now,-z,noexecstack>)
    endif()
  endforeach()
endfunction()

# project() above all is the one place that says the version.
set(TAVLO_GENERATED ${PROJECT_BINARY_DIR}/generated)
configure_file(${CMAKE_CURRENT_LIST_DIR}/TavloVersion.h.in ${TAVLO_GENERATED}/TavloVersion.h @ONLY)

set(TAVLO_PUBLIC_HEADERS ${PROJECT_BINARY_DIR}/include/tavlo)
file(MAKE_DIRECTORY ${TAVLO_PUBLIC_HEADERS})
set(TAVLO_INSTALLED tavlo_utility tavlo_linux tavlo_host)
tavlo_library(tavlo_utility)
target_link_libraries(tavlo_utility PUBLIC Threads::Threads)
# What a linker for C++ adds by itself; a program in C may link all of this through the C interface.
target_link_libraries(tavlo_utility INTERFACE $<$<LINK_LANGUAGE:C>:stdc++> $<$<LINK_LANGUAGE:C>:m>)
add_library(Tavlo::utility ALIAS tavlo_utility)
