# SPDX-License-Identifier: MIT
# add_schema(TARGET FILE): generates <stem>_fb.h from a FlatBuffers schema at build time.
find_program(FLATC flatc REQUIRED)
function(add_schema target file)
  get_filename_component(stem ${file} NAME_WE)
  set(out ${CMAKE_CURRENT_BINARY_DIR}/schema/${stem}_fb.h)
  add_custom_command(OUTPUT ${out} DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${file} VERBATIM
    COMMAND ${FLATC} --cpp --cpp-std c++17 --scoped-enums --require-explicit-ids
            --warnings-as-errors --filename-suffix _fb
            -o ${CMAKE_CURRENT_BINARY_DIR}/schema ${CMAKE_CURRENT_SOURCE_DIR}/${file})
  target_sources(${target} PRIVATE ${out})
  target_include_directories(${target} SYSTEM PUBLIC ${CMAKE_CURRENT_BINARY_DIR}/schema)
endfunction()
