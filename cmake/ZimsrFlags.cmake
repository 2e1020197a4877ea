# Compile flags, as interface targets.
#
#   zimsr_warnings  for all our own code
#   zimsr_kernel    for the library: one result at every level, no C++ runtime

add_library(zimsr_warnings INTERFACE)
target_compile_options(zimsr_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wundef -Wno-psabi
                       $<$<BOOL:${ZIMSR_WERROR}>:-Werror>)

if(ZIMSR_SANITIZE)
  # Arrays may stand at any byte address, so alignment is not checked. Null pointers and objects' ends are the address
  # sanitizer's, which finds them too; checking them twice, inline, makes g++ take minutes for one source. Its warnings
  # about instrumented code say nothing about ours, so that the presets do not take them as errors.
  set(sanitize -fsanitize=${ZIMSR_SANITIZE} -fno-sanitize=alignment,null,object-size,vptr -fno-sanitize-recover=all
               -fno-omit-frame-pointer -O1 -g1)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND ZIMSR_SANITIZE MATCHES "address")
    list(APPEND sanitize --param=asan-instrumentation-with-call-threshold=0)
  endif()
  add_compile_options(${sanitize})
  add_link_options(${sanitize})
endif()

add_library(zimsr_kernel INTERFACE)
target_link_libraries(zimsr_kernel INTERFACE zimsr_warnings)
target_compile_options(
  zimsr_kernel
  INTERFACE -fvisibility=hidden
            -ffp-contract=off # a product is rounded before it is added, whatever the processor offers
            -fno-math-errno
            -fno-trapping-math
            $<$<CONFIG:Release>:-O3>
            $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics -fvisibility-inlines-hidden>)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Callers' stacks may be aligned to 4 bytes only.
  target_compile_options(zimsr_kernel INTERFACE -mstackrealign)
endif()
