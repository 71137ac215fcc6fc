# One folder is one target. Its link list states which layers it may use; what is not listed does
# not link. Sources are globbed so that a new unit needs no list to be edited.

option(INPS_SANITIZE "build with address and undefined-behaviour sanitizers" OFF)
option(INPS_SANITIZE_THREAD "build with the thread sanitizer" OFF)
# Off in the presets of the sanitizers: gcc warns falsely of code that it has instrumented itself,
# and what the release build lets pass has been through the same warnings.
option(INPS_WERROR "turn warnings into errors" ON)
option(INPS_PRECOMPILE "read the headers of the standard library once for all units" OFF)

find_package(Threads REQUIRED)

add_library(inps_options INTERFACE)
target_include_directories(inps_options INTERFACE ${CMAKE_SOURCE_DIR})
target_link_libraries(inps_options INTERFACE Threads::Threads)
if(MSVC)
  target_compile_options(inps_options INTERFACE /W4 /utf-8 /permissive-)
else()
  target_compile_options(inps_options INTERFACE -Wall -Wextra -Wpedantic)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(inps_options INTERFACE -Wno-restrict) # false for "text" + std::string
  endif()
  if(INPS_WERROR)
    target_compile_options(inps_options INTERFACE -Werror)
  endif()
endif()
# What a library has is what it uses: calls within it are direct and may be put in place, and neither
# they nor inline functions are looked up by name when a program starts. But the door to our files is
# in the base, and tests that let its calls fail must be able to stand before it.
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(UNIX AND NOT APPLE)
  set(not_base "$<NOT:$<STREQUAL:$<TARGET_PROPERTY:NAME>,inps_base>>")
  target_compile_options(inps_options INTERFACE "$<${not_base}:-fno-semantic-interposition>")
  target_link_options(inps_options INTERFACE "$<${not_base}:-Wl,-Bsymbolic-functions>")
endif()
if(INPS_SANITIZE)
  target_compile_options(inps_options INTERFACE -fsanitize=address,undefined
                                                -fno-sanitize-recover=undefined
                                                -fno-omit-frame-pointer)
  target_link_options(inps_options INTERFACE -fsanitize=address,undefined)
endif()
if(INPS_SANITIZE_THREAD)
  target_compile_options(inps_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(inps_options INTERFACE -fsanitize=thread)
endif()

# inps_library(<target> SHARED|STATIC|INTERFACE LINKS <targets…>)
function(inps_library target kind)
  cmake_parse_arguments(arg "" "" "LINKS" ${ARGN})
  if(kind STREQUAL INTERFACE) # headers alone
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE inps_options ${arg_LINKS})
    return()
  endif()
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(${target} ${kind} ${sources})
  target_link_libraries(${target} PUBLIC inps_options ${arg_LINKS})
  if(INPS_PRECOMPILE)
    inps_precompile(${target} ${kind})
  endif()
endfunction()

# A fifth of a build of its own kind. Not for the usual one, which tells what header a unit forgot.
# Static libraries of one visibility are compiled alike and share what the first of them makes.
function(inps_precompile target kind)
  set(shared "inps_precompiled_${CMAKE_CXX_VISIBILITY_PRESET}")
  get_property(first GLOBAL PROPERTY ${shared})
  if(kind STREQUAL STATIC AND first)
    target_precompile_headers(${target} REUSE_FROM ${first})
    return()
  endif()
  target_precompile_headers(${target} PRIVATE <algorithm> <filesystem> <functional> <map> <memory>
                            <mutex> <optional> <span> <string> <unordered_map> <vector>)
  if(kind STREQUAL STATIC)
    set_property(GLOBAL PROPERTY ${shared} ${target})
  endif()
endfunction()
