# Compiler settings of the project's own code.
function(scorewright_settings target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  # benchmarks/costs.md: "no link-time optimisation".
  set_target_properties(${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION_RELEASE ${has_ipo})
  if(has_ipo AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # After inlining, g++ 12 warns of impossible sizes of Qt's hashes.
    target_link_options(${target} PRIVATE -Wno-alloc-size-larger-than)
  endif()
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC Qt6::Core)
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
  # No fused multiply-add: slopes and intercepts must round in the same way on every processor.
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -ffp-contract=off)
  if(SCOREWRIGHT_STRICT)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(SCOREWRIGHT_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  target_compile_definitions(${target} PUBLIC
    SCOREWRIGHT_SANITIZE=$<BOOL:${SCOREWRIGHT_SANITIZE}>)
  if(SCOREWRIGHT_SANITIZE)
    target_compile_options(${target} PUBLIC
      -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=address,undefined)
  endif()
endfunction()

function(scorewright_library name)
  add_library(scorewright_${name} STATIC ${ARGN})
  scorewright_settings(scorewright_${name})
endfunction()
