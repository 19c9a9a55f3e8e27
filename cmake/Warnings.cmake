# Warnings for our own targets. CI (the CI environment variable is set) turns them into errors.
if(DEFINED ENV{CI})
    set(_vantro_werror_default ON)
else()
    set(_vantro_werror_default OFF)
endif()
option(VANTRO_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" ${_vantro_werror_default})

function(vantro_target_warnings target)
    # Constructor parameters named after members are our convention: warn on local shadowing
    # only (clang's -Wshadow already leaves constructor parameters alone).
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        set(shadow -Wshadow=local)
    else()
        set(shadow -Wshadow)
    endif()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic ${shadow}
        -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual
        -Wimplicit-fallthrough)
    if(VANTRO_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
        # GCC 12 at -O2 reports make_shared of a class with a virtual base (our tree nodes) as
        # reaching outside its allocation, which it does not (ASan agrees). It stays a warning.
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            target_compile_options(${target} PRIVATE -Wno-error=array-bounds)
        endif()
    endif()
endfunction()
