# How every target of the project is compiled.

add_library(tamo_options INTERFACE)
target_compile_options(tamo_options INTERFACE
    -Wall -Wextra -Wpedantic -Wno-missing-field-initializers -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
    # GCC 12 sees copies that overlap in a literal + a string.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    # The standard library's own stable_sort calls a function that it deprecates.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-deprecated-declarations>)
if(TAMO_SANITIZERS)
    target_compile_options(tamo_options INTERFACE
        -fsanitize=${TAMO_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # GCC loses track of a variant's case in the code that it instruments.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(tamo_options INTERFACE -fsanitize=${TAMO_SANITIZERS})
endif()
if(TAMO_FUZZERS)
    set(TAMO_FUZZED -fsanitize=fuzzer-no-link)
endif()

# What nearly every unit includes; read once for a target that precompiles it.
set(TAMO_STANDARD_HEADERS
    <algorithm> <array> <expected> <functional> <memory> <optional> <ranges> <span> <string> <unordered_map> <variant> <vector>)

# tamo_units(TARGET): compiles every .cpp of the current folder into TARGET, a static library.
function(tamo_units target)
    file(GLOB units CONFIGURE_DEPENDS *.cpp *.h)
    if(NOT ARGN STREQUAL "")
        list(FILTER units EXCLUDE REGEX "${ARGN}")
    endif()
    add_library(${target} STATIC ${units})
    target_include_directories(${target} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PRIVATE tamo_options)
    target_compile_options(${target} PRIVATE ${TAMO_FUZZED})
endfunction()
