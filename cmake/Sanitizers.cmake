# VANTRO_SANITIZER selects one sanitizer build for everything in the tree, dependencies of
# our own included, so that instrumented and uninstrumented code never mix in one process.
set(VANTRO_SANITIZER "" CACHE STRING "Sanitizer build: empty, address (ASan+UBSan) or thread")
set_property(CACHE VANTRO_SANITIZER PROPERTY STRINGS "" address thread)

if(VANTRO_SANITIZER STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                        -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
elseif(VANTRO_SANITIZER STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(NOT VANTRO_SANITIZER STREQUAL "")
    message(FATAL_ERROR "Unknown VANTRO_SANITIZER '${VANTRO_SANITIZER}'")
endif()
