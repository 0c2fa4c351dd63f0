# Warnings and sanitizers live on one interface target that every target of this project links.
add_library(quarvel_compiler INTERFACE)
target_include_directories(quarvel_compiler INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(quarvel_compiler INTERFACE QUARVEL_VERSION="${PROJECT_VERSION}")

if(MSVC)
  target_compile_options(quarvel_compiler INTERFACE /W4 /utf-8)
else()
  target_compile_options(quarvel_compiler INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
  # GCC 12 sees overlapping copies in inlined std::string operator+ (GCC bug 105651), and overflows in vector::insert.
  target_compile_options(quarvel_compiler INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-stringop-overflow>)
endif()

if(QUARVEL_WERROR)
  target_compile_options(quarvel_compiler INTERFACE $<IF:$<CXX_COMPILER_ID:MSVC>,/WX,-Werror>)
endif()

if(QUARVEL_SANITIZE)
  # On every target of the tree, or the container checks of mixed objects misfire.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# quarvel_precompile(TARGET OWNER [HEADER...]) precompiles for TARGET the headers that most files include: OWNER builds them
# once for itself and all who name it. Build with QUARVEL_PRECOMPILE=OFF to find files that lean on the includes of others.
function(quarvel_precompile target owner)
  if(NOT QUARVEL_PRECOMPILE)
    return()
  elseif(target STREQUAL owner)
    target_precompile_headers(${target} PRIVATE <algorithm> <array> <cmath> <filesystem> <fstream> <functional> <map>
      <memory> <optional> <set> <sstream> <string> <string_view> <vector> ${ARGN})
  else()
    target_precompile_headers(${target} REUSE_FROM ${owner})
  endif()
endfunction()
