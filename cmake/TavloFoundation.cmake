# tavlo_foundation: the flags and libraries of the Foundation that the Objective-C part is built over. That is the
# device's own framework, or GNUstep Base with GCC's Objective-C++ (on Debian gobjc++ and libgnustep-base-dev).
if(NOT APPLE)
  find_program(CMAKE_OBJC_COMPILER gcc)
  find_program(CMAKE_OBJCXX_COMPILER g++)
endif()
enable_language(OBJC)
enable_language(OBJCXX)

add_library(tavlo_foundation INTERFACE)
target_compile_options(tavlo_foundation INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:-std=c++20>
  $<$<COMPILE_LANGUAGE:OBJC>:-std=c11>)
if(APPLE)
  target_link_libraries(tavlo_foundation INTERFACE "-framework Foundation")
  return()
endif()

find_program(TAVLO_GNUSTEP_CONFIG gnustep-config)
if(NOT TAVLO_GNUSTEP_CONFIG)
  message(FATAL_ERROR "TAVLO_OBJC is ON, but there is no GNUstep Base. Install it (on Debian gobjc++ and "
    "libgnustep-base-dev), or set TAVLO_OBJC to OFF")
endif()
foreach(question --objc-flags --base-libs)
  execute_process(COMMAND ${TAVLO_GNUSTEP_CONFIG} ${question} OUTPUT_VARIABLE answer COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(answer UNIX_COMMAND "${answer}")
  list(APPEND flags ${answer})
endforeach()

# Of its flags those that say how the language is compiled; what is beneath a home directory is nobody's business.
set(compile)
set(link)
foreach(flag ${flags})
  if(flag MATCHES "^(-D|-fno-strict-aliasing|-fexceptions|-fobjc-|-fconstant-string|-pthread)" AND
     NOT flag MATCHES "^-DGS(WARN|DIAGNOSE)")
    list(APPEND compile ${flag})
  elseif(flag MATCHES "^-l")
    list(APPEND link ${flag})
  endif()
endforeach()
list(REMOVE_DUPLICATES compile)
target_compile_options(tavlo_foundation INTERFACE $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${compile}>)
target_include_directories(tavlo_foundation SYSTEM INTERFACE /usr/include/GNUstep)
target_link_libraries(tavlo_foundation INTERFACE ${link})
