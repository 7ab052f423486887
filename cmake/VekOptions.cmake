# Compiler settings that every target shares, as the interface target vek_options, and those of the library's own
# code, as vek_kernel_options.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")  # kernels say themselves where unrolling and vectors pay

set(VEK_SANITIZE "" CACHE STRING "Sanitizers for the whole build: empty, address,undefined or thread")

add_library(vek_options INTERFACE)
target_compile_options(vek_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wvla -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>)
if(VEK_SANITIZE)
  target_compile_options(vek_options INTERFACE
    -fsanitize=${VEK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  target_link_options(vek_options INTERFACE -fsanitize=${VEK_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # This check reports through the C++ half of its run-time, which a C program that uses the library does not link.
    target_compile_options(vek_options INTERFACE -fno-sanitize=function)
  endif()
endif()
if(VEK_BUILD_FUZZ)
  target_compile_options(vek_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

add_library(vek_kernel_options INTERFACE)
target_link_libraries(vek_kernel_options INTERFACE vek_options)
target_compile_options(vek_kernel_options INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-march=x86-64-v3 -ffp-contract=off -fno-exceptions -fno-rtti>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vek_kernel_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wmissing-declarations>)
else()
  target_compile_options(vek_kernel_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wmissing-prototypes>)
endif()
